#include "store/master_index.h"

#include "platform/attached.h"
#include "store/record.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

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

master_row_index& index_of(GtkListStore* list) { return attached<master_row_index>(list, master_index_key); }

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
