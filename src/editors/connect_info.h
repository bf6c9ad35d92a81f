#pragma once
// The scratch record of the connection being edited. One editor is open at a time, so
// the editors and the windows they open (printers, server locations) share it.
#include "store/record.h"

#include <gtk/gtk.h>

#include <array>
#include <string>

struct connection_info {
    std::array<std::string, MC_COUNT> text{};  // one text per setting, by master column
    unsigned long flags = 0;                  // the open editor's option bits
};

extern connection_info connect_info;

// The open editor's option bit follows a check box or radio button: set while it is on.
inline void follow_toggle(GtkToggleButton* box, unsigned long bit)
{
    if (gtk_toggle_button_get_active(box))
        connect_info.flags |= bit;
    else
        connect_info.flags &= ~bit;
}
