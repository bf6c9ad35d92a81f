#pragma once
// The Server Location controls: the default server group kept in wfclient.ini, or one
// custom server for the connection being edited. The ICA editor opens them in a window
// of their own; the global settings embed them as a page.
#include <gtk/gtk.h>

#include <string>

// What the controls work on, handed to every handler. The window that opens the
// controls owns it (ica_server_locations_new ties it to that window's life).
struct server_location_state {
    GtkListStore* http = nullptr;    // HTTP location list (one string column)
    GtkListStore* tcp = nullptr;     // TCP location list
    GtkListStore* custom = nullptr;  // the connection's custom group: at most one row
    std::string file_protocol;       // the protocol choice read from wfclient.ini
    std::string* group = nullptr;           // the connection's column 6
    std::string* group_protocol = nullptr;  // the connection's column 7
    GtkWidget* primary_label = nullptr;     // the editor's "Primary Server: " label, or null
    GtkWidget* host = nullptr;       // container the controls are embedded in, or null
    // The controls, while they exist.
    GtkWidget* window = nullptr;     // their own window (null when embedded)
    GtkWidget* view = nullptr;
    GtkWidget* group_combo = nullptr;
    GtkWidget* protocol_combo = nullptr;
    GtkWidget* address = nullptr;    // the add dialog's entries
    GtkWidget* port = nullptr;
};

// New empty lists for owner's window; freed when owner is destroyed. group and
// group_protocol are the connection's columns 6 and 7 ("Default" both for none).
server_location_state* ica_server_locations_new(GtkWidget* owner, std::string* group,
                                                std::string* group_protocol);
// Fills the three lists from wfclient.ini and the connection's group, and sets the
// protocol choice.
void ica_create_server_lists(server_location_state* s);
// The address the published applications are asked from: the custom group itself, or
// the first default location of the file's protocol. "" when there is none.
std::string ica_browse_address(const server_location_state* s);

// Builds the controls: in s->host when set, else in a window "Server Location" that
// hides the window of button while it is open.
void ica_server_location_dialog(GtkWidget* button, server_location_state* s);
void ica_set_server_list_cb(GtkWidget* combo, server_location_state* s);
void ica_set_protocol_cb(GtkWidget* combo, server_location_state* s);
void ica_add_server_dialog(GtkWidget* button, server_location_state* s);
void ica_add_server_cb(GtkWidget* button, server_location_state* s);
void ica_delete_server_cb(GtkWidget* button, server_location_state* s);
// Stores a custom group in columns 6 and 7, or the default group in wfclient.ini.
void ica_server_save_cb(GtkWidget* button, server_location_state* s);

// "Primary Server: " and the group, for the editor's label.
std::string primary_server_text(const std::string& group);
