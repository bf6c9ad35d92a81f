#pragma once
// Start-up: who the user is and may do, the instance guard, the log, the support
// directories, the environment, the connection models, the main window, the
// automatic connections and the status timer; then the main loop.
#include <gtk/gtk.h>
#include <string>
#include <sys/types.h>

struct user_rights {
    bool root = false;     // administration
    bool turnoff = false;  // may power off
    bool reboot = false;   // may reboot
};
// Rights from the explicit member lists of "root", "shutdown", "turnoff" and "reboot",
// and from a primary group of 0.
user_rights rights_of(const std::string& user, gid_t primary_group);

// Where the Citrix client, Firefox and the DAS client are (ica_root, firefox, das).
void find_citrix_client();
void find_programs();

// Starts the top-level rows flagged Automatic, in order, with at most one reconnect
// prompt before the first. Returns the number of connections started.
int start_automatic_connections(GtkTreeStore* tree);

// The whole start-up and the main loop; returns the process's exit status. The
// administration window lives above the shell: its opener comes from main.
int kestrelle_main(int argc, char** argv, GCallback advanced_dialog);
