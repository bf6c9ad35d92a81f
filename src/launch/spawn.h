#pragma once
// Starting a connection of the user's tree: fork at once, do the slow work (look-up,
// reachability, command line, exec) in the child, record the child in the row.
#include <gtk/gtk.h>

// Child exit statuses: the connection is no longer in the master list; the session
// program could not be started or has ended.
inline constexpr int exit_connection_gone = 189;
inline constexpr int exit_session_over = 69;

int spawn_connection(GtkTreeModel* model, GtkTreeIter* iter);
void spawn_button_cb(GtkWidget* button, GtkTreeView* tree_view);
void spawn_doubleclick_cb(GtkTreeView* tree_view, GtkTreePath* path, GtkTreeViewColumn* column,
                          gpointer data);
