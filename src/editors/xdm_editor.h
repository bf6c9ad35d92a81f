#pragma once
// The XDM editor: its widgets, its binding table and its handlers.
#include "editors/editor_save.h"

enum xdm_widget : int {
    XDM_HOST,
    XDM_DISPLAY,
    XDM_VT,
    XDM_KEYMAP,
    XDM_BROADCAST,
    XDM_INDIRECT,
    XDM_DIRECT,
    XDM_WIDGETS
};

extern const editor_kind xdm_kind;

// "_Save".
void xdm_ok_button_cb(GtkWidget* button, editor* e);
// "Broadcast": while it is chosen the host is empty and cannot be typed in.
void xdm_toggle_hostname_editable_cb(GtkToggleButton* broadcast, GtkWidget* host);
