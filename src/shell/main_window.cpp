#include "shell/main_window.h"

#include "launch/spawn.h"
#include "platform/message.h"
#include "platform/text.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "shell/dialogs.h"
#include "shell/exit.h"
#include "shell/globals.h"
#include "shell/help.h"
#include "shell/name_column.h"
#include "store/models.h"
#include "store/record.h"
#include "ui/widgets.h"

#include <string>

namespace {

constexpr const char* product_name = "Kestrelle";
constexpr const char* control_panels[] = {"/usr/bin/zarvocontrolpanel", "/usr/bin/xfce-setting-show"};
constexpr int window_border = 10;
constexpr int button_spacing = 10;
// The Name column's least width; it grows to the widest name.
constexpr int name_min_width = 290;
// Tall enough for about ten connections before the list scrolls.
constexpr int window_height = 320;

// The window keeps references to the widgets that later steps of start-up extend.
constexpr const char* tree_view_key = "kestrelle-tree-view";
constexpr const char* button_column_key = "kestrelle-buttons";
constexpr const char* help_button_key = "kestrelle-help-button";

GtkTreeView* connection_view()
{
    return GTK_TREE_VIEW(g_object_get_data(G_OBJECT(root_window), tree_view_key));
}

// Secondary connections are always shown under their primary.
gboolean expand_rows_cb(GtkWidget*, GdkEventWindowState*, gpointer)
{
    if (GtkTreeView* view = connection_view())
        expand_every_group(view);
    return FALSE;
}

// The program keeps running when an administrator closes the window while sessions
// are active; later dialogs must then not refer to the window that is gone.
void forget_root_window(GtkWidget*, gpointer)
{
    root_window = nullptr;
    if (misc_widgets)
        misc_widgets[0] = nullptr;
}

GtkWidget* add_button(const char* label, GCallback handler, gpointer data)
{
    GtkWidget* column = GTK_WIDGET(g_object_get_data(G_OBJECT(root_window), button_column_key));
    GtkWidget* button = gtk_button_new_with_mnemonic(label);
    gtk_box_pack_start(GTK_BOX(column), button, FALSE, FALSE, 0);
    if (handler)
        g_signal_connect(button, "clicked", handler, data);
    return button;
}

GtkWidget* make_connection_view()
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(current_user_connection_tree));
    GtkTreeView* tree = GTK_TREE_VIEW(view);
    gtk_tree_view_set_rules_hint(tree, TRUE);
    gtk_tree_view_set_reorderable(tree, FALSE);
    gtk_tree_view_set_enable_search(tree, FALSE);
    gtk_tree_view_set_search_column(tree, TC_NAME);
    make_user_renderer(tree);
    gtk_tree_view_set_headers_clickable(tree, FALSE);
    g_signal_connect(view, "row-activated", G_CALLBACK(spawn_doubleclick_cb), nullptr);
    return view;
}

void add_connection_list(GtkWidget* view)
{
    GtkWidget* scrolled = vertical_scroller(view);
    GtkWidget* row = gtk_bin_get_child(GTK_BIN(root_window));
    gtk_box_pack_start(GTK_BOX(row), scrolled, TRUE, TRUE, 0);
    gtk_box_reorder_child(GTK_BOX(row), scrolled, 0);
}

gboolean exit_on_close(GtkWidget*, GdkEvent*, gpointer) { return exit_program(); }

void exit_cb(GtkWidget*, gpointer) { exit_program(); }

void connect_close_handlers()
{
    if (shell_mode)
        g_signal_connect(root_window, "delete-event", G_CALLBACK(root_window_delete_event), nullptr);
    else
        g_signal_connect(root_window, "delete-event", G_CALLBACK(exit_on_close), nullptr);
    if (!user_has_root)
        g_signal_connect(root_window, "delete-event", G_CALLBACK(block_close), nullptr);
}

void add_buttons(GtkWidget* view)
{
    GtkWidget* connect = add_button("_Connect", G_CALLBACK(spawn_button_cb), view);
    gtk_widget_set_can_default(connect, TRUE);
    gtk_window_set_default(GTK_WINDOW(root_window), connect);
    if (shell_mode)
        add_button("Sh_utdown", G_CALLBACK(shutdown_dialog), root_window);
    else
        add_button("E_xit", G_CALLBACK(exit_cb), nullptr);
    add_button("_Settings", G_CALLBACK(system_cb), nullptr);
    GtkWidget* help = add_button("_Help", G_CALLBACK(help_dialog), root_window);
    g_object_set_data(G_OBJECT(root_window), help_button_key, help);
}

}  // namespace

