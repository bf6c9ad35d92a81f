// The ICA editor: a Citrix connection on six pages. Every toggle of the flag word keeps
// its bit in connect_info.flags current; the server group and protocol (columns 6 and
// 7) are set by the Server Location dialog in connect_info.
#include "editors/ica_editor.h"

#include "editors/connect_info.h"
#include "editors/editors.h"
#include "ica/server_location.h"
#include "ica/wfclient.h"
#include "platform/message.h"
#include "platform/text.h"
#include "store/choices.h"
#include "ui/form.h"
#include "ui/widgets.h"

#include <vector>

// The shared handler of the flag word's toggles: the bit follows the toggle.
static void ica_toggle_buttons_cb(GtkToggleButton* button, gpointer bit)
{
    follow_toggle(button, GPOINTER_TO_UINT(bit));
}

namespace {

enum ica_widget {
    ICA_SERVER_RADIO, ICA_PUBLISHED_RADIO, ICA_SERVER, ICA_PROGRAM, ICA_WORKDIR,
    ICA_USERNAME, ICA_PASSWORD, ICA_DOMAIN, ICA_SMARTCARD,
    ICA_SEAMLESS, ICA_WINDOW_SIZE, ICA_COLOURS, ICA_MAP_SHARED, ICA_MAP_PRIVATE, ICA_MAP_DEFAULT,
    ICA_COMPRESS, ICA_DISK_CACHE, ICA_SOUND, ICA_SOUND_QUALITY, ICA_MICROPHONE, ICA_RELIABILITY,
    ICA_RELIABILITY_PORT, ICA_SPEEDSCREEN, ICA_MOUSE_FEEDBACK, ICA_TEXT_ECHO, ICA_ENCRYPTION,
    ICA_PROXY_TYPE, ICA_PROXY_ADDRESS, ICA_PROXY_PORT, ICA_ALTERNATE, ICA_RELAY_ADDRESS,
    ICA_RELAY_PORT, ICA_PRIMARY_SERVER, ICA_WIDGETS
};

// The radio pair comes before "Seamless Window": a stored seamless state wins over the
// one that choosing "Published Application" gives.
constexpr column_binding ica_columns[] = {
    {MC_SERVER, ICA_SERVER, bind::combo_text},
    {0, ICA_SERVER_RADIO, bind::check_bit, ica_server},
    {0, ICA_PUBLISHED_RADIO, bind::check_bit, ica_published_app},
    {0, ICA_SEAMLESS, bind::check_bit, ica_seamless},
    {MC_PROGRAM, ICA_PROGRAM, bind::text},
    {MC_WORKDIR, ICA_WORKDIR, bind::text},
    {MC_USERNAME, ICA_USERNAME, bind::text},
    {MC_PASSWORD, ICA_PASSWORD, bind::password},
    {MC_DOMAIN, ICA_DOMAIN, bind::text},
    {0, ICA_SMARTCARD, bind::check_bit, ica_smartcard_logon},
    {MC_WINDOW_SIZE, ICA_WINDOW_SIZE, bind::combo_text},
    {MC_COLOURS, ICA_COLOURS, bind::radio_label},
    {0, ICA_MAP_SHARED, bind::check_bit, ica_approximate_on},
    {0, ICA_MAP_PRIVATE, bind::check_bit, ica_approximate_off},
    {0, ICA_MAP_DEFAULT, bind::check_bit, ica_default_colormap},
    {0, ICA_COMPRESS, bind::check_bit, ica_compress},
    {0, ICA_DISK_CACHE, bind::check_bit, ica_persistent_cache},
    {0, ICA_SOUND, bind::check_bit, ica_client_audio},
    {MC_SOUND, ICA_SOUND_QUALITY, bind::combo_text},
    {MC_ICA_AUDIO_INPUT, ICA_MICROPHONE, bind::combo_text},
    // Shown as stored, but with no handler: its bit is never saved.
    {0, ICA_RELIABILITY, bind::check_bit, ica_session_reliability},
    {MC_ICA_RELIABILITY_PORT, ICA_RELIABILITY_PORT, bind::text},
    {MC_ICA_SPEEDSCREEN, ICA_SPEEDSCREEN, bind::combo_text},
    {MC_ICA_MOUSE_LATENCY, ICA_MOUSE_FEEDBACK, bind::combo_text},
    {MC_ICA_KEYBOARD_LATENCY, ICA_TEXT_ECHO, bind::combo_text},
    {MC_ICA_ENCRYPTION, ICA_ENCRYPTION, bind::combo_text},
    {MC_ICA_PROXY_TYPE, ICA_PROXY_TYPE, bind::combo_text},
    {MC_ICA_PROXY_HOST, ICA_PROXY_ADDRESS, bind::text},
    {MC_ICA_PROXY_PORT, ICA_PROXY_PORT, bind::text},
    {0, ICA_ALTERNATE, bind::check_bit, ica_alternate_address},
    {MC_ICA_RELAY_ADDRESS, ICA_RELAY_ADDRESS, bind::text},
    {MC_ICA_RELAY_PORT, ICA_RELAY_PORT, bind::text},
};

constexpr int window_width = 400;
constexpr int window_height = 220;
constexpr int spacing = 6;
constexpr int page_border = 8;
constexpr int port_width = 6;

// What the ICA editor's handlers share: the editor block and the server locations.
struct ica_editor {
    editor* e;
    server_location_state* locations;
};

GtkWidget* page(GtkWidget* notebook, const char* title) { return notebook_page(notebook, title, page_border); }

void pack(GtkWidget* box, GtkWidget* child, bool grow = false)
{
    gtk_box_pack_start(GTK_BOX(box), child, grow, grow, 0);
}

GtkWidget* named_entry(const char* name, const char* text = "")
{
    GtkWidget* entry = name_widget(limited_entry(), name);
    gtk_entry_set_text(GTK_ENTRY(entry), text);
    return entry;
}

// An address entry, ":" and a port entry on one row under their captions.
GtkWidget* address_port(const char* caption, GtkWidget* address, GtkWidget* port)
{
    GtkWidget* table = gtk_table_new(2, 3, FALSE);
    gtk_table_set_col_spacings(GTK_TABLE(table), spacing);
    GtkWidget* captions[] = {gtk_label_new(caption), gtk_label_new(""), gtk_label_new("Port")};
    GtkWidget* controls[] = {address, gtk_label_new(":"), port};
    gtk_entry_set_width_chars(GTK_ENTRY(port), port_width);
    for (guint c = 0; c < 3; ++c) {
        gtk_misc_set_alignment(GTK_MISC(captions[c]), 0.0, 0.5);
        const auto grow = static_cast<GtkAttachOptions>(c == 0 ? GTK_EXPAND | GTK_FILL : GTK_FILL);
        gtk_table_attach(GTK_TABLE(table), captions[c], c, c + 1, 0, 1, grow, GTK_FILL, 0, 0);
        gtk_table_attach(GTK_TABLE(table), controls[c], c, c + 1, 1, 2, grow, GTK_FILL, 0, 0);
    }
    return table;
}

void connect_bit(GtkWidget* toggle, ica_option bit)
{
    g_signal_connect(toggle, "toggled", G_CALLBACK(ica_toggle_buttons_cb),
                     GUINT_TO_POINTER(static_cast<unsigned>(bit)));
}

void follow(GtkWidget* toggle, GCallback rule, GtkWidget* other)
{
    g_signal_connect(toggle, "toggled", rule, other);
}

}  // namespace

