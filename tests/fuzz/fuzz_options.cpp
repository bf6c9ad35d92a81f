// The shell options file: any file is read without harm and written back through the
// temporary copy. Without key lines the file is copied whole and both keys follow, each
// on a line of its own.
#include "fuzz_support.h"
#include "store/models.h"
#include "shell/options.h"

#include <cstdlib>
#include <fstream>
#include <glib.h>
#include <sstream>
#include <sys/stat.h>

namespace {

bool names_a_key(const std::string& text)
{
    gchar* lower = g_ascii_strdown(text.c_str(), -1);
    const std::string lowered = lower;
    g_free(lower);
    return lowered.find("show_taskbar=") != std::string::npos || lowered.find("kiosk_browser=") != std::string::npos;
}

std::string file_text(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    setenv("KESTRELLE_ROOT", fuzz_scratch().c_str(), 1);
    mkdir((fuzz_scratch() + "/etc").c_str(), 0755);
    mkdir((fuzz_scratch() + "/tmp").c_str(), 0755);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = fuzz_scratch() + "/etc/zarvooptions";
    fuzz_write_file(path, data, size);
    parse_zarvooptions();
    show_taskbar = size % 2;
    kiosk_mode = size % 3 == 0;
    write_zarvooptions();
    // A NUL byte ends the text of its line: such files are not copied whole.
    const std::string before(reinterpret_cast<const char*>(data), size);
    if (before.find('\0') != std::string::npos || names_a_key(before))
        return 0;
    const std::string line_end = before.empty() || before.back() == '\n' ? "" : "\n";
    const std::string expected = before + line_end + "SHOW_TASKBAR=" + (show_taskbar ? "TRUE" : "FALSE") +
                                 "\nKIOSK_BROWSER=" + (kiosk_mode ? "TRUE" : "FALSE") + "\n";
    const std::string after = file_text(path);
    if (after != expected)
        fuzz_fail("the options file without key lines", expected, after);
    return 0;
}
