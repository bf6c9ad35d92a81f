#include "admin/ping_options.h"

#include "store/models.h"
#include "store/record.h"
#include "store/save.h"
#include "ui/form.h"
#include "ui/widgets.h"

namespace {

constexpr int window_width = 225;
constexpr int window_border = 10;
constexpr const char* icmp_echo_port = "0";

// What the window's handlers share; freed with the window.
struct ping_state {
    GtkTreeModel* model;
    std::string path;
    std::string default_port;
    GtkWidget* window = nullptr;
    GtkWidget* check = nullptr;
    GtkWidget* port = nullptr;
};

bool flip_ping_first(GtkTreeModel* model, const gchar* path_text)
{
    GtkTreeIter iter;
    if (!gtk_tree_model_get_iter_from_string(model, &iter, path_text))
        return false;
    const bool on = !model_flag(model, &iter, MC_PING);
    gtk_list_store_set(GTK_LIST_STORE(model), &iter, MC_PING, on, -1);
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    return on;
}

// Turned on, the port can be typed and shows the type's default port; off, "0" (a
// plain echo) is shown and cannot be typed.
void smart_ping_toggle_cb(GtkToggleButton* check, ping_state* state)
{
    const bool smart = gtk_toggle_button_get_active(check);
    gtk_editable_set_editable(GTK_EDITABLE(state->port), smart);
    set_entry_bytes(state->port, smart ? state->default_port : std::string(icmp_echo_port));
}

void smart_ping_save_cb(GtkWidget*, ping_state* state)
{
    GtkTreeIter iter;
    if (gtk_tree_model_get_iter_from_string(state->model, &iter, state->path.c_str())) {
        const std::string port = entry_bytes(state->port);
        gtk_list_store_set(GTK_LIST_STORE(state->model), &iter, MC_PING_PORT, port.c_str(), -1);
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    }
    gtk_widget_destroy(state->window);
}

// Cancel turns the ping off again; closing the window by the window manager does not.
void smart_ping_cancel_button_cb(GtkWidget*, ping_state* state)
{
    flip_ping_first(state->model, state->path.c_str());
    gtk_widget_destroy(state->window);
}

void free_state(GtkWidget*, ping_state* state) { delete state; }

GtkWidget* ping_options_content(ping_state* state, const std::string& stored_port)
{
    GtkWidget* table = form_table();
    state->check = form_check(table, 0, "Use 'Smart Ping'", "smart-ping");
    state->port = form_entry(table, 1, "Port to open:", "port");
    set_entry_bytes(state->port, stored_port);
    gtk_editable_set_editable(GTK_EDITABLE(state->port), FALSE);
    g_signal_connect(state->check, "toggled", G_CALLBACK(smart_ping_toggle_cb), state);
    // A stored port is shown as the type's default whenever the window opens: the
    // administrator confirms or retypes it.
    if (stored_port != icmp_echo_port)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(state->check), TRUE);
    GtkWidget* column = gtk_vbox_new(FALSE, window_border);
    gtk_box_pack_start(GTK_BOX(column), table, FALSE, FALSE, 0);
    gtk_box_pack_end(GTK_BOX(column),
                     save_cancel_row(state->window, G_CALLBACK(smart_ping_save_cb),
                                     G_CALLBACK(smart_ping_cancel_button_cb), state),
                     FALSE, FALSE, 0);
    return column;
}

}  // namespace

std::string default_ping_port(const std::string& type)
{
    switch (parse_connection_type(type)) {
    case connection_type::ica:
        return "1494";
    case connection_type::rdp:
        return "3389";
    case connection_type::web:
        return "80";
    default:
        return icmp_echo_port;
    }
}

void smart_ping_cb(GtkCellRendererToggle*, gchar* path_text, gpointer model)
{
    flip_ping_first(GTK_TREE_MODEL(model), path_text);
}

void smart_ping_dialog(GtkCellRendererToggle*, gchar* path_text, gpointer advanced_window)
{
    GtkTreeModel* model = GTK_TREE_MODEL(master_connection_list);
    if (!flip_ping_first(model, path_text))
        return;
    GtkTreeIter iter;
    gtk_tree_model_get_iter_from_string(model, &iter, path_text);
    auto* state = new ping_state{model, path_text, default_ping_port(model_text(model, &iter, MC_TYPE))};
    state->window = program_window("Ping Options");
    gtk_window_set_default_size(GTK_WINDOW(state->window), window_width, -1);
    gtk_container_set_border_width(GTK_CONTAINER(state->window), window_border);
    g_signal_connect(state->window, "destroy", G_CALLBACK(free_state), state);
    hide_while_open(state->window, static_cast<GtkWidget*>(advanced_window));
    gtk_container_add(GTK_CONTAINER(state->window),
                      ping_options_content(state, model_text(model, &iter, MC_PING_PORT)));
    gtk_widget_show_all(state->window);
}