void build_main_window()
{
    root_window = program_window(product_name);
    misc_widgets[0] = root_window;
    gtk_container_set_border_width(GTK_CONTAINER(root_window), window_border);
    gtk_window_set_default_size(GTK_WINDOW(root_window), -1, window_height);
    g_signal_connect(root_window, "destroy", G_CALLBACK(forget_root_window), nullptr);

    GtkWidget* row = gtk_hbox_new(FALSE, button_spacing);
    gtk_container_add(GTK_CONTAINER(root_window), row);
    GtkWidget* buttons = gtk_vbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_EDGE);
    gtk_box_set_spacing(GTK_BOX(buttons), button_spacing);
    gtk_box_pack_end(GTK_BOX(row), buttons, FALSE, FALSE, 0);
    g_object_set_data(G_OBJECT(root_window), button_column_key, buttons);

    install_shared_dialogs();
}

void finish_main_window()
{
    GtkWidget* view = make_connection_view();
    g_object_set_data(G_OBJECT(root_window), tree_view_key, view);
    add_connection_list(view);
    add_buttons(view);
    connect_close_handlers();
    g_signal_connect(root_window, "window-state-event", G_CALLBACK(expand_rows_cb), nullptr);
    expand_every_group(GTK_TREE_VIEW(view));
}

void add_advanced_button(GCallback handler)
{
    GtkWidget* advanced = add_button("Ad_vanced", handler, root_window);
    GtkWidget* help = GTK_WIDGET(g_object_get_data(G_OBJECT(root_window), help_button_key));
    GtkWidget* column = gtk_widget_get_parent(help);
    gint help_position = 0;
    gtk_container_child_get(GTK_CONTAINER(column), help, "position", &help_position, nullptr);
    gtk_box_reorder_child(GTK_BOX(column), advanced, help_position);
}

void expand_connection_group(GtkTreeStore* tree, GtkTreeIter* primary)
{
    GtkTreeView* view = root_window ? connection_view() : nullptr;
    GtkTreeModel* model = GTK_TREE_MODEL(tree);
    if (!view || gtk_tree_view_get_model(view) != model || !gtk_tree_model_iter_has_child(model, primary))
        return;
    GtkTreePath* path = gtk_tree_model_get_path(model, primary);
    gtk_tree_view_expand_row(view, path, FALSE);
    gtk_tree_path_free(path);
}

// The rows were expanded when the list was made, and every change of the window's state
// expands them again.
void show_main_window() { gtk_widget_show_all(root_window); }

void make_user_renderer(GtkTreeView* view)
{
    struct column_shape {
        const char* title;
        int column;
        int width;
        bool fixed;
    };
    const column_shape shapes[] = {
        {"Name", TC_NAME, name_min_width, false},
        {"Type", TC_TYPE, 45, true},
        {"Status", TC_STATUS, 102, true},
    };
    for (const column_shape& shape : shapes) {
        GtkTreeViewColumn* column = text_view_column(shape.title, shape.column);
        gtk_tree_view_column_set_clickable(column, FALSE);
        gtk_tree_view_column_set_reorderable(column, FALSE);
        gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(column, shape.width);
        if (!shape.fixed) {
            gtk_tree_view_column_set_resizable(column, TRUE);
            gtk_tree_view_column_set_min_width(column, shape.width);
        }
        gtk_tree_view_append_column(view, column);
    }
    fit_name_column(view);
}

void system_cb(GtkWidget*, gpointer)
{
    for (const char* program : control_panels) {
        std::string path = root_path(program);
        if (path_exists(path)) {
            run_shell_command(shell_quote(path) + " &");
            return;
        }
    }
}

void spawn_button_cb(GtkWidget*, GtkTreeView* tree_view)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree_view), &model, &iter))
        spawn_connection(model, &iter);
}

// The activated row itself: a row activated from the keyboard need not be selected.
void spawn_doubleclick_cb(GtkTreeView* tree_view, GtkTreePath* path, GtkTreeViewColumn*, gpointer)
{
    GtkTreeModel* model = gtk_tree_view_get_model(tree_view);
    GtkTreeIter iter;
    if (gtk_tree_model_get_iter(model, &iter, path))
        spawn_connection(model, &iter);
}

gboolean root_window_delete_event(GtkWidget* window, GdkEvent*, gpointer)
{
    shutdown_dialog(nullptr, window);
    return TRUE;
}

gboolean block_close(GtkWidget*, GdkEvent*, gpointer) { return TRUE; }
