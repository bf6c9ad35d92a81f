// wfclient.ini: the server locations, the global settings and pnabrowse's list are read
// from any text without harm. The first save may change what a plain file says (a drive
// without a path is dropped, the first address loses its number); from then on a save
// without changes must write the same bytes, so it reads back the same settings.
#include "fuzz_support.h"
#include "ica/wfclient.h"

#include <cstring>
#include <sstream>

namespace {

// A save of the dialogs without changes: both rewrites with what was read.
std::string saved(const std::string& text)
{
    const std::string with_locations = rewrite_server_locations(text, read_server_locations(text));
    global_settings settings = default_global_settings();
    read_global_settings(with_locations, settings);
    return rewrite_global_settings(with_locations, settings);
}

// A file as the client and this program write it: every line short, one section line,
// and each line naming at most one key (two section lines each get the COM ports, which
// then double at every save). Keys are found anywhere on a line, so in any other file a
// value may name a key ("Address=x[WFClient]") and be read again at each save: such
// files are read and rewritten without harm, but their settings need not settle.
bool plain(const std::string& text)
{
    const char* const names[] = {"[WFClient]", "SSLEnable", "BrowserProtocol", "TcpBrowserAddress", "HttpBrowserAddress",
                                 "Hotkey", "DriveEnabled", "DrivePath", "DriveReadAccess", "DriveWriteAccess",
                                 "ComPort", "KeyboardLayout", "AllowAudioInput"};
    std::istringstream lines(text);
    int sections = 0;
    for (std::string line; std::getline(lines, line);) {
        const bool section = line.find("[WFClient]") != std::string::npos;
        if (line.size() > 90 || (sections += section) > 1 || (section && line != "[WFClient]"))
            return false;
        int count = 0;  // "LastComPortNum" holds "ComPort": counted once, then taken out
        for (size_t at; (at = line.find("LastComPortNum")) != std::string::npos; ++count)
            line.erase(at, std::strlen("LastComPortNum"));
        for (const char* name : names)
            for (size_t at = line.find(name); at != std::string::npos; at = line.find(name, at + 1))
                ++count;
        if (count > 1)
            return false;
    }
    return true;
}

}  // namespace

void fuzz_setup() {}

void fuzz_one(const std::string& input)
{
    read_published_names(input);
    const std::string first = saved(input);
    if (!plain(input))
        return;
    const std::string second = saved(first);
    if (second != first)
        fuzz_fail("a save without changes changed the file", first, second);
}
