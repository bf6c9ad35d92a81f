#include "store/wfclient_text.h"

#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/text.h"
#include "store/choices.h"

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <type_traits>

const char* const hotkey_names[hotkey_count] = {
    "Alt+F1", "Alt+F2",  "Alt+F3",  "Alt+F4",  "Alt+F5",  "Alt+F6",        "Alt+F7",     "Alt+F8",
    "Alt+F9", "Alt+F10", "Alt+F11", "Alt+F12", "Alt+Tab", "Alt+Shift+Tab", "Speedscreen",
};
const std::vector<std::string> hotkey_shift = {"(none)",   "Shift",     "Ctrl",      "Alt",
                                               "Alt+Ctrl", "Alt+Shift", "Ctrl+Shift"};
const std::vector<std::string> hotkey_chars = {"(none)", "F1",  "F2",  "F3",  "F4", "F5",
                                               "F6",     "F7",  "F8",  "F9",  "F10", "F11",
                                               "F12",    "Tab", "-",   "+"};
const std::vector<std::string> keyboard_layouts = {
    "(User Profile)", "Belgian Dutch", "Belgian French", "Brazilian (ABNT)", "British",
    "Bulgarian", "Canadian English (Multilingual)", "Canadian French",
    "Canadian French (Multilingual)", "Croatian", "Czech", "Danish", "Finnish", "French",
    "German", "Greek", "Hungarian", "Icelandic", "Italian", "Italian (142)", "Japanese (JIS)",
    "Latin American", "Norwegian", "Polish (Programmers)", "Polish (214)", "Portuguese",
    "Romanian", "Russian", "Slovak", "Slovenian", "Spanish", "Spanish variation", "Swedish",
    "Swiss French", "Swiss German", "Turkish (F)", "Turkish (Q)", "US", "US-Dvorak",
    "US-International",
};

const char* const default_wfclient_text =
    "[WFClient]\n"
    "Version = 2\n"
    "\n"
    "KeyboardLayout = (User Profile)\n"
    "KeyboardMappingFile = automatic.kbd\n"
    "KeyboardDescription = Automatic (User Profile)\n"
    "KeyboardType=(Default)\n"
    "AllowAudioInput=True\n"
    "BrowserTimeout=2000\n";

