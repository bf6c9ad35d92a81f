#include "ica/server_location.h"

#include "ica/wfclient.h"
#include "platform/text.h"
#include "store/choices.h"
#include "store/ica_paths.h"
#include "ui/widgets.h"

#include <vector>

namespace {

constexpr int window_width = 400;
constexpr int window_height = 250;
constexpr int spacing = 6;
constexpr int border = 10;
constexpr int address_limit = 100;
constexpr int port_width = 6;
constexpr int list_height = 100;  // a few rows of addresses at least
constexpr const char* state_key = "kestrelle-server-locations";
constexpr const char* group_note =
    "Changes to the default server group are applied to all connections. Custom server "
    "settings are applied only to the connection currently being edited.";

void free_state(gpointer data)
{
    auto* s = static_cast<server_location_state*>(data);
    for (GtkListStore* list : {s->http, s->tcp, s->custom})
        g_object_unref(list);
    delete s;
}

std::vector<std::string> list_rows(GtkListStore* list)
{
    std::vector<std::string> rows;
    GtkTreeModel* model = GTK_TREE_MODEL(list);
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter)) {
        gchar* text = nullptr;
        gtk_tree_model_get(model, &iter, 0, &text, -1);
        rows.emplace_back(text ? text : "");
        g_free(text);
    }
    return rows;
}

void fill_list(GtkListStore* list, const std::vector<std::string>& rows)
{
    gtk_list_store_clear(list);
    for (const std::string& row : rows)
        gtk_list_store_insert_with_values(list, nullptr, -1, 0, row.c_str(), -1);
}

bool custom_group(const server_location_state* s)
{
    return combo_text(s->group_combo) == ica_custom_group;
}

void show_list(server_location_state* s, GtkListStore* list)
{
    gtk_tree_view_set_model(GTK_TREE_VIEW(s->view), GTK_TREE_MODEL(list));
}

// The row selected in the view, when the view shows list.
bool selected_in(const server_location_state* s, GtkListStore* list, GtkTreeIter* iter)
{
    GtkTreeModel* shown = nullptr;
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(s->view));
    return gtk_tree_selection_get_selected(selection, &shown, iter) &&
           shown == GTK_TREE_MODEL(list);
}

void set_primary_label(const server_location_state* s)
{
    if (s->primary_label && s->window)
        gtk_label_set_text(GTK_LABEL(s->primary_label), shown_text(primary_server_text(*s->group)).c_str());
}

// The custom group's server: the selected row, else the first; "" when there is none.
std::string custom_server(const server_location_state* s)
{
    GtkTreeIter iter;
    if (selected_in(s, s->custom, &iter)) {
        gchar* text = nullptr;
        gtk_tree_model_get(GTK_TREE_MODEL(s->custom), &iter, 0, &text, -1);
        std::string server = text ? text : "";
        g_free(text);
        return server;
    }
    const std::vector<std::string> rows = list_rows(s->custom);
    return rows.empty() ? "" : rows.front();
}

GtkWidget* address_view(server_location_state* s)
{
    s->view = gtk_tree_view_new();
    gtk_widget_set_name(s->view, "server-addresses");
    gtk_tree_view_append_column(GTK_TREE_VIEW(s->view), text_view_column("Address", 0));
    GtkWidget* scroller = vertical_scroller(s->view);
    gtk_widget_set_size_request(scroller, -1, list_height);
    return scroller;
}

GtkWidget* group_row(server_location_state* s)
{
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(row), gtk_label_new("Server Group: "), FALSE, FALSE, 0);
    const std::string& group = *s->group;
    s->group_combo = fixed_choice_combo({std::begin(ica_server_groups), std::end(ica_server_groups)},
                                        group == ica_default ? ica_default : ica_custom_group);
    gtk_widget_set_name(s->group_combo, "server-group");
    const std::string& protocol = *s->group_protocol;
    s->protocol_combo = fixed_choice_combo({std::begin(ica_protocols), std::end(ica_protocols)},
                                           protocol != ica_default ? protocol : s->file_protocol);
    gtk_widget_set_name(s->protocol_combo, "server-protocol");
    gtk_box_pack_start(GTK_BOX(row), s->group_combo, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), s->protocol_combo, TRUE, TRUE, 0);
    return row;
}

