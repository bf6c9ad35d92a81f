#pragma once
// The text of the Citrix client's global file, wfclient.ini: reading the default server
// locations and the global settings, and rewriting them. Plain functions from the
// file's text to values or to the new text; ica/wfclient.h opens, copies and writes
// the file around them.
#include "platform/line_reader.h"

#include <array>
#include <string>
#include <vector>

// Each kind of server address has this many index slots in the file (0 to 15).
inline constexpr int server_slots = 16;

// The default server locations and the protocol choice, as the file gives them.
struct server_locations {
    std::vector<std::string> http;  // HttpBrowserAddress values in index order
    std::vector<std::string> tcp;   // TcpBrowserAddress values in index order
    std::string protocol;           // one of ica_protocols
};

// Reads the browser keys of the file's text. Lines longer than 101 characters lose the
// rest; later lines of the same index win; indices of 16 and above are ignored.
server_locations read_server_locations(const std::string& text);
// The text with its browser keys replaced: after each "[WFClient]" line the protocol
// keys and the two lists (first row without a number, then 2, 3, ...); every other
// browser key dropped.
std::string rewrite_server_locations(const std::string& text, const server_locations& locations);

// The global settings of the client.
inline constexpr int hotkey_count = 15;
inline constexpr int drive_count = 26;  // A to Z
extern const char* const hotkey_names[hotkey_count];
extern const std::vector<std::string> hotkey_shift;
extern const std::vector<std::string> hotkey_chars;
extern const std::vector<std::string> keyboard_layouts;

struct hotkey {
    std::string shift;  // one of hotkey_shift
    std::string key;    // one of hotkey_chars
};
struct drive_mapping {
    std::string path;   // "" when the drive is not mapped
    bool enabled = false;
    bool read = false;
    bool write = false;
};
struct com_port {
    std::string name;    // "COM" and a number; not renumbered when a row is removed
    std::string device;
};
struct global_settings {
    std::array<hotkey, hotkey_count> hotkeys;
    std::array<drive_mapping, drive_count> drives;
    std::vector<com_port> com_ports;
    std::string keyboard_layout;
    bool audio_input = false;
};

// The settings before the file is read: the hotkey table's defaults, no drives, no COM
// ports, "(User Profile)", no audio input.
global_settings default_global_settings();
// Applies the keys of the file's text to settings. Blanks around "=" are not part of
// the value.
// The observer, when given, hears of every line cut and every hotkey numbered beyond the
// fifteen the client has (the line is ignored, and a rewrite drops it).
void read_global_settings(const std::string& text, global_settings& settings,
                          const read_observer* observer = nullptr);
// Whether the text has the "[WFClient]" line after which the rewrites put their keys;
// without one, a rewrite drops every key it writes and writes none.
bool has_wfclient_section(const std::string& text);
// The text with its global keys replaced: after each "[WFClient]" line the keyboard
// layout, the hotkeys from 15 down to 1, the drives with a path, the COM ports with a
// device, LastComPortNum and AllowAudioInput; every other such key dropped.
std::string rewrite_global_settings(const std::string& text, const global_settings& settings);

// The file's text when the client's own copy is missing: nine lines, spacing as it is.
extern const char* const default_wfclient_text;

// pnabrowse's output: one name in quotes a line (at most 101 characters), the quotes and
// the line end dropped.
std::vector<std::string> read_published_names(const std::string& text);
