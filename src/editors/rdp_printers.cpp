// The printer window of the RDP editor: the local printers of the printcap file, which
// of them to redirect and the driver the server is to use for each. Its choice becomes
// the printer selection text in the editor's printer entry.
#include "editors/connect_info.h"
#include "editors/rdp_editor.h"
#include "editors/rdp_rules.h"
#include "platform/file.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "ui/widgets.h"

namespace {

enum printer_col : int { PC_REDIRECT, PC_NAME, PC_DRIVER, PC_COUNT };

constexpr const char* table_key = "kestrelle-printer-table";
constexpr int window_width = 500;
constexpr int window_height = 300;
constexpr int window_border = 10;
constexpr const char* note =
    "Local printer names shown above are obtained from the printcap file and must not contain "
    "spaces.\n\nFor a list of installed printer driver names, open the server's Printers and "
    "Faxes applet, select File, Server Properties, and refer to the Drivers tab.";

GtkListStore* printer_table(FILE* printcap, const std::string& entry_text)
{
    GtkListStore* table = gtk_list_store_new(PC_COUNT, G_TYPE_BOOLEAN, G_TYPE_STRING, G_TYPE_STRING);
    for (const std::string& name : printcap_names(printcap)) {
        const printer_choice choice = find_printer_choice(entry_text, name);
        gtk_list_store_insert_with_values(table, nullptr, -1, PC_REDIRECT, choice.redirect, PC_NAME,
                                          name.c_str(), PC_DRIVER, choice.driver.c_str(), -1);
    }
    return table;
}

GtkWidget* printer_view(GtkListStore* table)
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(table));
    gtk_widget_set_name(view, "printer_table");
    gtk_tree_view_set_rules_hint(GTK_TREE_VIEW(view), TRUE);
    gtk_tree_view_set_headers_clickable(GTK_TREE_VIEW(view), FALSE);
    gtk_tree_view_set_reorderable(GTK_TREE_VIEW(view), FALSE);
    gtk_tree_view_set_enable_search(GTK_TREE_VIEW(view), FALSE);
    GtkCellRenderer* redirect = gtk_cell_renderer_toggle_new();
    g_signal_connect(redirect, "toggled", G_CALLBACK(rd_printcap_enable_cb), table);
    gtk_tree_view_insert_column_with_attributes(GTK_TREE_VIEW(view), -1, "Redirect", redirect, "active",
                                                PC_REDIRECT, nullptr);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), text_view_column("Local Printer Name", PC_NAME));
    GtkCellRenderer* driver = gtk_cell_renderer_text_new();
    g_object_set(driver, "editable", TRUE, nullptr);
    g_signal_connect(driver, "edited", G_CALLBACK(rd_printcap_editable_cb), table);
    GtkTreeViewColumn* drivers =
        gtk_tree_view_column_new_with_attributes("Installed Printer Driver Name on Server", driver, nullptr);
    show_model_text(drivers, driver, PC_DRIVER);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), drivers);
    return view;
}

GtkWidget* window_of(GtkWidget* button) { return gtk_widget_get_toplevel(button); }

void turn_printers_off(editor* e)
{
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(e->widgets[RD_PRINTERS_ON]), FALSE);
}

std::string& working_printer_text() { return connect_info.text[MC_RDP_PRINTER]; }

}  // namespace

void rd_printcap_dialog(GtkToggleButton* box, editor* e)
{
    if (!gtk_toggle_button_get_active(box))
        return;
    unique_file printcap = open_file(root_path("/etc/printcap"), "re");
    if (!printcap) {
        show_error("\nCouldn't open printcaps.\n");
        return;
    }
    GtkListStore* table = printer_table(printcap.get(), entry_bytes(e->widgets[RD_PRINTERS]));
    GtkWidget* window = program_window("Printers");
    gtk_window_set_default_size(GTK_WINDOW(window), window_width, window_height);
    gtk_container_set_border_width(GTK_CONTAINER(window), window_border);
    g_object_set_data_full(G_OBJECT(window), table_key, table, g_object_unref);
    GtkWidget* column = gtk_vbox_new(FALSE, window_border);
    gtk_box_pack_start(GTK_BOX(column), vertical_scroller(printer_view(table)), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(column), wrapped_note(note), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column),
                       save_cancel_row(window, G_CALLBACK(rd_printcap_ok_button_cb),
                                       G_CALLBACK(rd_printcap_cancel_button_cb), e),
                       FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), column);
    hide_while_open(window, e->window);
    gtk_widget_show_all(window);
}

void rd_printcap_enable_cb(GtkCellRendererToggle*, gchar* path, GtkListStore* table)
{
    GtkTreeIter iter;
    if (!gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(table), &iter, path))
        return;
    gboolean redirect = FALSE;
    gtk_tree_model_get(GTK_TREE_MODEL(table), &iter, PC_REDIRECT, &redirect, -1);
    gtk_list_store_set(table, &iter, PC_REDIRECT, !redirect, -1);
}

void rd_printcap_editable_cb(GtkCellRendererText*, gchar* path, gchar* text, GtkListStore* table)
{
    GtkTreeIter iter;
    if (gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(table), &iter, path))
        gtk_list_store_set(table, &iter, PC_DRIVER, text, -1);
}

gboolean rd_printcap_foreach(GtkTreeModel* table, GtkTreePath*, GtkTreeIter* iter, gpointer selection)
{
    gboolean redirect = FALSE;
    gtk_tree_model_get(table, iter, PC_REDIRECT, &redirect, -1);
    if (redirect)
        static_cast<std::vector<printer_row>*>(selection)->push_back(
            {model_text(table, iter, PC_NAME), model_text(table, iter, PC_DRIVER)});
    return FALSE;
}

void rd_printcap_ok_button_cb(GtkWidget* button, editor* e)
{
    GtkWidget* window = window_of(button);
    std::vector<printer_row> chosen;
    gtk_tree_model_foreach(GTK_TREE_MODEL(g_object_get_data(G_OBJECT(window), table_key)),
                           rd_printcap_foreach, &chosen);
    working_printer_text() = printer_selection(chosen);
    set_entry_bytes(e->widgets[RD_PRINTERS], working_printer_text());
    if (working_printer_text().empty())
        turn_printers_off(e);
    gtk_widget_destroy(window);
}

void rd_printcap_cancel_button_cb(GtkWidget* button, editor* e)
{
    // Nothing saved yet in this editor: the box goes back off.
    if (working_printer_text().empty())
        turn_printers_off(e);
    gtk_widget_destroy(window_of(button));
}