const editor_kind ica_kind{"ICA", true, "1494", MC_ICA_MASK, ica_columns};

static void ica_server_toggle_editable_cb(GtkToggleButton* server, editor* e)
{
    const bool on = gtk_toggle_button_get_active(server);
    connect_info.flags &= ~static_cast<unsigned long>(ica_server | ica_published_app);
    connect_info.flags |= on ? ica_server : ica_published_app;
    gtk_widget_set_sensitive(e->widgets[ICA_PROGRAM], on);
    gtk_widget_set_sensitive(e->widgets[ICA_WORKDIR], on);
}

static void ica_proxy_toggle_editable_cb(GtkWidget* proxy_combo, GtkWidget* target)
{
    const std::string type = combo_text(proxy_combo);
    if (type.empty())
        return;
    const bool direct = type == ica_proxy_none || type == ica_default;
    if (direct)
        gtk_entry_set_text(GTK_ENTRY(target), "");
    gtk_widget_set_sensitive(target, !direct);
}

void ica_get_published_list(GtkWidget*, ica_editor* b)
{
    const std::string address = ica_browse_address(b->locations);
    if (address.empty()) {
        show_error("\nPlease specify a default server location.\n");
        return;
    }
    editor* e = b->e;
    const bool servers = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(e->widgets[ICA_SERVER_RADIO]));
    std::vector<std::string> names;
    if (!ica_published_names(servers, address, &names))
        return;
    replace_choices(e->widgets[ICA_SERVER], names);
}

