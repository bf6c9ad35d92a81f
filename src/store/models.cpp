#include "store/models.h"

#include "store/record.h"

GtkListStore* master_connection_list = nullptr;
GtkTreeStore* current_user_connection_tree = nullptr;
GtkTreeStore* selected_user_connection_tree = nullptr;
std::string current_user_filename;

int show_gui = 1;
int show_taskbar = 0;
int kiosk_mode = 0;

gboolean active_connections_foreach(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter,
                                    gpointer found)
{
    if (model_text(model, iter, TC_PID) == no_process)
        return FALSE;
    *static_cast<gboolean*>(found) = TRUE;
    return TRUE;
}

gboolean active_connections(GtkTreeModel* model)
{
    gboolean found = FALSE;
    gtk_tree_model_foreach(model, active_connections_foreach, &found);
    return found;
}

bool current_user_sessions_active()
{
    return active_connections(GTK_TREE_MODEL(current_user_connection_tree));
}
