#include "store/record.h"

#include "platform/message.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr const char* type_texts[] = {"RDP", "ICA", "XDM", "Web", "DAS", "Other"};

bool is_master_flag(int column) { return column == MC_PING || column == MC_FROM_FILE; }

}  // namespace

connection_type parse_connection_type(const std::string& text)
{
    for (size_t i = 0; i < std::size(type_texts); ++i)
        if (text == type_texts[i])
            return static_cast<connection_type>(i);
    return connection_type::unknown;
}

GtkListStore* create_master_store()
{
    GType types[MC_COUNT];
    for (int c = 0; c < MC_COUNT; ++c)
        types[c] = is_master_flag(c) ? G_TYPE_BOOLEAN : G_TYPE_STRING;
    return gtk_list_store_newv(MC_COUNT, types);
}

GtkTreeStore* create_user_tree_store()
{
    return gtk_tree_store_new(TC_COUNT, G_TYPE_BOOLEAN, G_TYPE_STRING, G_TYPE_STRING,
                              G_TYPE_BOOLEAN, G_TYPE_BOOLEAN, G_TYPE_BOOLEAN, G_TYPE_STRING,
                              G_TYPE_STRING, G_TYPE_INT);
}

std::string model_text(GtkTreeModel* model, GtkTreeIter* iter, int column)
{
    gchar* value = nullptr;
    gtk_tree_model_get(model, iter, column, &value, -1);
    std::unique_ptr<gchar, decltype(&g_free)> owner(value, g_free);
    return value ? value : "";
}

bool model_flag(GtkTreeModel* model, GtkTreeIter* iter, int column)
{
    gboolean value = FALSE;
    gtk_tree_model_get(model, iter, column, &value, -1);
    return value;
}

connection_record read_master_row(GtkTreeModel* model, GtkTreeIter* iter)
{
    connection_record record;
    for (int c = 0; c < MC_COUNT; ++c) {
        GValue value = G_VALUE_INIT;
        gtk_tree_model_get_value(model, iter, c, &value);
        if (c == MC_PING)
            record.ping_first = g_value_get_boolean(&value);
        else if (c == MC_FROM_FILE)
            record.from_file = g_value_get_boolean(&value);
        else if (const gchar* text = g_value_get_string(&value))
            record.col[c] = text;
        g_value_unset(&value);
    }
    return record;
}

namespace {

// The values of a record, ready for the store's multi-column setters. A new row needs
// no empty texts: a column never set reads as "" (model_text, read_master_row), and
// most columns of a connection are empty, so a loaded list is built much faster
// without them.
struct master_values {
    enum class texts { all, non_empty };

    gint columns[MC_COUNT];
    GValue values[MC_COUNT];
    int count = 0;

    master_values(const connection_record& record, texts which)
    {
        for (int c = 0; c < MC_COUNT; ++c) {
            const bool flag = is_master_flag(c);
            if (!flag && which == texts::non_empty && record.col[c].empty())
                continue;
            columns[count] = c;
            GValue* value = &values[count++];
            *value = G_VALUE_INIT;
            if (flag) {
                g_value_init(value, G_TYPE_BOOLEAN);
                g_value_set_boolean(value, c == MC_PING ? record.ping_first : record.from_file);
            } else {
                g_value_init(value, G_TYPE_STRING);
                g_value_set_static_string(value, record.col[c].c_str());
            }
        }
    }
    ~master_values()
    {
        for (int i = 0; i < count; ++i)
            g_value_unset(&values[i]);
    }
};

}  // namespace

void write_master_row(GtkListStore* store, GtkTreeIter* iter, const connection_record& record)
{
    master_values row(record, master_values::texts::all);
    gtk_list_store_set_valuesv(store, iter, row.columns, row.values, row.count);
}

GtkTreeIter insert_master_row(GtkListStore* store, int position, const connection_record& record)
{
    master_values row(record, master_values::texts::non_empty);
    GtkTreeIter iter;
    gtk_list_store_insert_with_valuesv(store, &iter, position, row.columns, row.values, row.count);
    return iter;
}

tree_row read_tree_row(GtkTreeModel* model, GtkTreeIter* iter)
{
    tree_row row;
    gboolean primary, automatic, persistent, prompt;
    gchar *name, *type, *pid, *status;
    gtk_tree_model_get(model, iter, TC_PRIMARY, &primary, TC_NAME, &name, TC_TYPE, &type,
                       TC_AUTOMATIC, &automatic, TC_PERSISTENT, &persistent, TC_PROMPT, &prompt,
                       TC_PID, &pid, TC_STATUS, &status, TC_POLLS, &row.polls, -1);
    row.primary = primary;
    row.automatic = automatic;
    row.persistent = persistent;
    row.prompt = prompt;
    row.name = name ? name : "";
    row.type = type ? type : "";
    row.pid = pid ? pid : "";
    row.status = status ? status : "";
    g_free(name);
    g_free(type);
    g_free(pid);
    g_free(status);
    return row;
}

void write_tree_row(GtkTreeStore* store, GtkTreeIter* iter, const tree_row& row)
{
    gtk_tree_store_set(store, iter, TC_PRIMARY, row.primary, TC_NAME, row.name.c_str(), TC_TYPE,
                       row.type.c_str(), TC_AUTOMATIC, row.automatic, TC_PERSISTENT,
                       row.persistent, TC_PROMPT, row.prompt, TC_PID, row.pid.c_str(), TC_STATUS,
                       row.status.c_str(), TC_POLLS, row.polls, -1);
}

namespace {

gboolean locate_by_columns(GtkTreeModel* model, GtkTreeIter* iter, locate_key* key,
                           int name_column, int type_column)
{
    std::string name = model_text(model, iter, name_column);
    std::string type = model_text(model, iter, type_column);
    if (key->name && key->type && name == key->name && type == key->type) {
        key->iter = *iter;
        key->found = TRUE;
        return TRUE;
    }
    key->iter = GtkTreeIter{};
    key->found = FALSE;
    return FALSE;
}

}  // namespace

gboolean locate_in_list(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer key)
{
    return locate_by_columns(model, iter, static_cast<locate_key*>(key), MC_NAME, MC_TYPE);
}

gboolean locate_in_tree(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer key)
{
    return locate_by_columns(model, iter, static_cast<locate_key*>(key), TC_NAME, TC_TYPE);
}

int save_if_unique_connection(GtkTreeStore* tree, locate_key* key)
{
    key->found = FALSE;
    gtk_tree_model_foreach(GTK_TREE_MODEL(tree), locate_in_tree, key);
    if (key->found) {
        show_error("\nA connection with that name and type already exists.\n");
        return 0;
    }
    tree_row row;
    row.name = key->name;
    row.type = key->type;
    GtkTreeIter iter;
    gtk_tree_store_append(tree, &iter, nullptr);
    write_tree_row(tree, &iter, row);
    return 1;
}

unsigned long decimal_column(const std::string& text)
{
    return static_cast<unsigned long>(std::strtol(text.c_str(), nullptr, 10));
}
