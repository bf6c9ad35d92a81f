#include "admin/previews.h"

namespace {

constexpr int width = 96;
constexpr int height = 72;
constexpr int taskbar_height = 9;
constexpr guint32 desktop = 0x3a6ea5ff;
constexpr guint32 taskbar = 0x1f2a3aff;
constexpr guint32 taskbar_button = 0x8fa3b8ff;
constexpr guint32 window_frame = 0x1f3a5fff;
constexpr guint32 window_body = 0xf2f2f2ff;
constexpr guint32 list_row = 0xc8d6e5ff;
constexpr guint32 button = 0xd0d0d0ff;

void fill_rect(GdkPixbuf* picture, int x, int y, int w, int h, guint32 colour)
{
    GdkPixbuf* area = gdk_pixbuf_new_subpixbuf(picture, x, y, w, h);
    gdk_pixbuf_fill(area, colour);
    g_object_unref(area);
}

// The connection manager: a framed window with its list on the left and its column of
// buttons on the right.
void draw_program_window(GdkPixbuf* picture)
{
    fill_rect(picture, 18, 10, 60, 44, window_frame);
    fill_rect(picture, 20, 16, 56, 36, window_body);
    for (int row = 0; row < 4; ++row)
        fill_rect(picture, 23, 19 + row * 8, 34, 5, list_row);
    for (int b = 0; b < 4; ++b)
        fill_rect(picture, 61, 19 + b * 8, 12, 5, button);
}

void draw_taskbar(GdkPixbuf* picture)
{
    fill_rect(picture, 0, height - taskbar_height, width, taskbar_height, taskbar);
    for (int b = 0; b < 3; ++b)
        fill_rect(picture, 3 + b * 16, height - taskbar_height + 2, 13, taskbar_height - 4,
                  taskbar_button);
}

}  // namespace

GdkPixbuf* interface_preview(bool gui_shown, bool taskbar_shown)
{
    GdkPixbuf* picture = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, width, height);
    gdk_pixbuf_fill(picture, desktop);
    if (gui_shown)
        draw_program_window(picture);
    if (taskbar_shown)
        draw_taskbar(picture);
    return picture;
}
