#include "ica/global_settings.h"

#include "ica/server_location.h"
#include "store/choices.h"
#include "ui/widgets.h"

#include <string>

namespace {

constexpr int window_width = 480;
constexpr int window_height = 440;
constexpr int spacing = 6;
constexpr int border = 10;
constexpr const char* com_start = "/dev/ttyS0";
constexpr const char* row_key = "kestrelle-drive-row";

// The block of the open window, handed to every handler; freed with the window.
struct global_window {
    GtkWidget* window = nullptr;
    std::string group = ica_default;     // no connection is edited here
    std::string protocol = ica_default;
    server_location_state* locations = nullptr;
    GtkWidget* shift[hotkey_count] = {};  // hotkey_widgets: modifier and key combos
    GtkWidget* key[hotkey_count] = {};
    GtkListStore* drive_list = nullptr;
    GtkListStore* com_list = nullptr;
    GtkWidget* drive_view = nullptr;
    GtkWidget* com_view = nullptr;
    GtkWidget* layout = nullptr;
    GtkWidget* audio = nullptr;
};

void free_window(gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    g_object_unref(g->drive_list);
    g_object_unref(g->com_list);
    delete g;
}

GtkWidget* page(GtkWidget* notebook, const char* title) { return notebook_page(notebook, title, border); }

std::string cell_text(GtkTreeModel* model, GtkTreeIter* iter, int column)
{
    gchar* text = nullptr;
    gtk_tree_model_get(model, iter, column, &text, -1);
    std::string value = text ? text : "";
    g_free(text);
    return value;
}

bool cell_flag(GtkTreeModel* model, GtkTreeIter* iter, int column)
{
    gboolean value = FALSE;
    gtk_tree_model_get(model, iter, column, &value, -1);
    return value;
}

// --- Hotkeys -------------------------------------------------------------------------

GtkWidget* hotkey_page(global_window* g, const global_settings& s)
{
    GtkWidget* table = gtk_table_new(hotkey_count, 3, FALSE);
    gtk_table_set_col_spacings(GTK_TABLE(table), spacing);
    gtk_table_set_row_spacings(GTK_TABLE(table), 2);
    for (int i = 0; i < hotkey_count; ++i) {
        GtkWidget* name = gtk_label_new(hotkey_names[i]);
        gtk_misc_set_alignment(GTK_MISC(name), 0.0, 0.5);
        g->shift[i] = fixed_choice_combo(hotkey_shift, s.hotkeys[i].shift);
        g->key[i] = fixed_choice_combo(hotkey_chars, s.hotkeys[i].key);
        const std::string number = std::to_string(i + 1);
        gtk_widget_set_name(g->shift[i], ("hotkey-shift-" + number).c_str());
        gtk_widget_set_name(g->key[i], ("hotkey-key-" + number).c_str());
        const guint row = static_cast<guint>(i);
        gtk_table_attach(GTK_TABLE(table), name, 0, 1, row, row + 1, GTK_FILL, GTK_FILL, 0, 0);
        gtk_table_attach(GTK_TABLE(table), g->shift[i], 1, 2, row, row + 1, GTK_FILL, GTK_FILL, 0, 0);
        gtk_table_attach(GTK_TABLE(table), g->key[i], 2, 3, row, row + 1, GTK_FILL, GTK_FILL, 0, 0);
    }
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_add_with_viewport(GTK_SCROLLED_WINDOW(scrolled), table);
    return scrolled;
}

// --- Drive mapping -------------------------------------------------------------------

void flip_drive_flag(global_window* g, const gchar* path, int column)
{
    GtkTreeIter iter;
    GtkTreeModel* model = GTK_TREE_MODEL(g->drive_list);
    if (gtk_tree_model_get_iter_from_string(model, &iter, path))
        gtk_list_store_set(g->drive_list, &iter, column, !cell_flag(model, &iter, column), -1);
}

}  // namespace

static void ica_global_drive_enable_cb(GtkCellRendererToggle*, gchar* path, gpointer g)
{
    flip_drive_flag(static_cast<global_window*>(g), path, DRIVE_ENABLED);
}

static void ica_global_drive_read_cb(GtkCellRendererToggle*, gchar* path, gpointer g)
{
    flip_drive_flag(static_cast<global_window*>(g), path, DRIVE_READ);
}

static void ica_global_drive_write_cb(GtkCellRendererToggle*, gchar* path, gpointer g)
{
    flip_drive_flag(static_cast<global_window*>(g), path, DRIVE_WRITE);
}

