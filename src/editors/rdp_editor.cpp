// The RDP editor: every rdesktop setting on five tabs. The option bits are kept in
// connect_info.flags by the boxes' handlers; the experience preset and its four boxes
// follow each other.
#include "editors/rdp_editor.h"

#include "editors/choice_lists.h"
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "editors/rdp_rules.h"
#include "keymaps/keymaps.h"
#include "platform/paths.h"
#include "shell/globals.h"
#include "store/choices.h"
#include "store/models.h"
#include "ui/form.h"
#include "ui/widgets.h"

namespace {

// In the order a record is loaded. The preset (column 27) is not among them: it is never
// read back, the boxes' bits decide what it shows, and Save stores what it shows.
constexpr column_binding rd_columns[] = {
    {MC_SERVER, RD_COMPUTER, bind::combo_text},
    {MC_USERNAME, RD_USERNAME, bind::text},
    {MC_PASSWORD, RD_PASSWORD, bind::password},
    {MC_DOMAIN, RD_DOMAIN, bind::text},
    {MC_RDP_CLIENT_HOST, RD_CLIENT_HOST, bind::text},
    {MC_WINDOW_SIZE, RD_SIZE, bind::combo_text},
    {MC_COLOURS, RD_COLOURS, bind::combo_text},
    {MC_SOUND, RD_SOUND, bind::combo_text},
    {MC_RDP_FLAGS, RD_BITMAP_CACHING, bind::check_bit, rdp_bitmap_caching},
    {MC_RDP_FLAGS, RD_PROGRAM_ON, bind::check_bit, rdp_start_program},
    {MC_PROGRAM, RD_PROGRAM, bind::text_if_bit, rdp_start_program},
    {MC_WORKDIR, RD_FOLDER, bind::text_if_bit, rdp_start_program},
    {MC_RDP_FLAGS, RD_BACKGROUND, bind::check_bit, rdp_desktop_background},
    {MC_RDP_FLAGS, RD_DRAGGING, bind::check_bit, rdp_window_drag},
    {MC_RDP_FLAGS, RD_ANIMATION, bind::check_bit, rdp_menu_animation},
    {MC_RDP_FLAGS, RD_THEMES, bind::check_bit, rdp_themes},
    {MC_RDP_FLAGS, RD_PERSISTENT_CACHING, bind::check_bit, rdp_persistent_bitmap_caching},
    {MC_RDP_FLAGS, RD_BACKING_STORE, bind::check_bit, rdp_backing_store},
    {MC_RDP_FLAGS, RD_COMPRESSION, bind::check_bit, rdp_compression},
    {MC_RDP_FLAGS, RD_DISK_ON, bind::check_bit, rdp_disk},
    {MC_RDP_FLAGS, RD_PRINTERS_ON, bind::check_bit, rdp_printer},
    {MC_RDP_FLAGS, RD_LPT_ON, bind::check_bit, rdp_lpt_port},
    {MC_RDP_FLAGS, RD_COM_ON, bind::check_bit, rdp_com_port},
    {MC_RDP_FLAGS, RD_EXTRA_ON, bind::check_bit, rdp_extra_options},
    {MC_RDP_DISK, RD_DISK, bind::text},
    {MC_RDP_COM, RD_COM, bind::text},
    {MC_RDP_LPT, RD_LPT, bind::text},
    {MC_RDP_PRINTER, RD_PRINTERS, bind::text_if_bit, rdp_printer},
    {MC_RDP_EXTRA_OPTIONS, RD_EXTRA, bind::text_if_bit, rdp_extra_options},
    {MC_KEYBOARD, RD_KEYBOARD, bind::combo_text},
};

// The four boxes under "Allow the following:", in the order shown.
constexpr struct {
    rd_widget box;
    const char* label;
    const char* name;
    unsigned long bit;
} experience_boxes[] = {
    {RD_BACKGROUND, "Desktop background", "background", rdp_desktop_background},
    {RD_DRAGGING, "Show contents of window while dragging", "dragging", rdp_window_drag},
    {RD_ANIMATION, "Menu and window animation", "animation", rdp_menu_animation},
    {RD_THEMES, "Themes", "themes", rdp_themes},
};

// The remaining boxes of the Performance frame and their initial states.
constexpr struct {
    rd_widget box;
    const char* label;
    const char* name;
    bool on;
} performance_boxes[] = {
    {RD_BITMAP_CACHING, "Bitmap caching", "bitmap_caching", false},
    {RD_PERSISTENT_CACHING, "Use persistent bitmap caching", "persistent_caching", false},
    {RD_COMPRESSION, "Use protocol compression", "compression", true},
    {RD_BACKING_STORE, "Use BackingStore of X server if available", "backing_store", false},
};

// The local devices: a box and the value handed to rdesktop.
constexpr struct {
    rd_widget box;
    rd_widget value;
    const char* label;
    const char* name;
    const char* initial;
} device_rows[] = {
    {RD_DISK_ON, RD_DISK, "Disk drives", "disk", "shared=/tmp/shared"},
    {RD_PRINTERS_ON, RD_PRINTERS, "Printers", "printers", ""},
    {RD_LPT_ON, RD_LPT, "Parallel port", "parallel", "LPT1=/dev/lp0"},
    {RD_COM_ON, RD_COM, "Serial port", "serial", "COM1=/dev/ttyS0"},
};

constexpr const char* default_keyboard = "International Europe";
// A new connection starts at "Modem (56 Kbps)", which allows themes.
constexpr const char* new_connection_preset = rdp_experiences[1].text;
constexpr int window_width = 400;
constexpr int window_height = 450;
constexpr int spacing = 6;

GtkWidget* named_fixed_combo(const char* name, const std::vector<std::string>& choices,
                             const std::string& initial)
{
    GtkWidget* combo = fixed_choice_combo(choices, initial);
    gtk_widget_set_name(combo, name);
    return combo;
}

GtkWidget* column_of(std::initializer_list<GtkWidget*> children)
{
    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    for (GtkWidget* child : children)
        gtk_box_pack_start(GTK_BOX(column), child, FALSE, FALSE, 0);
    return column;
}

// A frame with the theme's picture beside its contents; a picture the machine lacks
// is left out.
GtkWidget* pictured_frame(const char* title, const char* picture, GtkWidget* child)
{
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    const std::string path =
        root_path(debian ? "/usr/share/pixmaps/" : "/usr/share/xfce4/themes/Curve/") + picture;
    if (is_regular_file(path)) {
        GtkWidget* image = gtk_image_new_from_file(path.c_str());
        gtk_misc_set_alignment(GTK_MISC(image), 0.5, 0.0);
        gtk_widget_set_name(image, picture);
        gtk_box_pack_start(GTK_BOX(row), image, FALSE, FALSE, 0);
    }
    gtk_box_pack_start(GTK_BOX(row), child, TRUE, TRUE, 0);
    return framed(title, row);
}

std::vector<std::string> computer_choices()
{
    return distinct_descending(
        master_texts_of_type(GTK_TREE_MODEL(master_connection_list), "RDP", MC_SERVER));
}

// "Use Default" first, then the other display names in ascending order.
std::vector<std::string> keyboard_choices()
{
    std::vector<std::string> names;
    for (std::string& name : keymap_names(rdesktop_keymap_list))
        if (name != rdp_use_default)
            names.push_back(std::move(name));
    names = sorted_ignoring_case(std::move(names));
    names.insert(names.begin(), rdp_use_default);
    return names;
}

GtkWidget* general_tab(editor* e)
{
    GtkWidget* logon = form_table();
    e->widgets[RD_COMPUTER] = form_editable_combo(logon, 0, "Computer:", "computer", computer_choices());
    e->widgets[RD_USERNAME] = form_entry(logon, 1, "Username:", "username");
    e->widgets[RD_PASSWORD] = form_entry(logon, 2, "Password:", "password");
    gtk_entry_set_visibility(GTK_ENTRY(e->widgets[RD_PASSWORD]), FALSE);
    e->widgets[RD_DOMAIN] = form_entry(logon, 3, "Domain:", "domain");
    e->widgets[RD_CLIENT_HOST] = form_entry(logon, 4, "Client Hostname:", "client_hostname");
    GtkWidget* naming = form_table();
    e->name = form_entry(naming, 0, "Name this connection:", "name");
    return column_of({pictured_frame("Logon Settings", "terminal.png", logon),
                      pictured_frame("Connection Settings", "file1.png", naming)});
}

GtkWidget* display_tab(editor* e)
{
    e->widgets[RD_SIZE] = named_fixed_combo("size", choice_texts(rdp_window_sizes), rdp_use_default);
    e->widgets[RD_COLOURS] = named_fixed_combo("colors", choice_texts(rdp_colours), rdp_use_default);
    GtkWidget* size = column_of({wrapped_note("Choose the size of your remote desktop."), e->widgets[RD_SIZE]});
    GtkWidget* colours = column_of(
        {e->widgets[RD_COLOURS], wrapped_note("Note: Settings on the remote computer might override this setting.")});
    return column_of({pictured_frame("Remote Desktop Size", "terminal.png", size), framed("Colors", colours)});
}

GtkWidget* local_resources_tab(editor* e)
{
    const std::vector<std::string> sound = choice_texts(rdp_sound);
    e->widgets[RD_SOUND] = named_fixed_combo("sound", sound, sound.front());
    e->widgets[RD_KEYBOARD] = named_fixed_combo("keyboard", keyboard_choices(), rdp_use_default);
    // Shown even when the machine has no map of that name.
    set_combo_text(e->widgets[RD_KEYBOARD], default_keyboard);
    GtkWidget* devices = form_table();
    int row = 0;
    for (const auto& d : device_rows) {
        const std::string value_name = std::string(d.name) + "_value";
        e->widgets[d.box] =
            form_check_entry(devices, row++, d.label, d.name, &e->widgets[d.value], value_name.c_str(), d.initial);
    }
    return column_of({pictured_frame("Remote computer sound", "sound.png", column_of({e->widgets[RD_SOUND]})),
                      framed("Keyboard", column_of({e->widgets[RD_KEYBOARD]})),
                      pictured_frame("Local Devices", "print.png", devices)});
}

GtkWidget* programs_tab(editor* e)
{
    GtkWidget* table = form_table();
    e->widgets[RD_PROGRAM_ON] = form_check(table, 0, "Start the following program on connection", "start_program");
    e->widgets[RD_PROGRAM] = form_entry(table, 1, "Program path and file name:", "program");
    e->widgets[RD_FOLDER] = form_entry(table, 2, "Start in the following folder:", "folder");
    for (rd_widget entry : {RD_PROGRAM, RD_FOLDER}) {
        gtk_widget_set_sensitive(e->widgets[entry], FALSE);
        g_signal_connect(e->widgets[RD_PROGRAM_ON], "toggled", G_CALLBACK(toggle_editable_cb), e->widgets[entry]);
    }
    return column_of({framed("Start a program", table)});
}

GtkWidget* experience_tab(editor* e)
{
    std::vector<std::string> presets = choice_texts(rdp_experiences);
    presets.emplace_back(rdp_custom_experience);
    e->widgets[RD_EXPERIENCE] = named_fixed_combo("experience", presets, presets.front());
    GtkWidget* table = form_table();
    int row = 0;
    gtk_table_attach_defaults(GTK_TABLE(table), wrapped_note("Allow the following:"), 0, 2, row, row + 1);
    ++row;
    for (const auto& b : experience_boxes)
        e->widgets[b.box] = form_check(table, row++, b.label, b.name);
    for (const auto& b : performance_boxes)
        e->widgets[b.box] = form_check(table, row++, b.label, b.name);
    e->widgets[RD_EXTRA_ON] =
        form_check_entry(table, row, "Use these additional options", "extra_options", &e->widgets[RD_EXTRA],
                         "extra_options_value");
    GtkWidget* performance = column_of(
        {wrapped_note("Choose your connection speed to optimize performance."), e->widgets[RD_EXPERIENCE], table});
    return column_of({pictured_frame("Performance", "unknown.png", performance)});
}

GtkWidget* tabs(editor* e)
{
    GtkWidget* notebook = gtk_notebook_new();
    gtk_widget_set_name(notebook, "tabs");
    const std::pair<const char*, GtkWidget*> pages[] = {
        {"General", general_tab(e)},
        {"Display", display_tab(e)},
        {"Local Resources", local_resources_tab(e)},
        {"Programs", programs_tab(e)},
        {"Experience", experience_tab(e)},
    };
    for (const auto& [title, page] : pages) {
        gtk_container_set_border_width(GTK_CONTAINER(page), spacing);
        gtk_notebook_append_page(GTK_NOTEBOOK(notebook), page, gtk_label_new(title));
    }
    return notebook;
}

// Every bit-owning box keeps its bit; the four experience boxes then update the preset,
// whose choice sets them in turn.
void connect_handlers(editor* e)
{
    for (const column_binding& b : rd_columns)
        if (b.kind == bind::check_bit)
            g_signal_connect(e->widgets[b.widget], "toggled", G_CALLBACK(rd_toggle_buttons_cb),
                             GUINT_TO_POINTER(b.bit));
    for (const auto& b : experience_boxes)
        g_signal_connect(e->widgets[b.box], "toggled", G_CALLBACK(rd_toggle_experience_buttons_cb), e);
    GtkWidget* preset_entry = gtk_bin_get_child(GTK_BIN(e->widgets[RD_EXPERIENCE]));
    g_signal_connect_after(preset_entry, "changed", G_CALLBACK(rd_select_experience_cb), e);
    for (const auto& b : performance_boxes)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(e->widgets[b.box]), b.on);
}

}  // namespace

