// The XDM editor: the host asked for a log-in screen, the local display and virtual
// terminal, the keyboard, and how the host is asked (the query mode).
#include "editors/xdm_editor.h"

#include "editors/choice_lists.h"
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "keymaps/keymaps.h"
#include "shell/globals.h"
#include "store/choices.h"
#include "store/models.h"
#include "ui/form.h"
#include "ui/widgets.h"

namespace {

constexpr column_binding xdm_columns[] = {
    {MC_XDM_DISPLAY, XDM_DISPLAY, bind::combo_text},
    {MC_XDM_VT, XDM_VT, bind::combo_text},
    {MC_SERVER, XDM_HOST, bind::combo_text},
    {MC_KEYBOARD, XDM_KEYMAP, bind::combo_text},
};

// The mode buttons, in the order shown and tested; "Direct" is stored as "Query".
constexpr struct {
    xdm_widget button;
    const char* label;
    const char* stored;
} mode_buttons[] = {
    {XDM_BROADCAST, "Broadcast", xdm_modes[0].text},
    {XDM_INDIRECT, "Indirect", xdm_modes[1].text},
    {XDM_DIRECT, "Direct", xdm_modes[2].text},
};

constexpr const char* displays[] = {"1", "2", "3", "4", "5", "6"};
constexpr const char* default_display = "3";
constexpr int terminal_count = 12;
constexpr int cell_padding = 4;  // as around the form's other rows

std::vector<std::string> terminal_choices()
{
    std::vector<std::string> choices{xdm_automatic_vt};
    for (int vt = 1; vt <= terminal_count; ++vt)
        choices.push_back(std::to_string(vt));
    return choices;
}

std::vector<std::string> keymap_choices()
{
    std::vector<std::string> choices{xdm_local_keyboard, xdm_server_keyboard};
    for (std::string& name : sorted_ignoring_case(keymap_names(keymap_list)))
        choices.push_back(std::move(name));
    return choices;
}

GtkWidget* mode_row(editor* e)
{
    GtkWidget* row = gtk_hbox_new(FALSE, 0);
    GSList* group = nullptr;
    for (const auto& m : mode_buttons) {
        GtkWidget* button = gtk_radio_button_new_with_label(group, m.label);
        group = gtk_radio_button_get_group(GTK_RADIO_BUTTON(button));
        gtk_widget_set_name(button, m.label);
        gtk_box_pack_start(GTK_BOX(row), button, FALSE, FALSE, 0);
        e->widgets[m.button] = button;
    }
    return row;
}

GtkWidget* settings(editor* e)
{
    GtkWidget* table = form_table();
    e->widgets[XDM_HOST] = form_editable_combo(
        table, 0, "Hostname:", "host",
        distinct_descending(master_texts_of_type(GTK_TREE_MODEL(master_connection_list), "XDM", MC_SERVER)));
    e->widgets[XDM_DISPLAY] = form_fixed_combo(table, 1, "Display:", "display",
                                               {std::begin(displays), std::end(displays)}, default_display);
    e->widgets[XDM_VT] = form_fixed_combo(table, 2, "VT:", "vt", terminal_choices(), xdm_automatic_vt);
    e->widgets[XDM_KEYMAP] = form_fixed_combo(table, 3, "Keymap:", "keymap", keymap_choices(), xdm_local_keyboard);
    GtkWidget* label = gtk_label_new("Query Mode:");
    gtk_misc_set_alignment(GTK_MISC(label), 0.0, 0.5);
    gtk_table_attach(GTK_TABLE(table), label, 0, 1, 4, 5, GTK_FILL, GTK_FILL, cell_padding, cell_padding);
    gtk_table_attach(GTK_TABLE(table), mode_row(e), 1, 2, 4, 5, GTK_FILL, GTK_FILL, cell_padding, cell_padding);
    e->name = form_entry(table, 5, "Name this connection:", "name");
    return table;
}

// The mode of the record is set after its host, so a broadcast record opens with the
// host empty and locked. A word that names no mode leaves "Indirect" chosen.
void load_mode(editor* e)
{
    if (!e->path)
        return;
    if (combo_text(e->widgets[XDM_KEYMAP]).empty())
        set_combo_text(e->widgets[XDM_KEYMAP], xdm_local_keyboard);
    for (const auto& m : mode_buttons)
        if (connect_info.text[MC_XDM_MODE] == m.stored)
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(e->widgets[m.button]), TRUE);
}

std::string chosen_mode(const editor* e)
{
    for (const auto& m : mode_buttons)
        if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(e->widgets[m.button])))
            return m.stored;
    return "";
}

}  // namespace

constexpr editor_kind xdm_kind{"XDM", true, "0", -1, xdm_columns};

void xdm_toggle_hostname_editable_cb(GtkToggleButton* broadcast, GtkWidget* host)
{
    const bool on = gtk_toggle_button_get_active(broadcast);
    if (on)
        gtk_entry_set_text(GTK_ENTRY(gtk_bin_get_child(GTK_BIN(host))), "");
    gtk_widget_set_sensitive(host, !on);
}

void xdm_ok_button_cb(GtkWidget*, editor* e)
{
    connection_record values = editor_values(e);
    values[MC_XDM_MODE] = chosen_mode(e);
    finish_editor_save(e, values);
}

void xdm_dialog(GtkWidget*, GtkTreeModel*, GtkTreePath* path)
{
    editor* e = open_editor(xdm_kind, "XDM connection", path, XDM_WIDGETS);
    GtkWidget* content = settings(e);
    g_signal_connect(e->widgets[XDM_BROADCAST], "toggled", G_CALLBACK(xdm_toggle_hostname_editable_cb),
                     e->widgets[XDM_HOST]);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(e->widgets[XDM_INDIRECT]), TRUE);
    load_editor(e);
    load_mode(e);
    show_editor(e, content, G_CALLBACK(xdm_ok_button_cb));
    gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(e->widgets[XDM_HOST])));
}