static void ica_editable_cb(GtkCellRendererText*, gchar* path, gchar* text, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    GtkTreeIter iter;
    if (gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(g->drive_list), &iter, path))
        gtk_list_store_set(g->drive_list, &iter, DRIVE_PATH, text, -1);
}

// The chooser's answer: the chosen folder becomes the path of the row it was opened for.
static void ica_get_drive_selection_cb(GtkDialog* chooser, gint response, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    auto* row = static_cast<const char*>(g_object_get_data(G_OBJECT(chooser), row_key));
    GtkTreeIter iter;
    if (response == GTK_RESPONSE_ACCEPT && row &&
        gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(g->drive_list), &iter, row)) {
        gchar* folder = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
        if (folder)
            gtk_list_store_set(g->drive_list, &iter, DRIVE_PATH, folder, -1);
        g_free(folder);
    }
    gtk_widget_destroy(GTK_WIDGET(chooser));
}

static void ica_drive_add_dialog(GtkTreeView*, GtkTreePath* path, GtkTreeViewColumn*, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    GtkWidget* chooser = gtk_file_chooser_dialog_new(
        "Please select a folder to map", GTK_WINDOW(g->window), GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER,
        GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL, GTK_STOCK_OPEN, GTK_RESPONSE_ACCEPT, nullptr);
    g_object_set_data_full(G_OBJECT(chooser), row_key, gtk_tree_path_to_string(path), g_free);
    g_signal_connect(chooser, "response", G_CALLBACK(ica_get_drive_selection_cb), g);
    gtk_widget_show(chooser);
}

// --- COM ports -----------------------------------------------------------------------

static void ica_get_com_selection_cb(GtkDialog* chooser, gint response, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    if (response == GTK_RESPONSE_ACCEPT) {
        gchar* device = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
        if (device) {
            const int rows = gtk_tree_model_iter_n_children(GTK_TREE_MODEL(g->com_list), nullptr) + 1;
            const std::string port = "COM" + std::to_string(rows);
            gtk_list_store_insert_with_values(g->com_list, nullptr, -1, COM_PORT, port.c_str(),
                                              COM_DEVICE, device, -1);
        }
        g_free(device);
    }
    gtk_widget_destroy(GTK_WIDGET(chooser));
}

static void ica_com_add_dialog(GtkWidget*, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    GtkWidget* chooser = gtk_file_chooser_dialog_new(
        "Please select a device to map", GTK_WINDOW(g->window), GTK_FILE_CHOOSER_ACTION_OPEN,
        GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL, GTK_STOCK_OPEN, GTK_RESPONSE_ACCEPT, nullptr);
    gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), com_start);
    g_signal_connect(chooser, "response", G_CALLBACK(ica_get_com_selection_cb), g);
    gtk_widget_show(chooser);
}

static void ica_com_delete_cb(GtkWidget*, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    GtkTreeIter iter;
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(g->com_view));
    if (gtk_tree_selection_get_selected(selection, nullptr, &iter))
        gtk_list_store_remove(g->com_list, &iter);  // the other ports keep their names
}

namespace {

// Swaps the selected row's device with the row above (up) or below; the port names stay
// and the selection follows the device.
void move_com_device(global_window* g, bool up)
{
    GtkTreeModel* model = GTK_TREE_MODEL(g->com_list);
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(g->com_view));
    GtkTreeIter selected, other;
    if (!gtk_tree_selection_get_selected(selection, nullptr, &selected))
        return;
    other = selected;
    if (up) {
        GtkTreePath* path = gtk_tree_model_get_path(model, &selected);
        const bool has = gtk_tree_path_prev(path) && gtk_tree_model_get_iter(model, &other, path);
        gtk_tree_path_free(path);
        if (!has)
            return;
    } else if (!gtk_tree_model_iter_next(model, &other)) {
        return;
    }
    const std::string mine = cell_text(model, &selected, COM_DEVICE);
    const std::string theirs = cell_text(model, &other, COM_DEVICE);
    gtk_list_store_set(g->com_list, &selected, COM_DEVICE, theirs.c_str(), -1);
    gtk_list_store_set(g->com_list, &other, COM_DEVICE, mine.c_str(), -1);
    gtk_tree_selection_select_iter(selection, &other);
}

}  // namespace

static void ica_com_up_cb(GtkWidget*, gpointer g) { move_com_device(static_cast<global_window*>(g), true); }
static void ica_com_down_cb(GtkWidget*, gpointer g) { move_com_device(static_cast<global_window*>(g), false); }

// --- Writers used by the save --------------------------------------------------------

