// The keyboard map sources: the xkb rules list, the xkb keymap file, XFCE's keyboard
// list, rdesktop's keymap.lst and the display manager's Xsetup. The first input byte
// picks the source; the rest is its text.
#include "fuzz_support.h"
#include "keymaps/keymaps.h"
#include "launch/command_line.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const char* const sources[] = {
    "/etc/X11/xkb/rules/xfree86.lst",
    "/etc/X11/xkb/keymap/xfree86",
    "/etc/xfce4/applets/keyboard.conf",
    "/usr/share/rdesktop/keymaps/keymap.lst",
    "/etc/X11/xdm/Xsetup",
};
constexpr size_t source_count = sizeof sources / sizeof *sources;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    setenv("KESTRELLE_ROOT", fuzz_scratch().c_str(), 1);
    for (const char* map : {"de", "fr", "common"})
        fuzz_write_file(fuzz_scratch() + "/usr/share/rdesktop/keymaps/" + map, "");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const size_t chosen = data[0] % source_count;
    for (size_t i = 0; i < source_count; ++i)
        if (i != chosen && i != 3)
            std::remove((fuzz_scratch() + sources[i]).c_str());
    fuzz_write_file(fuzz_scratch() + sources[chosen], data + 1, size - 1);
    switch (chosen) {
    case 3:
        make_rdesktop_keymap();
        break;
    case 4:
        local_xkb_map(fuzz_scratch() + sources[chosen]);
        break;
    default:
        make_x_keymap();
    }
    return 0;
}
