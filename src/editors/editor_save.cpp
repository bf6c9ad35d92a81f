#include "editors/editor_save.h"

#include "editors/connect_info.h"
#include "platform/message.h"
#include "shell/globals.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/save.h"
#include "store/user_file.h"
#include "ui/widgets.h"

namespace {

constexpr int window_border = 10;
constexpr int row_spacing = 10;
constexpr int first_setting_column = MC_SERVER;
constexpr int last_setting_column = MC_ICA_MASK;

GtkTreeModel* master_model() { return GTK_TREE_MODEL(master_connection_list); }

void free_editor(GtkWidget*, editor* e)
{
    if (e->path)
        gtk_tree_path_free(e->path);
    delete e;
}

std::string name_text(const editor* e) { return entry_bytes(e->name); }

// A new connection needs a name, and its (name, type) must not be taken.
bool new_name_accepted(const std::string& name, const char* type)
{
    if (name.empty()) {
        show_error("\nPlease enter a name for this connection.\n");
        return false;
    }
    if (find_master_row(master_connection_list, name, type, nullptr)) {
        show_error("\nA connection with that name and type already exists.\n");
        return false;
    }
    return true;
}

void copy_settings(const connection_record& from, connection_record& to)
{
    for (int c = first_setting_column; c <= last_setting_column; ++c)
        to[c] = from[c];
}

void store_new(const editor_kind& kind, const std::string& name, const connection_record& values)
{
    connection_record record = new_record(kind, name);
    copy_settings(values, record);
    insert_master_row(master_connection_list, master_insert_position(master_model(), name), record);
}

void store_edited(GtkTreePath* path, const connection_record& values)
{
    GtkTreeIter iter;
    if (!gtk_tree_model_get_iter(master_model(), &iter, path))
        return;
    connection_record record = read_master_row(master_model(), &iter);
    copy_settings(values, record);
    write_master_row(master_connection_list, &iter, record);
}

// A new connection is offered to the user being administered.
void offer_to_selected_user(const std::string& name, const char* type)
{
    locate_key key{name.c_str(), type, {}, FALSE};
    if (save_if_unique_connection(selected_user_connection_tree, &key))
        save_user_connections(GTK_TREE_MODEL(selected_user_connection_tree), selected_user_name);
}

}  // namespace

connection_info connect_info;

connection_record new_record(const editor_kind& kind, const std::string& name)
{
    connection_record record;
    record[MC_NAME] = name;
    record[MC_TYPE] = kind.type;
    record.ping_first = kind.ping_first;
    record[MC_PING_PORT] = kind.ping_port;
    record[MC_PING_VALID] = "1";
    record[MC_RDP_FLAGS] = "0";
    record[MC_ICA_MASK] = "0";
    return record;
}

editor* open_editor(const editor_kind& kind, const char* title, GtkTreePath* path, int widget_count)
{
    auto* e = new editor{};
    e->kind = &kind;
    e->window = program_window(title);
    gtk_container_set_border_width(GTK_CONTAINER(e->window), window_border);
    e->path = path ? gtk_tree_path_copy(path) : nullptr;
    e->widgets.assign(widget_count, nullptr);
    connect_info = {};
    g_signal_connect(e->window, "destroy", G_CALLBACK(free_editor), e);
    hide_while_open(e->window, misc_widgets ? misc_widgets[0] : nullptr);
    return e;
}

void load_editor(editor* e)
{
    GtkTreeIter iter;
    if (!e->path || !gtk_tree_model_get_iter(master_model(), &iter, e->path)) {
        if (e->path)
            gtk_tree_path_free(e->path);
        e->path = nullptr;  // a row that is gone makes this a new connection
        return;
    }
    const connection_record record = read_master_row(master_model(), &iter);
    connect_info.text = record.col;
    set_entry_bytes(e->name, record[MC_NAME]);
    gtk_widget_set_sensitive(e->name, FALSE);
    const int flags_column = e->kind->flags_column;
    fill_widgets(e->kind->columns, e->widgets.data(), record,
                 flags_column >= 0 ? decimal_column(record[flags_column]) : 0);
}

void show_editor(editor* e, GtkWidget* content, GCallback save)
{
    GtkWidget* column = gtk_vbox_new(FALSE, row_spacing);
    gtk_box_pack_start(GTK_BOX(column), content, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(column), save_cancel_row(e->window, save, G_CALLBACK(editor_cancel_cb), e),
                     FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(e->window), column);
    gtk_widget_show_all(e->window);
}

connection_record editor_values(const editor* e)
{
    connection_record values = new_record(*e->kind, name_text(e));
    read_widgets(e->kind->columns, e->widgets.data(), values, connect_info.flags);
    if (e->kind->flags_column >= 0)
        values[e->kind->flags_column] = five_digits(connect_info.flags);
    return values;
}

bool finish_editor_save(editor* e, const connection_record& values)
{
    const std::string name = name_text(e);
    const bool is_new = e->path == nullptr;
    if (is_new && !new_name_accepted(name, e->kind->type))
        return false;
    if (is_new)
        store_new(*e->kind, name, values);
    else
        store_edited(e->path, values);
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    if (is_new)
        offer_to_selected_user(name, e->kind->type);
    gtk_widget_destroy(e->window);
    return true;
}

void editor_cancel_cb(GtkWidget*, editor* e) { gtk_widget_destroy(e->window); }
