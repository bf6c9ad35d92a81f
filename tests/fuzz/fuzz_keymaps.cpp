// The keyboard map sources: the xkb rules list, the xkb keymap file, XFCE's keyboard
// list, rdesktop's keymap.lst and the display manager's Xsetup. The first input byte
// picks the source; the rest is its text.
#include "fuzz_support.h"
#include "keymaps/keymaps.h"
#include "launch/command_line.h"

#include <cstdlib>
#include <iterator>

namespace {

const char* const sources[] = {"/etc/X11/xkb/rules/xfree86.lst", "/etc/X11/xkb/keymap/xfree86",
                               "/etc/xfce4/applets/keyboard.conf", "/usr/share/rdesktop/keymaps/keymap.lst",
                               "/etc/X11/xdm/Xsetup"};
constexpr size_t rdesktop_list = 3;
constexpr size_t xsetup = 4;

}  // namespace

void fuzz_setup()
{
    setenv("KESTRELLE_ROOT", fuzz_scratch().c_str(), 1);
    for (const char* map : {"de", "fr", "common"})
        fuzz_write_file(fuzz_scratch() + "/usr/share/rdesktop/keymaps/" + map, "");
}

void fuzz_one(const std::string& input)
{
    if (input.empty())
        return;
    const size_t chosen = static_cast<unsigned char>(input[0]) % std::size(sources);
    for (size_t i = 0; i < std::size(sources); ++i)
        if (i != chosen && i != rdesktop_list)
            std::remove((fuzz_scratch() + sources[i]).c_str());
    fuzz_write_file(fuzz_scratch() + sources[chosen], input.substr(1));
    if (chosen == rdesktop_list)
        make_rdesktop_keymap();
    else if (chosen == xsetup)
        local_xkb_map(fuzz_scratch() + sources[chosen]);
    else
        make_x_keymap();
}
