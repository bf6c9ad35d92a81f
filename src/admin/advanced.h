#pragma once
// The Advanced Configuration window: the master list with Add, Edit, Delete and Ping
// First on the left, the administered user's connections with their order and start
// flags on the right, and the global interface setting.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// The "Ad_vanced" button's handler; main_window is hidden while the window is open.
void advanced_dialog(GtkWidget* widget, gpointer main_window);
// The user chooser's text changed: load that user's tree for editing.
void select_user(GtkWidget* widget, gpointer chooser);
// Runs whenever the window goes: the main window takes misc_widgets[0] again, the
// running user is administered again and the master list is read again from its file.
void cancel_advanced_cb();

// The accounts an administrator can assign connections to: homes holding "root" or
// "home" as the database writes them, never "nobody", sorted byte by byte.
std::vector<std::string> administered_users();