GtkWidget* list_buttons(server_location_state* s)
{
    GtkWidget* row = gtk_hbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(row), GTK_BUTTONBOX_START);
    gtk_box_set_spacing(GTK_BOX(row), spacing);
    gtk_box_pack_start(GTK_BOX(row), labelled_button("_Add", G_CALLBACK(ica_add_server_dialog), s),
                       FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), labelled_button("_Delete", G_CALLBACK(ica_delete_server_cb), s),
                       FALSE, FALSE, 0);
    return row;
}

GtkWidget* location_controls(server_location_state* s)
{
    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    if (!s->host)  // a page of its host has the host's border already
        gtk_container_set_border_width(GTK_CONTAINER(column), border);
    gtk_box_pack_start(GTK_BOX(column), group_row(s), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), wrapped_note(group_note), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), address_view(s), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(column), list_buttons(s), FALSE, FALSE, 0);
    return column;
}

void forget_controls(GtkWidget*, server_location_state* s)
{
    s->window = s->view = s->group_combo = s->protocol_combo = nullptr;
}

void location_save_cb(GtkWidget* button, server_location_state* s)
{
    ica_server_save_cb(button, s);
    gtk_widget_destroy(s->window);
}

void location_cancel_cb(GtkWidget*, server_location_state* s) { gtk_widget_destroy(s->window); }

void add_window_close_cb(GtkWidget*, GtkWidget* window) { gtk_widget_destroy(window); }

void forget_add_entries(GtkWidget*, server_location_state* s) { s->address = s->port = nullptr; }

void add_window_ok_cb(GtkWidget* button, GtkWidget* window)
{
    auto* s = static_cast<server_location_state*>(g_object_get_data(G_OBJECT(window), state_key));
    ica_add_server_cb(button, s);
    gtk_widget_destroy(window);
}

}  // namespace

std::string primary_server_text(const std::string& group) { return "Primary Server: " + group; }

server_location_state* ica_server_locations_new(GtkWidget* owner, std::string* group,
                                                std::string* group_protocol)
{
    auto* s = new server_location_state;
    s->http = gtk_list_store_new(1, G_TYPE_STRING);
    s->tcp = gtk_list_store_new(1, G_TYPE_STRING);
    s->custom = gtk_list_store_new(1, G_TYPE_STRING);
    s->group = group;
    s->group_protocol = group_protocol;
    g_object_set_data_full(G_OBJECT(owner), state_key, s, free_state);
    return s;
}

void ica_create_server_lists(server_location_state* s)
{
    if (*s->group != ica_default)
        fill_list(s->custom, {*s->group});
    const server_locations read = read_server_locations(wfclient_text());
    fill_list(s->http, read.http);
    fill_list(s->tcp, read.tcp);
    s->file_protocol = read.protocol;
}

std::string ica_browse_address(const server_location_state* s)
{
    if (*s->group != ica_default)
        return *s->group;
    const std::vector<std::string> rows =
        list_rows(s->file_protocol == ica_tcp_browser ? s->tcp : s->http);
    if (rows.empty() || rows.front() == ica_default)
        return "";
    return rows.front();
}

void ica_server_location_dialog(GtkWidget* button, server_location_state* s)
{
    gtk_list_store_clear(s->custom);
    ica_create_server_lists(s);
    GtkWidget* controls = location_controls(s);
    if (s->host) {
        gtk_container_add(GTK_CONTAINER(s->host), controls);
    } else {
        s->window = program_window("Server Location");
        gtk_window_set_default_size(GTK_WINDOW(s->window), window_width, window_height);
        GtkWidget* column = gtk_vbox_new(FALSE, spacing);
        gtk_box_pack_start(GTK_BOX(column), controls, TRUE, TRUE, 0);
        gtk_box_pack_end(GTK_BOX(column),
                         save_cancel_row(s->window, G_CALLBACK(location_save_cb),
                                         G_CALLBACK(location_cancel_cb), s),
                         FALSE, FALSE, spacing);
        gtk_container_add(GTK_CONTAINER(s->window), column);
        g_signal_connect(s->window, "destroy", G_CALLBACK(forget_controls), s);
        hide_while_open(s->window, button ? gtk_widget_get_toplevel(button) : nullptr);
    }
    g_signal_connect(s->group_combo, "changed", G_CALLBACK(ica_set_server_list_cb), s);
    g_signal_connect(s->protocol_combo, "changed", G_CALLBACK(ica_set_protocol_cb), s);
    ica_set_protocol_cb(s->protocol_combo, s);
    gtk_widget_show_all(s->window ? s->window : s->host);
}