// The shared Save row hands over the editor block; columns 6 and 7 come from connect_info,
// where the Server Location dialog keeps them.
static void ica_ok_button_cb(GtkWidget*, editor* e)
{
    connection_record values = editor_values(e);
    values[MC_ICA_LOCATION] = connect_info.text[MC_ICA_LOCATION];
    values[MC_ICA_PROTOCOL] = connect_info.text[MC_ICA_PROTOCOL];
    finish_editor_save(e, values);
}

namespace {

void server_page(GtkWidget* notebook, ica_editor* b)
{
    editor* e = b->e;
    GtkWidget* box = page(notebook, "Server");
    pack(box, wrapped_note("Select a server from the list or enter a server name."));
    GtkWidget* radios = gtk_hbox_new(FALSE, spacing);
    e->widgets[ICA_SERVER_RADIO] = name_widget(gtk_radio_button_new_with_label(nullptr, "Server"), "server-radio");
    e->widgets[ICA_PUBLISHED_RADIO] = name_widget(
        gtk_radio_button_new_with_label_from_widget(GTK_RADIO_BUTTON(e->widgets[ICA_SERVER_RADIO]),
                                                    "Published Application"),
        "published-radio");
    pack(radios, e->widgets[ICA_SERVER_RADIO]);
    pack(radios, e->widgets[ICA_PUBLISHED_RADIO]);
    pack(box, radios);
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    e->widgets[ICA_SERVER] = long_choice_combo("server");
    gtk_entry_set_max_length(GTK_ENTRY(gtk_bin_get_child(GTK_BIN(e->widgets[ICA_SERVER]))), entry_limit);
    GtkWidget* refresh = name_widget(gtk_button_new_from_stock("gtk-refresh"), "refresh");
    g_signal_connect(refresh, "clicked", G_CALLBACK(ica_get_published_list), b);
    gtk_box_pack_start(GTK_BOX(row), e->widgets[ICA_SERVER], TRUE, TRUE, 0);
    pack(row, refresh);
    pack(box, row);
    e->widgets[ICA_PRIMARY_SERVER] = name_widget(wrapped_note(""), "primary-server");
    pack(box, e->widgets[ICA_PRIMARY_SERVER]);
    pack(box, wrapped_note("You can change your server location settings by clicking Server Location."));
    GtkWidget* location = name_widget(gtk_button_new_with_label("Server Location"), "server-location");
    GtkWidget* left = gtk_hbox_new(FALSE, 0);
    pack(left, location);
    pack(box, left);
    g_signal_connect(location, "clicked", G_CALLBACK(+[](GtkWidget* button, ica_editor* block) {
                         ica_server_location_dialog(button, block->locations);
                     }),
                     b);
}

void applications_page(GtkWidget* notebook, editor* e)
{
    GtkWidget* table = form_table();
    e->widgets[ICA_PROGRAM] = form_entry(table, 0, "Command line:", "program");
    e->widgets[ICA_WORKDIR] = form_entry(table, 1, "Working directory:", "workdir");
    pack(page(notebook, "Applications"), table);
}

void logon_page(GtkWidget* notebook, editor* e)
{
    GtkWidget* box = page(notebook, "Logon");
    pack(box, wrapped_note("If desired you can specify logon information to be used when connecting to "
                   "the remote application."));
    GtkWidget* table = form_table();
    e->widgets[ICA_USERNAME] = form_entry(table, 0, "Username:", "username");
    e->widgets[ICA_PASSWORD] = form_entry(table, 1, "Password:", "password");
    gtk_entry_set_visibility(GTK_ENTRY(e->widgets[ICA_PASSWORD]), FALSE);
    e->widgets[ICA_DOMAIN] = form_entry(table, 2, "Domain:  ", "domain");
    e->widgets[ICA_SMARTCARD] = form_check(table, 3, "Allow smartcard logon", "smartcard");
    pack(box, table);
}

// A column of radio buttons, one per label, in one group; returns the box.
GtkWidget* radio_column(const std::vector<std::string>& labels, const char* name_prefix,
                        std::vector<GtkWidget*>* radios)
{
    GtkWidget* box = gtk_vbox_new(FALSE, 0);
    GtkWidget* first = nullptr;
    for (const std::string& label : labels) {
        GtkWidget* radio = first ? gtk_radio_button_new_with_label_from_widget(GTK_RADIO_BUTTON(first), label.c_str())
                                 : gtk_radio_button_new_with_label(nullptr, label.c_str());
        first = first ? first : radio;
        const std::string name = std::string(name_prefix) + label;
        gtk_widget_set_name(radio, name.c_str());
        pack(box, radio);
        radios->push_back(radio);
    }
    return box;
}

void window_page(GtkWidget* notebook, editor* e)
{
    GtkWidget* box = page(notebook, "Window");
    pack(box, wrapped_note("These settings specify how the application window will appear on your desktop."));
    GtkWidget* size = gtk_vbox_new(FALSE, spacing);
    e->widgets[ICA_SEAMLESS] = name_widget(gtk_check_button_new_with_label("Seamless Window"), "seamless");
    e->widgets[ICA_WINDOW_SIZE] = name_widget(fixed_choice_combo(choice_texts(ica_window_sizes), ica_default), "window-size");
    pack(size, e->widgets[ICA_SEAMLESS]);
    pack(size, e->widgets[ICA_WINDOW_SIZE]);
    pack(box, framed("Window Size", size));

    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    std::vector<GtkWidget*> colours, mappings;
    GtkWidget* colour_box = radio_column(choice_texts(ica_colours), "colours-", &colours);
    std::vector<std::string> mapping_labels;
    for (const ica_colour_mapping& mapping : ica_colour_mappings)
        mapping_labels.emplace_back(mapping.text);
    GtkWidget* mapping_box = radio_column(mapping_labels, "mapping-", &mappings);
    gtk_box_pack_start(GTK_BOX(row), framed("Window Colors", colour_box), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(row), framed("256 Color Mapping", mapping_box), TRUE, TRUE, 0);
    pack(box, row);
    e->widgets[ICA_COLOURS] = colours.back();
    e->widgets[ICA_MAP_SHARED] = mappings[0];
    e->widgets[ICA_MAP_PRIVATE] = mappings[1];
    e->widgets[ICA_MAP_DEFAULT] = mappings[2];
    // Only a depth of 256 colours has a colour map to choose.
    follow(colours[1], G_CALLBACK(toggle_editable_cb), mapping_box);
    toggle_editable_cb(GTK_TOGGLE_BUTTON(colours[1]), mapping_box);
}

void options_page(GtkWidget* notebook, editor* e)
{
    GtkWidget* table = form_table();
    e->widgets[ICA_COMPRESS] = form_check(table, 0, "Compress data stream", "compress");
    e->widgets[ICA_DISK_CACHE] = form_check(table, 1, "Use disk cache for bitmaps", "disk-cache");
    e->widgets[ICA_SOUND] = form_check(table, 2, "Enable sound", "sound");
    e->widgets[ICA_SOUND_QUALITY] = form_fixed_combo(table, 3, "Sound quality:", "sound-quality",
                                                     choice_texts(ica_sound_qualities), ica_sound_default);
    e->widgets[ICA_MICROPHONE] = form_fixed_combo(table, 4, "Microphone input:", "microphone",
                                                  choice_texts(ica_audio_inputs), ica_audio_disabled);
    e->widgets[ICA_RELIABILITY] = form_check(table, 5, "Enable session reliability", "reliability");
    e->widgets[ICA_RELIABILITY_PORT] = form_entry(table, 6, "Port:", "reliability-port");
    gtk_entry_set_text(GTK_ENTRY(e->widgets[ICA_RELIABILITY_PORT]), ica_session_reliability_port);
    gtk_widget_set_sensitive(e->widgets[ICA_RELIABILITY_PORT], FALSE);
    e->widgets[ICA_SPEEDSCREEN] = form_fixed_combo(table, 7, "SpeedScreen:", "speedscreen",
                                                   choice_texts(ica_speedscreen_modes), ica_speedscreen_modes[0]);
    const std::vector<std::string> latency = choice_texts(ica_latency_modes);
    e->widgets[ICA_MOUSE_FEEDBACK] = form_fixed_combo(table, 8, "Mouse Click Feedback:", "mouse-feedback",
                                                      latency, ica_latency_modes[2].text);
    e->widgets[ICA_TEXT_ECHO] = form_fixed_combo(table, 9, "Local Text Echo:", "text-echo", latency,
                                                 ica_latency_modes[1].text);
    e->widgets[ICA_ENCRYPTION] = form_fixed_combo(table, 10, "Encryption level:", "encryption",
                                                  choice_texts(ica_encryption_levels), ica_encryption_levels[0]);
    pack(page(notebook, "Options"), table);
}

void firewall_page(GtkWidget* notebook, editor* e)
{
    GtkWidget* box = page(notebook, "Firewall Settings");
    GtkWidget* proxy = gtk_vbox_new(FALSE, spacing);
    e->widgets[ICA_PROXY_TYPE] = name_widget(fixed_choice_combo(choice_texts(ica_proxy_types), ica_default), "proxy-type");
    pack(proxy, e->widgets[ICA_PROXY_TYPE]);
    pack(proxy, wrapped_note("NOTE: When using the Secure (HTTPS) setting, enable SSL or 128-bit encryption to "
                     "assure a secure connection."));
    e->widgets[ICA_PROXY_ADDRESS] = named_entry("proxy-address");
    e->widgets[ICA_PROXY_PORT] = named_entry("proxy-port");
    pack(proxy, address_port("Proxy address", e->widgets[ICA_PROXY_ADDRESS], e->widgets[ICA_PROXY_PORT]));
    pack(box, framed("Proxy", proxy));
    e->widgets[ICA_ALTERNATE] = name_widget(gtk_check_button_new_with_label("Use alternate address through firewall"),
                                      "alternate-address");
    pack(box, e->widgets[ICA_ALTERNATE]);
    e->widgets[ICA_RELAY_ADDRESS] = named_entry("relay-address");
    e->widgets[ICA_RELAY_PORT] = named_entry("relay-port", ica_relay_port);
    pack(box, framed("SSL/TLS Relay",
                     address_port("Address of relay", e->widgets[ICA_RELAY_ADDRESS], e->widgets[ICA_RELAY_PORT])));
    for (GtkWidget* target : {e->widgets[ICA_PROXY_ADDRESS], e->widgets[ICA_PROXY_PORT]}) {
        g_signal_connect(e->widgets[ICA_PROXY_TYPE], "changed", G_CALLBACK(ica_proxy_toggle_editable_cb), target);
        ica_proxy_toggle_editable_cb(e->widgets[ICA_PROXY_TYPE], target);
    }
}

// The rules between controls, then the defaults that differ from a new control's state.
void connect_rules(editor* e)
{
    GtkWidget** w = e->widgets.data();
    g_signal_connect(w[ICA_SERVER_RADIO], "toggled", G_CALLBACK(ica_server_toggle_editable_cb), e);
    follow(w[ICA_PUBLISHED_RADIO], G_CALLBACK(toggle_active_cb), w[ICA_SEAMLESS]);
    follow(w[ICA_PUBLISHED_RADIO], G_CALLBACK(toggle_editable_cb), w[ICA_SEAMLESS]);
    gtk_widget_set_sensitive(w[ICA_SEAMLESS], FALSE);
    follow(w[ICA_SEAMLESS], G_CALLBACK(toggle_not_editable_cb), w[ICA_WINDOW_SIZE]);
    follow(w[ICA_SOUND], G_CALLBACK(toggle_editable_cb), w[ICA_SOUND_QUALITY]);
    follow(w[ICA_SOUND], G_CALLBACK(toggle_editable_cb), w[ICA_MICROPHONE]);
    // "Enable session reliability" deliberately has no handler: its bit is never set.
    for (const column_binding& b : ica_columns)
        if (b.kind == bind::check_bit && b.bit != ica_session_reliability && b.bit != ica_server &&
            b.bit != ica_published_app)
            connect_bit(w[b.widget], static_cast<ica_option>(b.bit));
    for (int on : {ICA_COLOURS, ICA_MAP_DEFAULT, ICA_COMPRESS, ICA_SOUND})
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(w[on]), TRUE);
    // Toggles already on when they were made never fired: take their bits now.
    ica_server_toggle_editable_cb(GTK_TOGGLE_BUTTON(w[ICA_SERVER_RADIO]), e);
}

