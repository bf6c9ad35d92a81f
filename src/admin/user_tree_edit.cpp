#include "admin/user_tree_edit.h"

#include "admin/tree_moves.h"
#include "platform/message.h"
#include "store/models.h"
#include "store/record.h"
#include "ui/widgets.h"

#include <optional>
#include <string>

namespace {

constexpr const char* demote_refused =
    "\nPlease remove or promote secondary connections before demoting this connection.\n";

GtkTreeStore* user_tree() { return selected_user_connection_tree; }
GtkTreeModel* user_model() { return GTK_TREE_MODEL(selected_user_connection_tree); }

tree_position position_of(GtkTreePath* path)
{
    const gint* indices = gtk_tree_path_get_indices(path);
    if (gtk_tree_path_get_depth(path) > 1)
        return {indices[0], indices[1]};
    return {indices[0], -1};
}

GtkTreePath* path_of(tree_position position)
{
    return position.is_secondary() ? gtk_tree_path_new_from_indices(position.primary, position.secondary, -1)
                                   : gtk_tree_path_new_from_indices(position.primary, -1);
}

tree_shape shape_of(GtkTreeModel* model)
{
    tree_shape shape;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter))
        shape.push_back(gtk_tree_model_iter_n_children(model, &iter));
    return shape;
}

using target_rule = std::optional<tree_position> (*)(const tree_shape&, tree_position);

void move_selected(gpointer tree_selection, target_rule rule, bool up)
{
    GtkTreeSelection* selection = GTK_TREE_SELECTION(tree_selection);
    GtkTreeModel* model = nullptr;
    GtkTreeIter selected;
    if (!gtk_tree_selection_get_selected(selection, &model, &selected))
        return;
    GtkTreePath* path = gtk_tree_model_get_path(model, &selected);
    const tree_position from = position_of(path);
    gtk_tree_path_free(path);
    const std::optional<tree_position> to = rule(shape_of(model), from);
    if (!to)
        return;
    GtkTreePath* target_path = path_of(*to);
    GtkTreeIter target;
    if (gtk_tree_model_get_iter(model, &target, target_path)) {
        tree_row a = read_tree_row(model, &selected);
        tree_row b = read_tree_row(model, &target);
        exchange_rows(a, b, up, from.is_secondary(), to->is_secondary());
        write_tree_row(GTK_TREE_STORE(model), &selected, a);
        write_tree_row(GTK_TREE_STORE(model), &target, b);
        gtk_tree_selection_select_iter(selection, &target);
    }
    gtk_tree_path_free(target_path);
}

bool top_level_row(GtkTreeModel* model, const gchar* path_text, GtkTreeIter* iter)
{
    if (!gtk_tree_model_get_iter_from_string(model, iter, path_text))
        return false;
    GtkTreeIter parent;
    return !gtk_tree_model_iter_parent(model, &parent, iter);
}

void flip(GtkTreeStore* tree, GtkTreeIter* iter, int column)
{
    const bool on = model_flag(GTK_TREE_MODEL(tree), iter, column);
    gtk_tree_store_set(tree, iter, column, !on, -1);
}

// Moves a row to its new place (made by place) with its start flags cleared.
template <typename placer>
void move_row(GtkTreeStore* tree, GtkTreeIter* row, bool primary, placer place)
{
    tree_row moved = read_tree_row(GTK_TREE_MODEL(tree), row);
    moved.primary = primary;
    moved.automatic = moved.persistent = moved.prompt = false;
    GtkTreeIter added;
    place(&added);
    write_tree_row(tree, &added, moved);
    gtk_tree_store_remove(tree, row);
}

}  // namespace

void move_right_cb(GtkWidget*, gpointer master_selection)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(GTK_TREE_SELECTION(master_selection), &model, &iter))
        return;
    const std::string name = model_text(model, &iter, MC_NAME);
    const std::string type = model_text(model, &iter, MC_TYPE);
    locate_key key{name.c_str(), type.c_str(), {}, FALSE};
    save_if_unique_connection(user_tree(), &key);
}

void move_doubleclick_cb(GtkTreeView* master_view, GtkTreePath*, GtkTreeViewColumn*, gpointer)
{
    move_right_cb(nullptr, gtk_tree_view_get_selection(master_view));
}

void move_left_cb(GtkWidget*, gpointer tree_selection)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_selection_get_selected(GTK_TREE_SELECTION(tree_selection), &model, &iter))
        gtk_tree_store_remove(GTK_TREE_STORE(model), &iter);
}

void move_up_cb(GtkWidget*, gpointer tree_selection)
{
    move_selected(tree_selection, move_up_target, true);
}

void move_down_cb(GtkWidget*, gpointer tree_selection)
{
    move_selected(tree_selection, move_down_target, false);
}

void primary_cb(GtkCellRendererToggle*, gchar* path_text, gpointer tree_view)
{
    GtkTreeIter row;
    if (g_strcmp0(path_text, "0") == 0 || !gtk_tree_model_get_iter_from_string(user_model(), &row, path_text))
        return;
    GtkTreeIter parent;
    if (gtk_tree_model_iter_parent(user_model(), &parent, &row)) {
        move_row(user_tree(), &row, true, [&](GtkTreeIter* added) {
            gtk_tree_store_insert_after(user_tree(), added, nullptr, &parent);
        });
    } else if (gtk_tree_model_iter_has_child(user_model(), &row)) {
        show_error(demote_refused);
        return;
    } else {
        GtkTreePath* path = gtk_tree_model_get_path(user_model(), &row);
        gtk_tree_path_prev(path);
        GtkTreeIter previous;
        gtk_tree_model_get_iter(user_model(), &previous, path);
        gtk_tree_path_free(path);
        move_row(user_tree(), &row, false, [&](GtkTreeIter* added) {
            gtk_tree_store_append(user_tree(), added, &previous);
        });
    }
    if (tree_view)
        expand_every_group(GTK_TREE_VIEW(tree_view));
}

void automatic_cb(GtkCellRendererToggle*, gchar* path_text, gpointer tree)
{
    GtkTreeIter row;
    if (top_level_row(GTK_TREE_MODEL(tree), path_text, &row))
        flip(GTK_TREE_STORE(tree), &row, TC_AUTOMATIC);
}

void persistent_cb(GtkCellRendererToggle*, gchar* path_text, gpointer tree)
{
    GtkTreeIter row;
    if (!top_level_row(GTK_TREE_MODEL(tree), path_text, &row))
        return;
    flip(GTK_TREE_STORE(tree), &row, TC_PERSISTENT);
    gtk_tree_store_set(GTK_TREE_STORE(tree), &row, TC_PROMPT, FALSE, -1);
}

void prompt_cb(GtkCellRendererToggle*, gchar* path_text, gpointer tree)
{
    GtkTreeIter row;
    if (top_level_row(GTK_TREE_MODEL(tree), path_text, &row) &&
        model_flag(GTK_TREE_MODEL(tree), &row, TC_PERSISTENT))
        flip(GTK_TREE_STORE(tree), &row, TC_PROMPT);
}