constexpr editor_kind rdp_kind{"RDP", true, "3389", MC_RDP_FLAGS, rd_columns};

void rd_toggle_buttons_cb(GtkToggleButton* box, gpointer bit) { follow_toggle(box, GPOINTER_TO_UINT(bit)); }

void rd_toggle_experience_buttons_cb(GtkToggleButton*, editor* e)
{
    set_combo_text(e->widgets[RD_EXPERIENCE], experience_for_bits(connect_info.flags));
}

void rd_select_experience_cb(GtkEntry* entry, editor* e)
{
    const unsigned long wanted = bits_for_experience(gtk_entry_get_text(entry), connect_info.flags);
    // The preset already names what the boxes are about to show.
    for (const auto& b : experience_boxes)
        g_signal_handlers_block_by_func(e->widgets[b.box], gpointer(rd_toggle_experience_buttons_cb), e);
    for (const auto& b : experience_boxes)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(e->widgets[b.box]), (wanted & b.bit) != 0);
    for (const auto& b : experience_boxes)
        g_signal_handlers_unblock_by_func(e->widgets[b.box], gpointer(rd_toggle_experience_buttons_cb), e);
}

void rd_ok_button_cb(GtkWidget*, editor* e)
{
    connection_record values = editor_values(e);
    values[MC_RDP_EXPERIENCE] = combo_text(e->widgets[RD_EXPERIENCE]);
    finish_editor_save(e, values);
}

void rd_dialog(GtkWidget*, GtkTreeModel*, GtkTreePath* path)
{
    editor* e = open_editor(rdp_kind, "rdesktop connection", path, RD_WIDGETS);
    gtk_window_set_default_size(GTK_WINDOW(e->window), window_width, window_height);
    GtkWidget* notebook = tabs(e);
    connect_handlers(e);
    load_editor(e);
    // The working printer text is what the printer window last saved in this editor.
    connect_info.text[MC_RDP_PRINTER].clear();
    if (!e->path)
        set_combo_text(e->widgets[RD_EXPERIENCE], new_connection_preset);
    // Loading a record with "Printers" on must not open the printer window.
    g_signal_connect_after(e->widgets[RD_PRINTERS_ON], "toggled", G_CALLBACK(rd_printcap_dialog), e);
    show_editor(e, notebook, G_CALLBACK(rd_ok_button_cb));
    gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(e->widgets[RD_COMPUTER])));
}