namespace {

constexpr const char* section_line = "[WFClient]";
constexpr const char* http_key = "HttpBrowserAddress";
constexpr const char* tcp_key = "TcpBrowserAddress";
constexpr const char* browser_keys[] = {"SSLEnable", "BrowserProtocol", tcp_key, http_key};
constexpr const char* global_keys[] = {"Hotkey",          "DriveEnabled",   "DrivePath",
                                       "DriveReadAccess", "DriveWriteAccess", "ComPort",
                                       "LastComPortNum",  "KeyboardLayout", "AllowAudioInput"};
constexpr const char* hotkey_key = "Hotkey";
constexpr const char* com_key = "ComPort";
constexpr const char* plus_word = "Plus";
constexpr const char* minus_word = "Minus";
constexpr const char* default_layout = "(User Profile)";

bool holds_any(const std::string& line, std::initializer_list<const char*> keys)
{
    for (const char* key : keys)
        if (contains(line, key))
            return true;
    return false;
}

template <size_t N>
bool holds_any(const std::string& line, const char* const (&keys)[N])
{
    for (const char* key : keys)
        if (contains(line, key))
            return true;
    return false;
}

// Each line of the text as the reader of the client's files sees it: at most 101
// characters, the rest of a longer line skipped; chopped, the last character removed.
// A visit that takes two arguments gets the line's number too; the observer, when
// given, hears of every line cut.
template <typename Visit>
void for_each_line(const std::string& text, Visit visit, bool chopped = true, const read_observer* observer = nullptr)
{
    if (text.empty())
        return;
    FILE* stream = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    if (!stream)
        return;
    unique_file file(stream);
    line_reader reader(file.get(), long_line::skip_rest);
    reader.observe(observer);
    while (reader.read()) {
        if (chopped)
            reader.drop_last_char();
        if constexpr (std::is_invocable_v<Visit, const std::string&, int>)
            visit(reader.text(), reader.line_number());
        else
            visit(reader.text());
    }
}

// The digits written right after key in line ("" when there are none).
std::string digits_after(const std::string& line, const char* key)
{
    const size_t start = line.find(key) + std::strlen(key);
    size_t end = start;
    while (end < line.size() && line[end] >= '0' && line[end] <= '9')
        ++end;
    return line.substr(start, end - start);
}

// Those digits as a number: -1 when there are none, too_large for more than three.
constexpr int too_large = 1000;
int number_after(const std::string& line, const char* key)
{
    const std::string digits = digits_after(line, key);
    if (digits.empty())
        return -1;
    return digits.size() > 3 ? too_large : std::stoi(digits);
}

// Index slot of an address key: no digit is slot 0; slots 16 and above do not exist.
void take_address(const std::string& line, const char* key,
                  std::array<std::string, server_slots>& slots)
{
    if (!contains(line, key))
        return;
    const size_t equals = line.find('=');
    const int number = number_after(line, key);
    const int slot = number < 0 ? 0 : number;
    if (equals == std::string::npos || slot >= server_slots)
        return;
    slots[slot] = line.substr(equals + 1);  // blanks included: addresses are not trimmed
}

std::vector<std::string> filled(const std::array<std::string, server_slots>& slots)
{
    std::vector<std::string> list;
    for (const std::string& slot : slots)
        if (!slot.empty())
            list.push_back(slot);
    return list;
}

void append_addresses(std::string& out, const char* key, const std::vector<std::string>& list)
{
    for (size_t i = 0; i < list.size(); ++i)
        out += key + (i == 0 ? std::string() : std::to_string(i + 1)) + "=" + list[i] + "\n";
}

std::string browser_block(const server_locations& locations)
{
    std::string block;
    if (locations.protocol == ica_tcp_browser)
        block = "BrowserProtocol=UDP\nSSLEnable=Off\n";
    else
        block = std::string("BrowserProtocol=HTTPonTCP\n") +
                (locations.protocol == ica_ssl_browser ? "SSLEnable=On\n" : "SSLEnable=Off\n");
    append_addresses(block, http_key, locations.http);
    append_addresses(block, tcp_key, locations.tcp);
    return block;
}

// Copies text line by line: after a "[WFClient]" line comes block, lines holding one of
// the keys are dropped, every other line is kept with a line feed.
template <size_t N>
std::string rewrite_section(const std::string& text, const char* const (&keys)[N],
                            const std::string& block)
{
    std::string out;
    for_each_line(text, [&](const std::string& line) {
        if (contains(line, section_line))
            out += line + "\n" + block;
        else if (!holds_any(line, keys))
            out += line + "\n";
    });
    return out;
}

// The value of a global key: after the first "=", without the blanks around it (the
// default file writes "KeyboardLayout = (User Profile)"). Null when there is no "=".
bool global_value(const std::string& line, std::string* value)
{
    const size_t equals = line.find('=');
    if (equals == std::string::npos)
        return false;
    const size_t first = line.find_first_not_of(" \t", equals + 1);
    const size_t last = line.find_last_not_of(" \t\r");
    *value = first == std::string::npos || last < first ? "" : line.substr(first, last - first + 1);
    return true;
}

bool is_true_word(const std::string& value)
{
    return value == "Yes" || value == "On" || value == "True" || value == "1";
}

bool is_choice(const std::vector<std::string>& choices, const std::string& text)
{
    for (const std::string& choice : choices)
        if (choice == text)
            return true;
    return false;
}

void read_hotkey(const std::string& line, const std::string& value, global_settings& s)
{
    const int number = number_after(line, hotkey_key);
    if (number < 1 || number > hotkey_count)
        return;
    hotkey& entry = s.hotkeys[number - 1];
    if (contains(line, "Shift") && is_choice(hotkey_shift, value))
        entry.shift = value;
    if (contains(line, "Char")) {
        const std::string key = value == plus_word ? "+" : value == minus_word ? "-" : value;
        if (is_choice(hotkey_chars, key))
            entry.key = key;
    }
}

// The drive that a key followed by its letter names, or null.
drive_mapping* drive_after(const std::string& line, const char* key, global_settings& s)
{
    const size_t at = line.find(key);
    if (at == std::string::npos)
        return nullptr;
    const size_t letter = at + std::strlen(key);
    if (letter >= line.size() || line[letter] < 'A' || line[letter] > 'Z')
        return nullptr;
    return &s.drives[line[letter] - 'A'];
}

void read_drive(const std::string& line, const std::string& value, global_settings& s)
{
    if (drive_mapping* d = drive_after(line, "DriveEnabled", s))
        d->enabled = is_true_word(value);
    // Access values are inverted: "0" grants the access.
    if (drive_mapping* d = drive_after(line, "DriveReadAccess", s))
        d->read = value == "0";
    if (drive_mapping* d = drive_after(line, "DriveWriteAccess", s))
        d->write = value == "0";
    if (drive_mapping* d = drive_after(line, "DrivePath", s))
        d->path = value;
}

std::string hotkey_lines(const global_settings& s)
{
    std::string lines;
    for (int n = hotkey_count; n >= 1; --n) {
        const hotkey& entry = s.hotkeys[n - 1];
        const std::string key = entry.key == "+" ? plus_word : entry.key == "-" ? minus_word : entry.key;
        const std::string number = std::to_string(n);
        lines += "Hotkey" + number + "Char=" + key + "\n";
        lines += "Hotkey" + number + "Shift=" + entry.shift + "\n";
    }
    return lines;
}

std::string drive_lines(const global_settings& s)
{
    std::string lines;
    for (int i = 0; i < drive_count; ++i) {
        const drive_mapping& d = s.drives[i];
        if (d.path.empty())
            continue;
        const std::string letter(1, static_cast<char>('A' + i));
        lines += "DriveEnabled" + letter + "=" + (d.enabled ? "Yes" : "No") + "\n";
        lines += "DrivePath" + letter + "=" + d.path + "\n";
        lines += "DriveReadAccess" + letter + "=" + (d.enabled && d.read ? "0" : "1") + "\n";
        lines += "DriveWriteAccess" + letter + "=" + (d.enabled && d.write ? "0" : "1") + "\n";
    }
    return lines;
}

std::string com_lines(const global_settings& s)
{
    std::string lines;
    int count = 0;
    for (const com_port& port : s.com_ports) {
        if (port.device.empty())
            continue;
        const std::string number = port.name.size() > 3 ? port.name.substr(3) : "";
        lines += com_key + number + "=" + port.device + "\n";
        ++count;
    }
    return lines + "LastComPortNum=" + std::to_string(count) + "\n";
}

}  // namespace

