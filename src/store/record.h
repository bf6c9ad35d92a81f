#pragma once
// The Connection record (one row of the master list) and the user connection tree
// row, with their column numbers, the adapters that move them in and out of the GTK
// stores, and the identity look-ups.
#include <gtk/gtk.h>

#include <array>
#include <string>
#include <vector>

// Master list columns. Columns 5 to 34 mean different things per type; the aliases
// name the use of each column by the types that have one.
enum master_col : int {
    MC_NAME = 0,
    MC_TYPE = 1,
    MC_PING = 2,           // boolean: check reachability before connecting
    MC_PING_PORT = 3,      // "0" for an ICMP echo, else a TCP port
    MC_PING_VALID = 4,     // seconds a reachability result stays valid
    MC_SERVER = 5,         // RDP server, ICA server or application, XDM host, Web URL
    MC_ICA_LOCATION = 6,   // "Default" or the browser address list
    MC_ICA_PROTOCOL = 7,   // browser protocol
    MC_XDM_MODE = 7,       // "Query", "Indirect" or "Broadcast"
    MC_PROGRAM = 8,        // RDP -s, ICA initial program, Other's command line
    MC_WORKDIR = 9,
    MC_USERNAME = 10,
    MC_PASSWORD = 11,      // scrambled and padded
    MC_DOMAIN = 12,
    MC_XDM_VT = 12,        // "Automatic" or a virtual terminal number
    MC_WINDOW_SIZE = 13,
    MC_XDM_DISPLAY = 13,
    MC_COLOURS = 14,
    MC_SOUND = 15,         // RDP sound, ICA audio quality
    MC_ICA_AUDIO_INPUT = 16,
    MC_ICA_RELIABILITY_PORT = 17,
    MC_ICA_SPEEDSCREEN = 18,
    MC_ICA_ENCRYPTION = 19,
    MC_RDP_CLIENT_HOST = 20,
    MC_ICA_PROXY_TYPE = 21,
    MC_ICA_PROXY_HOST = 22,
    MC_ICA_PROXY_PORT = 23,
    MC_ICA_RELAY_ADDRESS = 24,
    MC_ICA_RELAY_PORT = 25,
    MC_KEYBOARD = 26,          // RDP keymap display name, XDM keyboard
    MC_ICA_KEYBOARD_LATENCY = 26,
    MC_RDP_EXPERIENCE = 27,
    MC_ICA_MOUSE_LATENCY = 27,
    MC_RDP_DISK = 28,
    MC_RDP_PRINTER = 29,
    MC_RDP_LPT = 30,
    MC_RDP_COM = 31,
    MC_RDP_EXTRA_OPTIONS = 32,
    MC_RDP_FLAGS = 33,     // five zero-padded decimal digits
    MC_ICA_MASK = 34,      // decimal bit mask
    MC_FROM_FILE = 35,     // boolean: row was read from the master file
    MC_COUNT = 36,
};

// Master columns written to the file: 0 to 34.
inline constexpr int master_file_columns = 35;

enum tree_col : int {
    TC_PRIMARY = 0,     // boolean: top-level row
    TC_NAME = 1,
    TC_TYPE = 2,
    TC_AUTOMATIC = 3,   // boolean
    TC_PERSISTENT = 4,  // boolean
    TC_PROMPT = 5,      // boolean
    TC_PID = 6,         // process id text, "0" when none
    TC_STATUS = 7,      // "Active" or "Not Connected"
    TC_POLLS = 8,       // int: status polls survived by the running session
    TC_COUNT = 9,
};

inline constexpr const char* status_active = "Active";
inline constexpr const char* status_not_connected = "Not Connected";
inline constexpr const char* no_process = "0";

enum class connection_type { rdp, ica, xdm, web, das, other, unknown };
connection_type parse_connection_type(const std::string& text);

// One Connection record as plain values. The text of the two boolean columns (2 and
// 35) is unused; their values are in ping_first and from_file.
struct connection_record {
    std::array<std::string, MC_COUNT> col{};
    bool ping_first = false;
    bool from_file = false;

    const std::string& operator[](int column) const { return col[column]; }
    std::string& operator[](int column) { return col[column]; }
};

// One user tree row as plain values.
struct tree_row {
    bool primary = true;
    std::string name;
    std::string type;
    bool automatic = false;
    bool persistent = false;
    bool prompt = false;
    std::string pid = no_process;
    std::string status = status_not_connected;
    int polls = 0;
};

GtkListStore* create_master_store();
GtkTreeStore* create_user_tree_store();

connection_record read_master_row(GtkTreeModel* model, GtkTreeIter* iter);
void write_master_row(GtkListStore* store, GtkTreeIter* iter, const connection_record& record);
// Inserts a new row at position (-1 appends) with all its columns at once; empty text
// columns are left unset, which reads as "". Returns the new row.
GtkTreeIter insert_master_row(GtkListStore* store, int position, const connection_record& record);
tree_row read_tree_row(GtkTreeModel* model, GtkTreeIter* iter);
void write_tree_row(GtkTreeStore* store, GtkTreeIter* iter, const tree_row& row);

// A string column's value as a std::string ("" when unset).
std::string model_text(GtkTreeModel* model, GtkTreeIter* iter, int column);
bool model_flag(GtkTreeModel* model, GtkTreeIter* iter, int column);

// The look-up key: name, type, the found row and whether it was found.
struct locate_key {
    const char* name;
    const char* type;
    GtkTreeIter iter;
    gboolean found;
};

gboolean locate_in_list(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer key);
gboolean locate_in_tree(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter, gpointer key);
// Appends (name, type) to a user tree as a new primary row unless it is there already,
// in which case the user is told and 0 is returned.
int save_if_unique_connection(GtkTreeStore* tree, locate_key* key);

// A decimal text column read as a number (option bits, ports); text that is not a
// number counts as 0.
unsigned long decimal_column(const std::string& text);