GtkWidget* name_row(editor* e)
{
    GtkWidget* row = gtk_hbox_new(FALSE, spacing);
    pack(row, gtk_label_new("Name this connection:  "));
    e->name = named_entry("name");
    gtk_box_pack_start(GTK_BOX(row), e->name, TRUE, TRUE, 0);
    return row;
}

}  // namespace

void ica_dialog(GtkTreePath* path)
{
    // The server locations come from wfclient.ini: without it there is no editor.
    std::string text;
    if (!read_wfclient(&text))
        return;
    editor* e = open_editor(ica_kind, "ICA connection", path, ICA_WIDGETS);
    gtk_window_set_default_size(GTK_WINDOW(e->window), window_width, window_height);
    auto* b = new ica_editor{e, nullptr};
    g_object_set_data_full(G_OBJECT(e->window), "kestrelle-ica-editor", b,
                           [](gpointer data) { delete static_cast<ica_editor*>(data); });

    GtkWidget* notebook = name_widget(gtk_notebook_new(), "pages");
    server_page(notebook, b);
    applications_page(notebook, e);
    logon_page(notebook, e);
    window_page(notebook, e);
    options_page(notebook, e);
    firewall_page(notebook, e);
    GtkWidget* content = gtk_vbox_new(FALSE, spacing);
    gtk_box_pack_start(GTK_BOX(content), notebook, TRUE, TRUE, 0);
    pack(content, name_row(e));
    connect_rules(e);

    load_editor(e);
    std::string& group = connect_info.text[MC_ICA_LOCATION];
    std::string& protocol = connect_info.text[MC_ICA_PROTOCOL];
    if (!e->path)
        group = protocol = ica_default;
    gtk_label_set_text(GTK_LABEL(e->widgets[ICA_PRIMARY_SERVER]), shown_text(primary_server_text(group)).c_str());
    b->locations = ica_server_locations_new(e->window, &group, &protocol);
    b->locations->primary_label = e->widgets[ICA_PRIMARY_SERVER];
    ica_create_server_lists(b->locations);
    show_editor(e, content, G_CALLBACK(ica_ok_button_cb));
    gtk_widget_grab_focus(e->widgets[ICA_SERVER]);
}
