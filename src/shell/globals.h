#pragma once
// The shell's process-wide state, set once by start-up and living for the whole run.
// The connection models belong to store/, seedchars to store/password.h, the Citrix
// paths to store/ica_paths.h, tmp_dir to platform/tmp_files.h and the editors' scratch
// record to editors/.
#include <gtk/gtk.h>
#include <string>

extern int shell_mode;       // options file: this program is the thin client's shell
extern int wizard_mode;      // declared flag only; nothing sets or reads it
extern int das;              // the maker's DAS client is installed
extern int firefox;          // Firefox is installed
extern int user_has_root;    // member of "root" or primary group 0: administration rights
extern int allow_reboot;     // may reboot the machine from the End Session dialog
extern int allow_turnoff;    // may power the machine off from the End Session dialog
extern int dialog_up;        // a reconnect prompt was shown during the current status poll
extern int debian;           // /etc/debian_version exists
extern int use_instance_file;  // /bin/busybox exists: the instance guard uses a file

// Path globals hold resolved paths (root_path applied), so they can be used as they are.
extern std::string instance_file;          // tmp_dir + "/running"
extern std::string current_user_name;      // the running user's login name
extern std::string selected_user_name;     // the user being administered

extern GtkWidget** misc_widgets;    // three references; element 0 is the window editors hide

extern GtkWidget* root_window;      // the main window
// The two shared dialogs and their texts are null until first shown.
extern GtkWidget* error_dialog;     // the shared error dialog
extern GtkWidget* error_label;      // its text
extern GtkWidget* reconnect_dialog; // the prompt before an automatic or persistent start
extern GtkWidget* reconnect_label;  // its text
