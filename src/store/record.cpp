#include "store/record.h"

#include "platform/message.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
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

namespace {

// The hashes of the (name, type) pairs of a master list with their rows, in list order
// and sorted by hash, so that a look-up (every row of a user file, every launch) needs no walk over
// the whole list. The index lives with the list and is built on the first look-up after
// any change of the list, unless the loader of a new list hands it the rows; its change handlers are connected only while it is current,
// so that filling a list costs nothing here.
class master_row_index {
public:
    // Freed with its list, whose signal handlers are gone by then.
    explicit master_row_index(GtkListStore* list) : list_(list) {}

    bool find(const std::string& name, const std::string& type, GtkTreeIter* found)
    {
        if (!current_)
            build();
        const size_t hash = pair_hash(name, type);
        auto candidate = std::lower_bound(rows_.begin(), rows_.end(), hash,
                                          [](const entry& e, size_t h) { return e.hash < h; });
        for (; candidate != rows_.end() && candidate->hash == hash; ++candidate)
            if (row_is(candidate->iter, name, type)) {
                if (found)
                    *found = candidate->iter;
                return true;
            }
        return false;
    }

    void prepare()
    {
        if (!current_)
            build();
    }

    // Takes the list's rows, in list order.
    void adopt(const std::vector<master_row_ref>& rows)
    {
        rows_.clear();
        rows_.reserve(rows.size());
        for (const master_row_ref& row : rows)
            rows_.push_back({pair_hash(row.name, row.type), row.iter});
        // Equal hashes keep list order, so the first matching row is the one a walk finds.
        std::stable_sort(rows_.begin(), rows_.end(),
                         [](const entry& a, const entry& b) { return a.hash < b.hash; });
        forget();
        for (const char* signal : {"row-inserted", "row-changed", "row-deleted", "rows-reordered"})
            g_signal_connect_swapped(list_, signal, G_CALLBACK(changed_cb), this);
        current_ = true;
    }

private:
    // Only the hash is kept: a candidate's name and type are read from the list, which
    // keeps the index small however long the list is.
    struct entry {
        size_t hash;
        GtkTreeIter iter;
    };

    bool row_is(GtkTreeIter iter, const std::string& name, const std::string& type) const
    {
        GtkTreeModel* model = GTK_TREE_MODEL(list_);
        return model_text(model, &iter, MC_NAME) == name && model_text(model, &iter, MC_TYPE) == type;
    }

    static size_t pair_hash(std::string_view name, std::string_view type)
    {
        const size_t h = std::hash<std::string_view>{}(name);
        return h ^ (std::hash<std::string_view>{}(type) + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2));
    }

    void build()
    {
        std::vector<master_row_ref> rows;
        GtkTreeModel* model = GTK_TREE_MODEL(list_);
        GtkTreeIter iter;
        for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
             more = gtk_tree_model_iter_next(model, &iter))
            rows.push_back({model_text(model, &iter, MC_NAME), model_text(model, &iter, MC_TYPE), iter});
        adopt(rows);
    }

    void forget()
    {
        if (current_)
            g_signal_handlers_disconnect_by_data(list_, this);
        current_ = false;
    }

    static void changed_cb(master_row_index* index) { index->forget(); }

    GtkListStore* list_;
    std::vector<entry> rows_;
    bool current_ = false;
};

constexpr const char* master_index_key = "kestrelle-master-index";

master_row_index& index_of(GtkListStore* list)
{
    auto* index = static_cast<master_row_index*>(g_object_get_data(G_OBJECT(list), master_index_key));
    if (!index) {
        index = new master_row_index(list);
        g_object_set_data_full(G_OBJECT(list), master_index_key, index,
                               [](gpointer data) { delete static_cast<master_row_index*>(data); });
    }
    return *index;
}

}  // namespace

bool find_master_row(GtkListStore* list, const std::string& name, const std::string& type,
                     GtkTreeIter* found)
{
    return index_of(list).find(name, type, found);
}

void prepare_master_index(GtkListStore* list) { index_of(list).prepare(); }

void index_filled_list(GtkListStore* list, const std::vector<master_row_ref>& rows)
{
    index_of(list).adopt(rows);
}
