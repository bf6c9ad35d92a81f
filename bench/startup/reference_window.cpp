// The yardstick for Kestrelle's start-up: a bare GTK 2 window of the same shape as its
// main window (a tree view of three text columns in a scrolled window, with a column of
// buttons beside it), holding ROWS rows, shown expanded. Usage: reference_window [ROWS [GROUP]]
// GROUP rows make one primary row and its children (default 1: a flat list).
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

GtkTreeStore* filled_store(int rows, int group)
{
    GtkTreeStore* store = gtk_tree_store_new(3, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
    GtkTreeIter primary;
    for (int i = 0; i < rows; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "Connection %05d", i);
        GtkTreeIter iter;
        const bool top_level = i % group == 0;
        gtk_tree_store_append(store, &iter, top_level ? nullptr : &primary);
        if (top_level)
            primary = iter;
        gtk_tree_store_set(store, &iter, 0, name, 1, "RDP", 2, "Not Connected", -1);
    }
    return store;
}

void add_column(GtkTreeView* view, const char* title, int column, int width)
{
    GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(
        title, gtk_cell_renderer_text_new(), "text", column, nullptr);
    if (width > 0) {
        gtk_tree_view_column_set_sizing(view_column, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(view_column, width);
    } else {
        gtk_tree_view_column_set_resizable(view_column, TRUE);
        gtk_tree_view_column_set_min_width(view_column, 290);
    }
    gtk_tree_view_append_column(view, view_column);
}

GtkWidget* connection_view(int rows, int group)
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(filled_store(rows, group)));
    gtk_tree_view_set_rules_hint(GTK_TREE_VIEW(view), TRUE);
    add_column(GTK_TREE_VIEW(view), "Name", 0, 0);
    add_column(GTK_TREE_VIEW(view), "Type", 1, 45);
    add_column(GTK_TREE_VIEW(view), "Status", 2, 102);
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    return scrolled;
}

GtkWidget* button_column()
{
    GtkWidget* buttons = gtk_vbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_EDGE);
    gtk_box_set_spacing(GTK_BOX(buttons), 10);
    for (const char* label : {"_Connect", "E_xit", "_Settings", "Ad_vanced", "_Help"})
        gtk_container_add(GTK_CONTAINER(buttons), gtk_button_new_with_mnemonic(label));
    return buttons;
}

}  // namespace

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    int rows = argc > 1 ? std::atoi(argv[1]) : 10;
    int group = argc > 2 ? std::max(1, std::atoi(argv[2])) : 1;

    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), "Reference");
    gtk_window_set_position(GTK_WINDOW(window), GTK_WIN_POS_CENTER);
    gtk_container_set_border_width(GTK_CONTAINER(window), 10);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);

    GtkWidget* row = gtk_hbox_new(FALSE, 10);
    GtkWidget* list = connection_view(rows, group);
    gtk_box_pack_start(GTK_BOX(row), list, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row), button_column(), FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), row);
    gtk_tree_view_expand_all(GTK_TREE_VIEW(gtk_bin_get_child(GTK_BIN(list))));
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
