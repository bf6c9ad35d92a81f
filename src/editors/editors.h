#pragma once
// The editor windows, one per connection type. caller is not used; model and path name
// the master row to edit, or are null for a new connection.
#include <gtk/gtk.h>

void rd_dialog(GtkWidget* caller, GtkTreeModel* model, GtkTreePath* path);
void xdm_dialog(GtkWidget* caller, GtkTreeModel* model, GtkTreePath* path);
void web_dialog(GtkWidget* caller, GtkTreeModel* model, GtkTreePath* path);
void other_dialog(GtkWidget* caller, GtkTreeModel* model, GtkTreePath* path);
// The ICA editor takes only the master row to edit (null for a new connection).
void ica_dialog(GtkTreePath* path);
// DAS connections carry no settings: the editor only ever creates one.
void das_dialog();
// Runs the maker's DAS set-up wizard and waits for it; always 1.
int das_wizard_fork();