static gboolean ica_global_drive_foreach(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer data)
{
    auto* s = static_cast<global_settings*>(data);
    const std::string letter = cell_text(model, iter, DRIVE_LETTER);
    if (letter.size() == 1 && letter[0] >= 'A' && letter[0] <= 'Z')
        s->drives[letter[0] - 'A'] = {cell_text(model, iter, DRIVE_PATH), cell_flag(model, iter, DRIVE_ENABLED),
                                      cell_flag(model, iter, DRIVE_READ), cell_flag(model, iter, DRIVE_WRITE)};
    return FALSE;
}

static gboolean ica_global_com_foreach(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer data)
{
    auto* s = static_cast<global_settings*>(data);
    s->com_ports.push_back({cell_text(model, iter, COM_PORT), cell_text(model, iter, COM_DEVICE)});
    return FALSE;
}

namespace {

GtkWidget* toggle_column(GtkWidget* view, const char* title, int column, GCallback toggled, global_window* g)
{
    GtkCellRenderer* cell = gtk_cell_renderer_toggle_new();
    g_signal_connect(cell, "toggled", toggled, g);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view),
                                gtk_tree_view_column_new_with_attributes(title, cell, "active", column, nullptr));
    return view;
}

void text_column(GtkWidget* view, const char* title, int column, GtkCellRenderer* cell)
{
    GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(title, cell, nullptr);
    show_model_text(view_column, cell, column);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), view_column);
}

GtkWidget* drive_page(global_window* g, const global_settings& s)
{
    g->drive_list = gtk_list_store_new(DRIVE_COLUMNS, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_BOOLEAN,
                                       G_TYPE_BOOLEAN, G_TYPE_BOOLEAN);
    for (int i = 0; i < drive_count; ++i) {
        const drive_mapping& d = s.drives[i];
        const std::string letter(1, static_cast<char>('A' + i));
        gtk_list_store_insert_with_values(g->drive_list, nullptr, -1, DRIVE_LETTER, letter.c_str(),
                                          DRIVE_PATH, d.path.c_str(), DRIVE_ENABLED, d.enabled,
                                          DRIVE_READ, d.read, DRIVE_WRITE, d.write, -1);
    }
    g->drive_view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(g->drive_list));
    gtk_widget_set_name(g->drive_view, "drives");
    text_column(g->drive_view, "Drive", DRIVE_LETTER, gtk_cell_renderer_text_new());
    toggle_column(g->drive_view, "Enable", DRIVE_ENABLED, G_CALLBACK(ica_global_drive_enable_cb), g);
    toggle_column(g->drive_view, "Read", DRIVE_READ, G_CALLBACK(ica_global_drive_read_cb), g);
    toggle_column(g->drive_view, "Write", DRIVE_WRITE, G_CALLBACK(ica_global_drive_write_cb), g);
    GtkCellRenderer* path = gtk_cell_renderer_text_new();
    g_object_set(path, "editable", TRUE, nullptr);
    g_signal_connect(path, "edited", G_CALLBACK(ica_editable_cb), g);
    text_column(g->drive_view, "Path", DRIVE_PATH, path);
    g_signal_connect(g->drive_view, "row-activated", G_CALLBACK(ica_drive_add_dialog), g);
    return vertical_scroller(g->drive_view);
}

GtkWidget* com_page(global_window* g, const global_settings& s)
{
    g->com_list = gtk_list_store_new(COM_COLUMNS, G_TYPE_STRING, G_TYPE_STRING);
    for (const com_port& port : s.com_ports)
        gtk_list_store_insert_with_values(g->com_list, nullptr, -1, COM_PORT, port.name.c_str(),
                                          COM_DEVICE, port.device.c_str(), -1);
    g->com_view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(g->com_list));
    gtk_widget_set_name(g->com_view, "com-ports");
    text_column(g->com_view, "Port", COM_PORT, gtk_cell_renderer_text_new());
    text_column(g->com_view, "Device", COM_DEVICE, gtk_cell_renderer_text_new());
    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(column), vertical_scroller(g->com_view), TRUE, TRUE, 0);
    GtkWidget* buttons = gtk_hbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_START);
    gtk_box_set_spacing(GTK_BOX(buttons), spacing);
    struct {
        const char* label;
        const char* name;
        GCallback handler;
        bool stock;
    } const actions[] = {{"gtk-go-up", "com-up", G_CALLBACK(ica_com_up_cb), true},
                         {"gtk-go-down", "com-down", G_CALLBACK(ica_com_down_cb), true},
                         {"_Add", "com-add", G_CALLBACK(ica_com_add_dialog), false},
                         {"_Delete", "com-delete", G_CALLBACK(ica_com_delete_cb), false}};
    for (const auto& action : actions) {
        GtkWidget* button = action.stock ? gtk_button_new_from_stock(action.label)
                                         : gtk_button_new_with_mnemonic(action.label);
        gtk_widget_set_name(button, action.name);
        g_signal_connect(button, "clicked", action.handler, g);
        gtk_box_pack_start(GTK_BOX(buttons), button, FALSE, FALSE, 0);
    }
    gtk_box_pack_start(GTK_BOX(column), buttons, FALSE, FALSE, 0);
    return column;
}

