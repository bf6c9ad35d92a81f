#include "shell/name_column.h"

#include "platform/attached.h"
#include "platform/text.h"
#include "store/record.h"

#include <algorithm>

namespace {

// The room a tree view gives an expander arrow beyond the style's expander size.
constexpr int expander_padding = 4;

// Measures names the way the Name column's text cell does, with one text layout for
// all of them: creating a cell's layout for every row would cost more than the text. As
// a column sized to its contents, the column then holds the widest name seen so far
// with the expanders' room of the deepest row.
class name_measure {
public:
    explicit name_measure(GtkTreeView* view)
        : column_(gtk_tree_view_get_column(view, 0)),
          layout_(gtk_widget_create_pango_layout(GTK_WIDGET(view), nullptr))
    {
        gint xpad = 0;
        if (GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column_))) {
            gtk_cell_renderer_get_padding(GTK_CELL_RENDERER(cells->data), &xpad, nullptr);
            g_list_free(cells);
        }
        gint focus_line = 0;
        gint separator = 0;
        gint expander = 0;
        gtk_widget_style_get(GTK_WIDGET(view), "focus-line-width", &focus_line, "horizontal-separator",
                             &separator, "expander-size", &expander, nullptr);
        // Around the text: the cell's padding and focus line, and the column's separator.
        room_ = 2 * xpad + 2 * focus_line + separator;
        // The name column carries the expanders: an arrow's room on every level, and the
        // indentation of the levels below the first.
        indentation_ = gtk_tree_view_get_level_indentation(view);
        expander_ = gtk_tree_view_get_show_expanders(view) ? expander + expander_padding : 0;
    }
    ~name_measure() { g_object_unref(layout_); }
    name_measure(const name_measure&) = delete;
    name_measure& operator=(const name_measure&) = delete;

    // Takes in a row's name and depth; widens the column when they need more room.
    void fit(GtkTreeModel* model, GtkTreeIter* iter, int depth)
    {
        gchar* name = nullptr;
        gtk_tree_model_get(model, iter, TC_NAME, &name, -1);
        pango_layout_set_text(layout_, shown_text(name ? name : "").c_str(), -1);
        g_free(name);
        PangoRectangle text;
        pango_layout_get_pixel_extents(layout_, nullptr, &text);
        widest_ = std::max(widest_, text.x + text.width);
        deepest_ = std::max(deepest_, depth);
        const int width = widest_ + room_ + (deepest_ - 1) * indentation_ + deepest_ * expander_;
        if (width > gtk_tree_view_column_get_fixed_width(column_))
            gtk_tree_view_column_set_fixed_width(column_, width);
    }

private:
    GtkTreeViewColumn* column_;
    PangoLayout* layout_;
    int room_ = 0;
    int indentation_ = 0;
    int expander_ = 0;
    int widest_ = 0;
    int deepest_ = 1;
};

constexpr const char* name_measure_key = "kestrelle-name-measure";

name_measure& measure_of(GtkTreeView* view) { return attached<name_measure>(view, name_measure_key); }

gboolean widen_for_row_cb(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer view)
{
    measure_of(GTK_TREE_VIEW(view)).fit(model, iter, gtk_tree_path_get_depth(path));
    return FALSE;
}

gboolean widen_for_all_rows_cb(gpointer view)
{
    if (GtkTreeModel* model = gtk_tree_view_get_model(GTK_TREE_VIEW(view)))
        gtk_tree_model_foreach(model, widen_for_row_cb, view);
    return FALSE;
}

void view_mapped_cb(GtkWidget* view, gpointer)
{
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, widen_for_all_rows_cb, g_object_ref(view), g_object_unref);
}

void row_changed_cb(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer view)
{
    if (gtk_widget_get_mapped(GTK_WIDGET(view)))
        widen_for_row_cb(model, path, iter, view);
}

}  // namespace

void fit_name_column(GtkTreeView* view)
{
    gtk_tree_view_set_fixed_height_mode(view, TRUE);
    g_signal_connect(view, "map", G_CALLBACK(view_mapped_cb), nullptr);
    if (GtkTreeModel* model = gtk_tree_view_get_model(view))
        for (const char* signal : {"row-inserted", "row-changed"})
            g_signal_connect_object(model, signal, G_CALLBACK(row_changed_cb), view, GConnectFlags(0));
}

