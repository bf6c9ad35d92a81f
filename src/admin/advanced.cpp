#include "admin/advanced.h"

#include "admin/ping_options.h"
#include "admin/interface_settings.h"
#include "admin/user_tree_edit.h"
#include "editors/connections.h"
#include "ica/global_settings.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/users.h"
#include "shell/globals.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/user_file.h"
#include "ui/form.h"
#include "ui/widgets.h"

#include <algorithm>

namespace {

constexpr int window_width = 700;
constexpr int window_height = 425;
constexpr int spacing = 10;
constexpr const char* user_view_key = "kestrelle-user-view";
constexpr const char* nobody = "nobody";

GtkTreeStore* user_tree() { return selected_user_connection_tree; }
GtkTreeModel* user_model() { return GTK_TREE_MODEL(selected_user_connection_tree); }

void expand_user_view(GtkTreeView* view)
{
    if (view)
        expand_every_group(view);
}

// --- Views ------------------------------------------------------------------------

void add_text_column(GtkTreeView* view, const char* title, int column, bool resizable)
{
    GtkTreeViewColumn* c = text_view_column(title, column);
    gtk_tree_view_column_set_resizable(c, resizable);
    gtk_tree_view_append_column(view, c);
}

void add_check_column(GtkTreeView* view, const char* title, int column, GCallback toggled,
                      gpointer data)
{
    GtkCellRenderer* renderer = gtk_cell_renderer_toggle_new();
    g_signal_connect(renderer, "toggled", toggled, data);
    gtk_tree_view_append_column(view, gtk_tree_view_column_new_with_attributes(
                                          title, renderer, "active", column, nullptr));
}

GtkWidget* master_view(GtkWidget* window)
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(master_connection_list));
    gtk_widget_set_name(view, "available-connections");
    GtkTreeView* tree = GTK_TREE_VIEW(view);
    add_text_column(tree, "Name", MC_NAME, true);
    add_text_column(tree, "Type", MC_TYPE, false);
    add_check_column(tree, "Ping First", MC_PING, G_CALLBACK(smart_ping_dialog), window);
    g_signal_connect(view, "row-activated", G_CALLBACK(move_doubleclick_cb), nullptr);
    return view;
}

GtkWidget* user_view()
{
    GtkWidget* view = gtk_tree_view_new_with_model(user_model());
    gtk_widget_set_name(view, "user-connections");
    GtkTreeView* tree = GTK_TREE_VIEW(view);
    add_text_column(tree, "Name", TC_NAME, true);
    add_text_column(tree, "Type", TC_TYPE, false);
    add_check_column(tree, "Primary", TC_PRIMARY, G_CALLBACK(primary_cb), view);
    add_check_column(tree, "Auto", TC_AUTOMATIC, G_CALLBACK(automatic_cb), user_tree());
    add_check_column(tree, "Persistent", TC_PERSISTENT, G_CALLBACK(persistent_cb), user_tree());
    add_check_column(tree, "Prompt", TC_PROMPT, G_CALLBACK(prompt_cb), user_tree());
    return view;
}

GtkTreeSelection* selection_of(GtkWidget* view) { return gtk_tree_view_get_selection(GTK_TREE_VIEW(view)); }

// An icon button named by its stock item: screen readers read the item's label, and
// the tooltip shows it.
GtkWidget* stock_button(const char* stock, GCallback handler, gpointer data)
{
    GtkWidget* button = gtk_button_new();
    gtk_container_add(GTK_CONTAINER(button), gtk_image_new_from_stock(stock, GTK_ICON_SIZE_BUTTON));
    GtkStockItem item;
    if (gtk_stock_lookup(stock, &item)) {
        gchar* name = g_strdup(item.label);
        // The label without its mnemonic underscore.
        gchar* rest = name;
        for (gchar* c = name; *c; ++c)
            if (*c != '_')
                *rest++ = *c;
        *rest = '\0';
        gtk_widget_set_tooltip_text(button, name);
        atk_object_set_name(gtk_widget_get_accessible(button), name);
        gtk_widget_set_name(button, stock);
        g_free(name);
    }
    g_signal_connect(button, "clicked", handler, data);
    return button;
}