void ica_set_server_list_cb(GtkWidget*, server_location_state* s)
{
    if (custom_group(s))
        show_list(s, s->custom);
    else
        show_list(s, s->file_protocol.find("HTTP") != std::string::npos ? s->http : s->tcp);
    const std::string& protocol = *s->group_protocol;
    set_combo_text(s->protocol_combo, protocol != ica_default ? protocol : s->file_protocol);
}

void ica_set_protocol_cb(GtkWidget*, server_location_state* s)
{
    if (custom_group(s))
        show_list(s, s->custom);
    else
        show_list(s, combo_text(s->protocol_combo) == ica_tcp_browser ? s->tcp : s->http);
}

void ica_add_server_dialog(GtkWidget*, server_location_state* s)
{
    GtkWidget* window = program_window("Add Server Address");
    gtk_container_set_border_width(GTK_CONTAINER(window), border);
    if (GtkWidget* opener = s->view ? gtk_widget_get_toplevel(s->view) : nullptr)
        gtk_window_set_transient_for(GTK_WINDOW(window), GTK_WINDOW(opener));
    gtk_window_set_modal(GTK_WINDOW(window), TRUE);  // one add dialog at a time
    g_object_set_data(G_OBJECT(window), state_key, s);
    g_signal_connect(window, "destroy", G_CALLBACK(forget_add_entries), s);
    GtkWidget* column = gtk_vbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(column), gtk_label_new("Enter a new server address and port:"),
                       FALSE, FALSE, 0);
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    s->address = gtk_entry_new();
    s->port = gtk_entry_new();
    gtk_widget_set_name(s->address, "server-address");
    gtk_widget_set_name(s->port, "server-port");
    for (GtkWidget* entry : {s->address, s->port})
        gtk_entry_set_max_length(GTK_ENTRY(entry), address_limit);
    gtk_entry_set_width_chars(GTK_ENTRY(s->port), port_width);
    gtk_box_pack_start(GTK_BOX(row), s->address, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row), gtk_label_new(":"), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), s->port, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), row, FALSE, FALSE, 0);
    GtkWidget* buttons =
        default_cancel_row(window, "_Ok", G_CALLBACK(add_window_ok_cb), G_CALLBACK(add_window_close_cb), window);
    gtk_box_pack_start(GTK_BOX(column), buttons, FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), column);
    gtk_widget_show_all(window);
}

void ica_add_server_cb(GtkWidget*, server_location_state* s)
{
    if (!s || !s->address || !s->view)
        return;
    std::string text = gtk_entry_get_text(GTK_ENTRY(s->address));
    const std::string port = gtk_entry_get_text(GTK_ENTRY(s->port));
    if (text.empty())
        return;
    if (!port.empty())
        text += ":" + port;
    if (custom_group(s)) {
        fill_list(s->custom, {text});  // a custom group holds exactly one server
        return;
    }
    const bool tcp = g_ascii_strcasecmp(combo_text(s->protocol_combo).c_str(), ica_tcp_browser) == 0;
    GtkListStore* list = tcp ? s->tcp : s->http;
    GtkTreeIter selected, added;
    if (selected_in(s, list, &selected))
        gtk_list_store_insert_after(list, &added, &selected);
    else
        gtk_list_store_append(list, &added);
    gtk_list_store_set(list, &added, 0, text.c_str(), -1);
}

void ica_delete_server_cb(GtkWidget*, server_location_state* s)
{
    GtkTreeModel* shown = nullptr;
    GtkTreeIter iter;
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(s->view));
    if (gtk_tree_selection_get_selected(selection, &shown, &iter))
        gtk_list_store_remove(GTK_LIST_STORE(shown), &iter);
}

void ica_server_save_cb(GtkWidget*, server_location_state* s)
{
    if (custom_group(s)) {
        const std::string server = custom_server(s);
        *s->group_protocol = server.empty() ? ica_default : combo_text(s->protocol_combo);
        *s->group = server.empty() ? ica_default : server;
        set_primary_label(s);
        return;
    }
    *s->group = *s->group_protocol = ica_default;
    set_primary_label(s);
    const server_locations locations{list_rows(s->http), list_rows(s->tcp),
                                     combo_text(s->protocol_combo)};
    rewrite_wfclient([&](const std::string& text) { return rewrite_server_locations(text, locations); });
}
