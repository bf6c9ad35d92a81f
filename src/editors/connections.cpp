#include "editors/connections.h"

#include "editors/editors.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/save.h"
#include "store/user_file.h"
#include "ui/widgets.h"

#include <sys/statvfs.h>

namespace {

using editor_opener = void (*)(GtkWidget*, GtkTreeModel*, GtkTreePath*);

void new_das_connection(GtkWidget*, GtkTreeModel*, GtkTreePath*) { das_dialog(); }
void open_ica_editor(GtkWidget*, GtkTreeModel*, GtkTreePath* path) { ica_dialog(path); }

// Each type's editor, by its stored type and by its name in the chooser. DAS rows
// cannot be edited: their editor only creates.
struct editor_route {
    const char* type;
    const char* choice;
    editor_opener open_new;
    editor_opener open_existing;
};
constexpr editor_route editor_routes[] = {
    {"DAS", "DAS", new_das_connection, nullptr},
    {"Web", "Firefox", web_dialog, web_dialog},
    {"Other", "Other", other_dialog, other_dialog},
    {"ICA", "Citrix ICA", open_ica_editor, open_ica_editor},
    {"RDP", "rdesktop", rd_dialog, rd_dialog},
    {"XDM", "XDM", xdm_dialog, xdm_dialog},
};

constexpr const char* active_question =
    "Changes made while connections are active may not take effect until those connections "
    "are restarted, will cause the status of existing connections to be improperly reported, "
    "and may cause other unpredictable behavior.\n\nDo you still want to continue?";
constexpr const char* delete_question =
    "Deleting a connection here also deletes it from all other users.\n\nTo only remove it "
    "from a single user, click on the Advanced button and remove it from the appropriate "
    "user(s).\n\nDelete %s from all users?";
constexpr const char* chooser_key = "kestrelle-chooser-combo";
constexpr const char* chooser_parent_key = "kestrelle-chooser-parent";
constexpr int chooser_width = 225;
constexpr int window_border = 10;
constexpr unsigned long minimum_free_blocks = 4;

const editor_route* route_by(const std::string& text, bool by_choice)
{
    for (const editor_route& route : editor_routes)
        if (text == (by_choice ? route.choice : route.type))
            return &route;
    return nullptr;
}

void open_existing(const std::string& type, GtkWidget* parent, GtkTreeModel* model, GtkTreeIter* iter)
{
    const editor_route* route = route_by(type, false);
    if (!route || !route->open_existing)
        return;
    GtkTreePath* path = gtk_tree_model_get_path(model, iter);
    route->open_existing(parent, model, path);
    gtk_tree_path_free(path);
}

void reload_tree(GtkTreeStore* tree)
{
    gtk_tree_store_clear(tree);
    make_connection_tree(tree, current_user_filename.c_str(), user_lines_per_row);
}

gboolean refuse_close(GtkWidget*, GdkEvent*, gpointer) { return TRUE; }

void chooser_cancel_cb(GtkWidget*, gpointer chooser)
{
    auto* parent = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(chooser), chooser_parent_key));
    if (parent)
        gtk_widget_show(parent);
    gtk_widget_destroy(GTK_WIDGET(chooser));
}

GtkWidget* chooser_buttons(GtkWidget* chooser)
{
    return default_cancel_row(chooser, "_Ok", G_CALLBACK(add_connection_cb), G_CALLBACK(chooser_cancel_cb), chooser);
}

GtkWidget* chooser_combo()
{
    GtkWidget* combo = fixed_choice_combo(add_connection_choices(das, firefox, shell_mode), "rdesktop");
    gtk_widget_set_name(combo, "type");
    gtk_entry_set_activates_default(GTK_ENTRY(gtk_bin_get_child(GTK_BIN(combo))), TRUE);
    return combo;
}

// The master row of the user tree's selected row, found by exact name and type.
struct wizard_key {
    std::string name;
    std::string type;
    GtkTreeIter iter{};
    bool found = false;
};

bool selected_tree_key(gpointer tree_selection, wizard_key* key)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(GTK_TREE_SELECTION(tree_selection), &model, &iter))
        return false;
    key->name = model_text(model, &iter, TC_NAME);
    key->type = model_text(model, &iter, TC_TYPE);
    return true;
}

}  // namespace

bool enough_disk_space()
{
    struct statvfs fs;
    return statvfs(root_path(config_dir).c_str(), &fs) == 0 && fs.f_bfree > minimum_free_blocks;
}

bool confirm_change_while_active(GtkWindow* parent)
{
    if (!current_user_sessions_active())
        return true;
    return ask_yes_no(parent, active_question);
}

