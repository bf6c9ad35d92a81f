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

void move_right_cb(GtkWidget* widget, gpointer master_selection);
void move_doubleclick_cb(GtkTreeView* master_view, GtkTreePath* path, GtkTreeViewColumn* column,
                         gpointer data);
void move_left_cb(GtkWidget* widget, gpointer tree_selection);
void move_up_cb(GtkWidget* widget, gpointer tree_selection);
void move_down_cb(GtkWidget* widget, gpointer tree_selection);

void primary_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree_view);
void automatic_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);
void persistent_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);
void prompt_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);

void ui_tb_cb(GtkToggleButton* check_box, gpointer preview);
void taskbar_tb_cb(GtkToggleButton* check_box, gpointer preview);
void kiosk_tb_cb(GtkToggleButton* check_box, gpointer data);

// The accounts an administrator can assign connections to: homes holding "root" or
// "home" as the database writes them, never "nobody", sorted byte by byte.
std::vector<std::string> administered_users();
