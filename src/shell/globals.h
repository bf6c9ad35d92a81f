#pragma once
// Process-wide state, set once by start-up and living for the whole run.
#include <gtk/gtk.h>
#include <string>

extern int show_gui;         // master list header: show the main window to non-administrators
extern int shell_mode;       // options file: this program is the thin client's shell
extern int show_taskbar;     // options file: the window manager's taskbar is shown
extern int kiosk_mode;       // options file: the web browser runs as a kiosk
extern int wizard_mode;      // declared flag only; nothing sets or reads it
extern int das;              // the maker's DAS client is installed
extern int firefox;          // Firefox is installed
extern int user_has_root;    // member of "root" or primary group 0: administration rights
extern int allow_reboot;     // may reboot the machine from the End Session dialog
extern int allow_turnoff;    // may power the machine off from the End Session dialog
extern int dialog_up;        // a reconnect prompt was shown during the current status poll
extern int debian;           // /etc/debian_version exists
extern int use_instance_file;  // /bin/busybox exists: the instance guard uses a file

extern std::string instance_file;     // tmp_dir + "/running"
extern std::string tmp_dir;           // support directory, "/tmp/.kestrel"
extern std::string ica_dir;           // Citrix files, "/etc/.kestrel"
extern std::string wfclient_file;     // ica_dir + "/wfclient.ini"
extern std::string ica_root;          // the Citrix client's installation directory
extern std::string x_setup_file;      // the display manager's Xsetup, "" when none
extern std::string x_config_file;     // the X server's configuration file, "" when none
extern std::string current_user_name;      // the running user's login name
extern std::string selected_user_name;     // the user being administered
extern std::string current_user_filename;  // the running user's kestrel.inf
extern std::string home_dir;               // the toolkit's idea of the home directory

inline constexpr int connect_info_size = 128;
extern char* connect_info;            // scratch record of the connection being edited
extern GtkWidget** misc_widgets;      // three references; element 0 is root_window
extern char seedchars[64];            // the crypt(3) alphabet used by password scrambling

extern GtkListStore* master_connection_list;          // every connection, sorted by name
extern GtkTreeStore* current_user_connection_tree;    // what the main window shows and polls
extern GtkTreeStore* selected_user_connection_tree;   // the tree of the user being administered

extern GtkWidget* root_window;      // the main window
extern GtkWidget* error_dialog;     // the shared error dialog
extern GtkWidget* error_label;      // its text
extern GtkWidget* reconnect_dialog; // the prompt before an automatic or persistent start
extern GtkWidget* reconnect_label;  // its text

// Path globals hold resolved paths (root_path applied), so they can be used as they are.