std::vector<std::string> add_connection_choices(bool das_present, bool firefox_present, bool shell)
{
    std::vector<std::string> choices{"Citrix ICA"};
    if (das_present)
        choices.emplace_back("DAS");
    if (firefox_present)
        choices.emplace_back("Firefox");
    choices.insert(choices.end(), {"rdesktop", "XDM"});
    if (!shell)
        choices.emplace_back("Other");
    return choices;
}

void add_connection_dialog(GtkWidget*, gpointer parent_window)
{
    if (!enough_disk_space()) {
        show_error("\nNot enough available disk space to add connections.\n");
        return;
    }
    auto* parent = static_cast<GtkWidget*>(parent_window);
    if (parent)
        gtk_widget_hide(parent);
    GtkWidget* chooser = program_window("Add Connection");
    gtk_window_set_default_size(GTK_WINDOW(chooser), chooser_width, -1);
    gtk_container_set_border_width(GTK_CONTAINER(chooser), window_border);
    g_signal_connect(chooser, "delete-event", G_CALLBACK(refuse_close), nullptr);
    g_object_set_data(G_OBJECT(chooser), chooser_parent_key, parent);
    GtkWidget* column = gtk_vbox_new(FALSE, window_border);
    gtk_box_pack_start(GTK_BOX(column), gtk_label_new("What type of connection would you like to add?"),
                       FALSE, FALSE, 0);
    GtkWidget* combo = chooser_combo();
    g_object_set_data(G_OBJECT(chooser), chooser_key, combo);
    gtk_box_pack_start(GTK_BOX(column), combo, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), chooser_buttons(chooser), FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(chooser), column);
    gtk_widget_show_all(chooser);
}

void add_connection_cb(GtkWidget*, gpointer chooser)
{
    const std::string choice = combo_text(GTK_WIDGET(g_object_get_data(G_OBJECT(chooser), chooser_key)));
    gtk_widget_destroy(GTK_WIDGET(chooser));
    if (const editor_route* route = route_by(choice, true))
        route->open_new(nullptr, nullptr, nullptr);
}

void edit_connection(GtkWidget* parent, gpointer master_view)
{
    if (!enough_disk_space()) {
        show_error("\nNot enough available disk space to edit connections.\n");
        return;
    }
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(master_view));
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_selection_get_selected(selection, &model, &iter))
        open_existing(model_text(model, &iter, MC_TYPE), parent, model, &iter);
}

void delete_connection_cb(GtkWidget*, gpointer master_selection)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(GTK_TREE_SELECTION(master_selection), &model, &iter))
        return;
    gtk_list_store_remove(GTK_LIST_STORE(model), &iter);
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    reload_tree(current_user_connection_tree);
}

void wizard_add_connection(GtkWidget* widget, gpointer parent_window)
{
    if (confirm_change_while_active(nullptr))
        add_connection_dialog(widget, parent_window);
}

gboolean wizard_edit_foreach(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer data)
{
    auto* key = static_cast<wizard_key*>(data);
    if (model_text(model, iter, MC_NAME) != key->name || model_text(model, iter, MC_TYPE) != key->type)
        return FALSE;
    key->iter = *iter;
    key->found = true;
    return TRUE;
}

gboolean wizard_delete_foreach(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer data)
{
    if (!wizard_edit_foreach(model, path, iter, data))
        return FALSE;
    gtk_list_store_remove(GTK_LIST_STORE(model), iter);
    return TRUE;
}

void wizard_edit_connection(GtkWidget* parent, gpointer tree_selection)
{
    if (!enough_disk_space()) {
        show_error("\nNot enough available disk space to edit connections.\n");
        return;
    }
    wizard_key key;
    if (!confirm_change_while_active(nullptr) || !selected_tree_key(tree_selection, &key))
        return;
    GtkTreeModel* master = GTK_TREE_MODEL(master_connection_list);
    gtk_tree_model_foreach(master, wizard_edit_foreach, &key);
    if (key.found)
        open_existing(key.type, parent, master, &key.iter);
}

void wizard_delete_connection(GtkWidget*, gpointer tree_selection)
{
    wizard_key key;
    if (!confirm_change_while_active(nullptr) || !selected_tree_key(tree_selection, &key))
        return;
    gchar* question = g_strdup_printf(delete_question, key.name.c_str());
    const bool yes = ask_yes_no(nullptr, question);
    g_free(question);
    if (!yes)
        return;
    gtk_tree_model_foreach(GTK_TREE_MODEL(master_connection_list), wizard_delete_foreach, &key);
    if (!key.found)
        return;
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    reload_tree(selected_user_connection_tree);
    reload_tree(current_user_connection_tree);
}
