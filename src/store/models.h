#pragma once
// The connection models and the settings carried in the master list header. They live
// for the whole run and are the only copy of the connections in memory; start-up
// creates and fills them.
#include <gtk/gtk.h>
#include <string>

extern GtkListStore* master_connection_list;          // every connection, sorted by name
extern GtkTreeStore* current_user_connection_tree;    // what the main window shows and polls
extern GtkTreeStore* selected_user_connection_tree;   // the tree of the user being administered
extern std::string current_user_filename;             // the running user's kestrel.inf

extern int show_gui;      // master list header: show the main window to non-administrators
extern int show_taskbar;  // the window manager's taskbar is shown (kept in the options file too)
extern int kiosk_mode;    // the web browser runs as a kiosk (kept in the options file too)

// TRUE when any row, primary or secondary, has a running session.
gboolean active_connections(GtkTreeModel* model);
// The walk of active_connections: stops (TRUE) at the first row with a process id.
gboolean active_connections_foreach(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                                    gpointer found);
// True while any connection of the running user has a session: leaving the program or
// changing connections then asks first.
bool current_user_sessions_active();
