#pragma once
// The main window with the current user's connection list and its buttons.
#include <gtk/gtk.h>

// Builds root_window and routes the program's messages to the error dialog, which, like
// the reconnect dialog, is made when it is first shown.
void build_main_window();
// The tree view on current_user_connection_tree and the buttons by mode and rights.
void finish_main_window();
// Administrators only: the "Ad_vanced" button, opening the administration window
// through handler (given the main window).
void add_advanced_button(GCallback handler);
// Expands a primary row of the main window's list when tree is the list's model and the
// row has secondaries.
void expand_connection_group(GtkTreeStore* tree, GtkTreeIter* primary);
// Shows the main window with every row expanded.
void show_main_window();

// Columns "Name", "Type" and "Status" of a user connection tree view.
void make_user_renderer(GtkTreeView* view);
// Settings: starts the control panel in the background, if one is installed.
void system_cb(GtkWidget* button, gpointer data);
// The Connect button: starts the selected row of tree_view, if any.
void spawn_button_cb(GtkWidget* button, GtkTreeView* tree_view);
// The list's "row-activated" handler: as the Connect button, for the activated row.
void spawn_doubleclick_cb(GtkTreeView* tree_view, GtkTreePath* path, GtkTreeViewColumn* column,
                          gpointer data);
// Shell mode close handler: opens "End Session" and keeps the window.
gboolean root_window_delete_event(GtkWidget* window, GdkEvent* event, gpointer data);
// Users without administration rights may not close the window through the window manager.
gboolean block_close(GtkWidget* window, GdkEvent* event, gpointer data);
