#include "shell/widgets.h"

namespace {

// A thin client's screen with a kestrel hovering on it; drawn for this program.
const char* const icon_xpm[] = {
    "32 32 5 1",
    "  c None",
    "b c #1F3A5F",
    "l c #4F8FD0",
    "o c #E07B24",
    "w c #FFFFFF",
    "                                ",
    "                                ",
    "                                ",
    "  bbbbbbbbbbbbbbbbbbbbbbbbbbbb  ",
    "  bbbbbbbbbbbbbbbbbbbbbbbbbbbb  ",
    "  bbllllllllllllllllllllllllbb  ",
    "  bbllllllllllllllllllllllllbb  ",
    "  bbllllllllllllllllllllllllbb  ",
    "  bbllllllllllllllllllllllllbb  ",
    "  bbllwwlllllllllllllllllwwlbb  ",
    "  bblloooollllllllllllloooolbb  ",
    "  bblllloooollllwlllloooolllbb  ",
    "  bbllllllooooloooloooolllllbb  ",
    "  bbllllllllooooooooolllllllbb  ",
    "  bbllllllllllooooolllllllllbb  ",
    "  bblllllllllllooollllllllllbb  ",
    "  bblllllllllllooollllllllllbb  ",
    "  bblllllllllllooollllllllllbb  ",
    "  bblllllllllllooollllllllllbb  ",
    "  bbllllllllllllolllllllllllbb  ",
    "  bbllllllllllllllllllllllllbb  ",
    "  bbbbbbbbbbbbbbbbbbbbbbbbbbbb  ",
    "  bbbbbbbbbbbbbbbbbbbbbbbbbbbb  ",
    "             bbbbbb             ",
    "             bbbbbb             ",
    "             bbbbbb             ",
    "        bbbbbbbbbbbbbbbb        ",
    "        bbbbbbbbbbbbbbbb        ",
    "                                ",
    "                                ",
    "                                ",
    "                                ",
};

}  // namespace

GdkPixbuf* program_icon()
{
    // Made once and kept for the whole run: every window of the program shows it.
    static GdkPixbuf* icon = gdk_pixbuf_new_from_xpm_data(const_cast<const char**>(icon_xpm));
    return icon;
}
