#pragma once
// Adding, editing and deleting connections: the type chooser, the edit and delete
// buttons of a master list view, and their variants for a view of a user's tree.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// False (the user was asked and said No) when the running user has sessions that the
// change may disturb; true when there are none or the user goes on.
bool confirm_change_while_active(GtkWindow* parent);

// Add: the type chooser, then the chosen type's editor. parent_window is hidden meanwhile.
void add_connection_dialog(GtkWidget* widget, gpointer parent_window);
void add_connection_cb(GtkWidget* widget, gpointer chooser);
// Edit: the editor of the row selected in a view of the master list (DAS has none).
void edit_connection(GtkWidget* parent, gpointer master_view);
// Delete: removes the selected master row at once, saves, reloads the running user's tree.
void delete_connection_cb(GtkWidget* widget, gpointer master_selection);

// The same from a view of a user connection tree, each after the running-sessions question.
void wizard_add_connection(GtkWidget* widget, gpointer parent_window);
void wizard_edit_connection(GtkWidget* parent, gpointer tree_selection);
void wizard_delete_connection(GtkWidget* widget, gpointer tree_selection);
gboolean wizard_edit_foreach(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer key);
gboolean wizard_delete_foreach(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer key);

// The chooser's choices, in order, by the installed programs and the shell mode.
std::vector<std::string> add_connection_choices(bool das_present, bool firefox_present,
                                                bool shell);

// More than 4 free blocks on the file system of /etc/.kestrel.
bool enough_disk_space();