GtkWidget* preferences_page(global_window* g, const global_settings& s)
{
    GtkWidget* table = gtk_table_new(2, 2, FALSE);
    gtk_table_set_col_spacings(GTK_TABLE(table), spacing);
    gtk_table_set_row_spacings(GTK_TABLE(table), spacing);
    GtkWidget* label = gtk_label_new("Keyboard Layout");
    gtk_misc_set_alignment(GTK_MISC(label), 0.0, 0.5);
    g->layout = fixed_choice_combo(keyboard_layouts, keyboard_layouts.front());
    set_combo_text(g->layout, s.keyboard_layout);  // a layout not offered is kept as it is
    gtk_widget_set_name(g->layout, "keyboard-layout");
    g->audio = gtk_check_button_new_with_label("Allow Audio Input");
    gtk_widget_set_name(g->audio, "audio-input");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(g->audio), s.audio_input);
    gtk_table_attach(GTK_TABLE(table), label, 0, 1, 0, 1, GTK_FILL, GTK_FILL, 0, 0);
    gtk_table_attach(GTK_TABLE(table), g->layout, 1, 2, 0, 1, GTK_FILL, GTK_FILL, 0, 0);
    gtk_table_attach(GTK_TABLE(table), g->audio, 0, 2, 1, 2, GTK_FILL, GTK_FILL, 0, 0);
    return table;
}

global_settings settings_of(global_window* g)
{
    global_settings s = default_global_settings();
    s.keyboard_layout = combo_text(g->layout);
    for (int i = 0; i < hotkey_count; ++i)
        s.hotkeys[i] = {combo_text(g->shift[i]), combo_text(g->key[i])};
    gtk_tree_model_foreach(GTK_TREE_MODEL(g->drive_list), ica_global_drive_foreach, &s);
    gtk_tree_model_foreach(GTK_TREE_MODEL(g->com_list), ica_global_com_foreach, &s);
    s.audio_input = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(g->audio));
    return s;
}

void global_cancel_cb(GtkWidget*, global_window* g) { gtk_widget_destroy(g->window); }

}  // namespace

// "_Save": the Server Location page's default group, then the other pages' keys; each
// is its own rewrite of wfclient.ini.
static void ica_global_save_cb(GtkWidget* button, gpointer data)
{
    auto* g = static_cast<global_window*>(data);
    ica_server_save_cb(button, g->locations);
    const global_settings s = settings_of(g);
    rewrite_wfclient([&](const std::string& text) { return rewrite_global_settings(text, s); });
    gtk_widget_destroy(g->window);
}

global_settings ica_global_initialize()
{
    // Made from the client's own copy first when it is missing, so that the window shows
    // (and its Save keeps) the client's default server locations.
    global_settings s = default_global_settings();
    std::string text;
    if (read_wfclient(&text))
        read_global_settings(text, s);
    return s;
}

void ica_global_dialog(GtkWidget*, gpointer)
{
    const global_settings s = ica_global_initialize();
    auto* g = new global_window;
    g->window = program_window("Settings");
    gtk_window_set_default_size(GTK_WINDOW(g->window), window_width, window_height);
    gtk_container_set_border_width(GTK_CONTAINER(g->window), border);
    g_object_set_data_full(G_OBJECT(g->window), "kestrelle-global-settings", g, free_window);

    GtkWidget* notebook = gtk_notebook_new();
    gtk_widget_set_name(notebook, "pages");
    g->locations = ica_server_locations_new(g->window, &g->group, &g->protocol);
    g->locations->host = page(notebook, "Server Location");
    ica_server_location_dialog(nullptr, g->locations);
    gtk_box_pack_start(GTK_BOX(page(notebook, "Hotkeys")), hotkey_page(g, s), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(page(notebook, "Drive Mapping")), drive_page(g, s), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(page(notebook, "COM Ports")), com_page(g, s), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(page(notebook, "Preferences")), preferences_page(g, s), FALSE, FALSE, 0);

    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(column), notebook, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(column),
                     save_cancel_row(g->window, G_CALLBACK(ica_global_save_cb), G_CALLBACK(global_cancel_cb), g),
                     FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(g->window), column);
    gtk_widget_show_all(g->window);
}