GtkWidget* button_row(std::initializer_list<GtkWidget*> buttons)
{
    GtkWidget* row = gtk_hbutton_box_new();
    gtk_box_set_spacing(GTK_BOX(row), spacing);
    for (GtkWidget* button : buttons)
        gtk_box_pack_start(GTK_BOX(row), button, FALSE, FALSE, 0);
    return row;
}

// Icon buttons stacked in the middle of the height they are given.
GtkWidget* button_column(std::initializer_list<GtkWidget*> buttons)
{
    GtkWidget* column = gtk_vbox_new(TRUE, spacing);
    for (GtkWidget* button : buttons)
        gtk_box_pack_start(GTK_BOX(column), button, FALSE, FALSE, 0);
    GtkWidget* centred = gtk_alignment_new(0.5, 0.5, 0.0, 0.0);
    gtk_container_add(GTK_CONTAINER(centred), column);
    return centred;
}

// --- The window's parts -------------------------------------------------------------

struct advanced_parts {
    GtkWidget* window;
    GtkWidget* master;
    GtkWidget* user;
    GtkWidget* chooser;
};

GtkWidget* available_pane(const advanced_parts& parts)
{
    GtkWidget* column = gtk_vbox_new(FALSE, spacing / 2);
    gtk_box_pack_start(GTK_BOX(column), vertical_scroller(parts.master), TRUE, TRUE, 0);
    GtkWidget* remove = labelled_button("_Delete", G_CALLBACK(delete_connection_cb), selection_of(parts.master));
    // The running user's tree was reloaded; the administered one is read again too.
    g_signal_connect_after(remove, "clicked", G_CALLBACK(select_user), parts.chooser);
    gtk_box_pack_start(GTK_BOX(column),
                       button_row({labelled_button("_Add", G_CALLBACK(add_connection_dialog), parts.window),
                                   labelled_button("_Edit", G_CALLBACK(edit_connection), parts.master),
                                   remove}),
                       FALSE, FALSE, 0);
    return framed("Available Connections", column);
}

GtkWidget* user_pane(const advanced_parts& parts)
{
    GtkTreeSelection* selection = selection_of(parts.user);
    GtkWidget* list = gtk_hbox_new(FALSE, spacing / 2);
    gtk_box_pack_start(GTK_BOX(list), vertical_scroller(parts.user), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(list),
                       button_column({stock_button(GTK_STOCK_GO_UP, G_CALLBACK(move_up_cb), selection),
                                      stock_button(GTK_STOCK_GO_DOWN, G_CALLBACK(move_down_cb), selection)}),
                       FALSE, FALSE, 0);
    GtkWidget* column = gtk_vbox_new(FALSE, spacing / 2);
    gtk_box_pack_start(GTK_BOX(column), parts.chooser, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), list, TRUE, TRUE, 0);
    return framed("User Connections", column);
}

GtkWidget* move_buttons(const advanced_parts& parts)
{
    return button_column(
        {stock_button(GTK_STOCK_GO_FORWARD, G_CALLBACK(move_right_cb), selection_of(parts.master)),
         stock_button(GTK_STOCK_GO_BACK, G_CALLBACK(move_left_cb), selection_of(parts.user))});
}

GtkWidget* user_chooser(GtkWidget* view)
{
    GtkWidget* chooser = fixed_choice_combo(administered_users(), "");
    gtk_widget_set_name(chooser, "user");
    g_object_set_data(G_OBJECT(chooser), user_view_key, view);
    // Connected before the first choice is made, so that the administered user's tree is
    // read from the file on every opening and unsaved edits of an earlier one are gone.
    g_signal_connect(chooser, "changed", G_CALLBACK(select_user), chooser);
    set_combo_text(chooser, selected_user_name);
    return chooser;
}

void save_user_cb(GtkWidget*, gpointer chooser)
{
    save_user_connections(GTK_TREE_MODEL(selected_user_connection_tree), combo_text(GTK_WIDGET(chooser)));
}

void ok_cb(GtkWidget* button, gpointer parts)
{
    const auto* p = static_cast<advanced_parts*>(parts);
    save_user_cb(button, p->chooser);
    gtk_widget_destroy(p->window);
}