server_locations read_server_locations(const std::string& text)
{
    std::array<std::string, server_slots> http{}, tcp{};
    bool http_protocol = true, ssl = false;
    for_each_line(text, [&](const std::string& line) {
        if (contains(line, "SSLEnable="))
            ssl = holds_any(line, {"On", "True", "Yes", "1"});
        if (contains(line, "BrowserProtocol="))
            http_protocol = contains(line, "HTTPonTCP");
        take_address(line, http_key, http);
        take_address(line, tcp_key, tcp);
    });
    server_locations locations{filled(http), filled(tcp), ica_tcp_browser};
    if (http_protocol)
        locations.protocol = ssl ? ica_ssl_browser : ica_http_browser;
    return locations;
}

std::string rewrite_server_locations(const std::string& text, const server_locations& locations)
{
    return rewrite_section(text, browser_keys, browser_block(locations));
}

global_settings default_global_settings()
{
    global_settings s;
    for (int n = 1; n <= 12; ++n)
        s.hotkeys[n - 1] = {"Ctrl+Shift", "F" + std::to_string(n)};
    s.hotkeys[12] = {"Alt", "-"};
    s.hotkeys[13] = {"Alt+Shift", "+"};
    s.hotkeys[14] = {"Shift", "F12"};
    s.keyboard_layout = default_layout;
    return s;
}

void read_global_settings(const std::string& text, global_settings& s, const read_observer* observer)
{
    for_each_line(text, [&](const std::string& line, int number) {
        std::string value;
        if (!global_value(line, &value))
            return;
        if (contains(line, hotkey_key) && observer && number_after(line, hotkey_key) > hotkey_count)
            (*observer)({read_note::number_ignored, number, line});
        if (contains(line, hotkey_key))
            read_hotkey(line, value, s);
        read_drive(line, value, s);
        if (contains(line, com_key) && !contains(line, "LastComPortNum=")) {
            s.com_ports.push_back({"COM" + digits_after(line, com_key), value});
        }
        if (contains(line, "KeyboardLayout"))
            s.keyboard_layout = value;
        if (contains(line, "AllowAudioInput"))
            s.audio_input = is_true_word(value);
    }, true, observer);
}

bool has_wfclient_section(const std::string& text)
{
    bool found = false;
    for_each_line(text, [&](const std::string& line) { found = found || contains(line, section_line); });
    return found;
}

std::string rewrite_global_settings(const std::string& text, const global_settings& s)
{
    const std::string block = "KeyboardLayout=" + s.keyboard_layout + "\n" + hotkey_lines(s) +
                              drive_lines(s) + com_lines(s) + "AllowAudioInput=" +
                              (s.audio_input ? "True" : "False") + "\n";
    return rewrite_section(text, global_keys, block);
}

std::vector<std::string> read_published_names(const std::string& text)
{
    std::vector<std::string> names;
    for_each_line(
        text,
        [&](const std::string& line) {
            // The opening quote, then the closing quote and the line end.
            if (line.size() >= 3)
                names.push_back(line.substr(1, line.size() - 3));
        },
        false);
    return names;
}
