#pragma once
// The small pictures of the Advanced window that show what the user will see: the
// desktop with or without this program's window, with or without the taskbar.
#include <gdk-pixbuf/gdk-pixbuf.h>

// A new reference; the caller owns it.
GdkPixbuf* interface_preview(bool gui_shown, bool taskbar_shown);
