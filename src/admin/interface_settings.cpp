#include "admin/interface_settings.h"

#include "admin/previews.h"
#include "shell/options.h"
#include "store/models.h"
#include "store/save.h"
#include "ui/form.h"

namespace {

constexpr int spacing = 10;

void show_preview(gpointer preview)
{
    GdkPixbuf* picture = interface_preview(show_gui, show_taskbar);
    gtk_image_set_from_pixbuf(GTK_IMAGE(preview), picture);
    g_object_unref(picture);
}

}  // namespace

GtkWidget* interface_settings()
{
    GdkPixbuf* picture = interface_preview(show_gui, show_taskbar);
    GtkWidget* preview = gtk_image_new_from_pixbuf(picture);
    g_object_unref(picture);
    GtkWidget* check = gtk_check_button_new_with_mnemonic("Show user _interface");
    gtk_widget_set_name(check, "show-interface");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check), show_gui);
    g_signal_connect(check, "toggled", G_CALLBACK(ui_tb_cb), preview);
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(row), preview, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), check, FALSE, FALSE, 0);
    return framed("Global UI Kiosk Settings", row);
}

void ui_tb_cb(GtkToggleButton* check_box, gpointer preview)
{
    show_gui = gtk_toggle_button_get_active(check_box);
    show_preview(preview);
    // The new picture is drawn before the save, which may take a moment.
    gtk_main_iteration_do(FALSE);
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
}

void taskbar_tb_cb(GtkToggleButton* check_box, gpointer preview)
{
    show_taskbar = gtk_toggle_button_get_active(check_box);
    set_icewm_taskbar(show_taskbar);
    show_preview(preview);
    write_zarvooptions();
}

void kiosk_tb_cb(GtkToggleButton* check_box, gpointer)
{
    kiosk_mode = gtk_toggle_button_get_active(check_box);
    write_zarvooptions();
}