void cancel_cb(GtkWidget*, gpointer window) { gtk_widget_destroy(GTK_WIDGET(window)); }

GtkWidget* closing_buttons(advanced_parts* parts)
{
    GtkWidget* citrix = labelled_button("Citrix _Global Settings", G_CALLBACK(ica_global_dialog), nullptr);
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    for (GtkWidget* button : {citrix, labelled_button("_Save", G_CALLBACK(save_user_cb), parts->chooser),
                              labelled_button("_Cancel", G_CALLBACK(cancel_cb), parts->window),
                              labelled_button("_Ok", G_CALLBACK(ok_cb), parts)})
        gtk_box_pack_start(GTK_BOX(row), button, FALSE, FALSE, 0);
    GtkWidget* bottom_aligned = gtk_alignment_new(1.0, 1.0, 0.0, 0.0);
    gtk_container_add(GTK_CONTAINER(bottom_aligned), row);
    return bottom_aligned;
}

// The views let go of the models first, so that reloading the master list does not
// redraw a window that is going.
void advanced_destroyed(GtkWidget*, gpointer parts)
{
    auto* p = static_cast<advanced_parts*>(parts);
    gtk_tree_view_set_model(GTK_TREE_VIEW(p->master), nullptr);
    gtk_tree_view_set_model(GTK_TREE_VIEW(p->user), nullptr);
    delete p;
    cancel_advanced_cb();
}

GtkWidget* advanced_content(advanced_parts* parts)
{
    GtkWidget* panes = gtk_hbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(panes), available_pane(*parts), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(panes), move_buttons(*parts), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(panes), user_pane(*parts), TRUE, TRUE, 0);
    GtkWidget* bottom = gtk_hbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(bottom), interface_settings(), FALSE, FALSE, 0);
    gtk_box_pack_end(GTK_BOX(bottom), closing_buttons(parts), FALSE, FALSE, 0);
    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(column), panes, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(column), bottom, FALSE, FALSE, 0);
    return column;
}

}  // namespace

// --- Public -------------------------------------------------------------------------

std::vector<std::string> administered_users()
{
    std::vector<std::string> names;
    for (const user_entry& user : all_users()) {
        const std::string& home = user.database_home;
        const bool has_home = home.find("root") != std::string::npos || home.find("home") != std::string::npos;
        if (has_home && user.name != nobody)
            names.push_back(user.name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

void advanced_dialog(GtkWidget*, gpointer main_window)
{
    auto* parent = static_cast<GtkWidget*>(main_window);
    if (!confirm_change_while_active(parent ? GTK_WINDOW(parent) : nullptr))
        return;
    auto* parts = new advanced_parts{};
    parts->window = program_window("Advanced Configuration");
    gtk_window_set_default_size(GTK_WINDOW(parts->window), window_width, window_height);
    gtk_container_set_border_width(GTK_CONTAINER(parts->window), spacing);
    misc_widgets[0] = parts->window;
    parts->master = master_view(parts->window);
    parts->user = user_view();
    parts->chooser = user_chooser(parts->user);
    gtk_container_add(GTK_CONTAINER(parts->window), advanced_content(parts));
    g_signal_connect(parts->window, "destroy", G_CALLBACK(advanced_destroyed), parts);
    hide_while_open(parts->window, parent);
    gtk_widget_show_all(parts->window);
    expand_user_view(GTK_TREE_VIEW(parts->user));
}

void select_user(GtkWidget*, gpointer chooser)
{
    selected_user_name = combo_text(GTK_WIDGET(chooser));
    if (selected_user_name.empty())
        return;
    gtk_tree_store_clear(user_tree());
    if (std::optional<user_entry> user = user_by_name(selected_user_name))
        make_connection_tree(user_tree(), (user->home + user_file_name).c_str(), user_lines_per_row);
    expand_user_view(GTK_TREE_VIEW(g_object_get_data(G_OBJECT(chooser), user_view_key)));
}

void cancel_advanced_cb()
{
    if (misc_widgets)
        misc_widgets[0] = root_window;
    selected_user_name = current_user_name;
    gtk_list_store_clear(master_connection_list);
    make_connection_list(master_connection_list, root_path(master_file_path).c_str(),
                         master_lines_per_record);
}
