// wfclient.ini: the server locations, the global settings and pnabrowse's list are read
// from any text without harm. The first save may change what a plain file says (a drive
// without a path is dropped, the first address loses its number); from then on a save
// without changes must read back the same settings and server locations and write the
// same bytes.
#include "fuzz_support.h"
#include "ica/wfclient.h"

#include <cstring>
#include <sstream>

namespace {

// Settings and locations written out alone: equal texts mean equal values.
std::string written(const std::string& text)
{
    const std::string section = "[WFClient]\n";
    global_settings settings = default_global_settings();
    read_global_settings(text, settings);
    return rewrite_server_locations(section, read_server_locations(text)) +
           rewrite_global_settings(section, settings);
}

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
// then double at every save). Keys are found anywhere on a line,
// so in any other file a value may name a key ("Address=x[WFClient]") and be read again
// at each save: such files are read and rewritten without harm, but their settings are
// not expected to settle.
bool plain(const std::string& text)
{
    const char* const names[] = {"[WFClient]", "SSLEnable", "BrowserProtocol", "TcpBrowserAddress",
                                 "HttpBrowserAddress", "Hotkey", "DriveEnabled", "DrivePath",
                                 "DriveReadAccess", "DriveWriteAccess", "ComPort", "KeyboardLayout",
                                 "AllowAudioInput"};
    std::istringstream lines(text);
    int sections = 0;
    for (std::string line; std::getline(lines, line);) {
        int count = 0;
        std::string rest = line;  // "LastComPortNum" holds "ComPort": counted once, then taken out
        for (size_t at; (at = rest.find("LastComPortNum")) != std::string::npos; ++count)
            rest.erase(at, std::strlen("LastComPortNum"));
        for (const char* name : names)
            for (size_t at = rest.find(name); at != std::string::npos; at = rest.find(name, at + 1))
                ++count;
        const bool section = line.find("[WFClient]") != std::string::npos;
        sections += section;
        if (line.size() > 90 || count > 1 || sections > 1 || (section && line != "[WFClient]"))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    read_published_names(text);
    const std::string first = saved(text);
    if (!plain(text))
        return 0;
    const std::string second = saved(first);
    if (written(second) != written(first))
        fuzz_fail("a save without changes read back other settings", written(first), written(second));
    if (second != first)
        fuzz_fail("a save without changes changed the file", first, second);
    return 0;
}
