#pragma once
// The Advanced window's edits of the administered user's tree
// (selected_user_connection_tree): assigning connections, their order, primary or
// secondary, and the start flags. The rules of where a row moves are admin/tree_moves.h.
#include <gtk/gtk.h>

// Adds the master list's selected connection as a new primary, unless the user has it.
void move_right_cb(GtkWidget* widget, gpointer master_selection);
void move_doubleclick_cb(GtkTreeView* master_view, GtkTreePath* path, GtkTreeViewColumn* column,
                         gpointer data);
void move_left_cb(GtkWidget* widget, gpointer tree_selection);
void move_up_cb(GtkWidget* widget, gpointer tree_selection);
void move_down_cb(GtkWidget* widget, gpointer tree_selection);

// The check boxes of the user's tree: a row at path_text.
void primary_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree_view);
void automatic_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);
void persistent_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);
void prompt_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer tree);
