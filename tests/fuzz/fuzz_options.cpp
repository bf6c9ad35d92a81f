// The shell options file: any file is read without harm and written back through the
// temporary copy. Without key lines the file is copied whole and both keys follow, each
// on a line of its own.
#include "fuzz_support.h"
#include "shell/options.h"
#include "store/models.h"

#include <algorithm>
#include <cstdlib>

namespace {

// A NUL byte ends the text of its line: such files are not copied whole either.
bool copied_whole(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return text.find('\0') == std::string::npos && text.find("show_taskbar=") == std::string::npos &&
           text.find("kiosk_browser=") == std::string::npos;
}

}  // namespace

void fuzz_setup()
{
    setenv("KESTRELLE_ROOT", fuzz_scratch().c_str(), 1);
    fuzz_write_file(fuzz_scratch() + "/tmp/.keep", "");
}

void fuzz_one(const std::string& input)
{
    const std::string path = fuzz_scratch() + "/etc/zarvooptions";
    fuzz_write_file(path, input);
    parse_zarvooptions();
    show_taskbar = input.size() % 2;
    kiosk_mode = input.size() % 3 == 0;
    write_zarvooptions();
    if (!copied_whole(input))
        return;
    const std::string expected = input + (input.empty() || input.back() == '\n' ? "" : "\n") + "SHOW_TASKBAR=" +
                                 (show_taskbar ? "TRUE" : "FALSE") + "\nKIOSK_BROWSER=" + (kiosk_mode ? "TRUE" : "FALSE") + "\n";
    if (fuzz_read_file(path) != expected)
        fuzz_fail("the options file without key lines", expected, fuzz_read_file(path));
}
