#include "ui/widgets.h"

namespace {

constexpr int icon_size = 32;

// A thin client's screen with a kestrel hovering on it; drawn for this program. Each
// character is one pixel: b, l, o and w are the colours below, a space is transparent.
const char* const icon_rows[icon_size] = {
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

// Red, green, blue and alpha of a pixel.
guint32 pixel_of(char c)
{
    switch (c) {
    case 'b': return 0x1F3A5FFF;
    case 'l': return 0x4F8FD0FF;
    case 'o': return 0xE07B24FF;
    case 'w': return 0xFFFFFFFF;
    default: return 0;
    }
}

// The pixels are laid out here rather than read as an XPM image, which would load an
// image module at start-up.
GdkPixbuf* make_icon()
{
    static guchar pixels[icon_size * icon_size * 4];
    guchar* next = pixels;
    for (const char* row : icon_rows)
        for (int x = 0; x < icon_size; ++x) {
            const guint32 pixel = pixel_of(row[x]);
            for (int shift = 24; shift >= 0; shift -= 8)
                *next++ = static_cast<guchar>(pixel >> shift);
        }
    return gdk_pixbuf_new_from_data(pixels, GDK_COLORSPACE_RGB, TRUE, 8, icon_size, icon_size,
                                    icon_size * 4, nullptr, nullptr);
}

}  // namespace

GdkPixbuf* program_icon()
{
    // Made once and kept for the whole run: every window of the program shows it.
    static GdkPixbuf* icon = make_icon();
    return icon;
}
