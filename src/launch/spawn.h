#pragma once
// Starting a connection of the user's tree: fork at once, do the slow work (look-up,
// reachability, command line, exec) in the child, record the child in the row.
#include <gtk/gtk.h>
#include <sys/types.h>

// Child exit statuses: the connection is no longer in the master list; the session
// program could not be started, has ended, or the server did not answer.
inline constexpr int exit_connection_gone = 189;
inline constexpr int exit_session_over = 69;

// model is the user connection tree (a GtkTreeStore), iter a primary or secondary row.
// Marks the row "Active" with the child's process id. Returns 0 when the row was
// already active (nothing is started), -1 when fork failed or the child still runs.
int spawn_connection(GtkTreeModel* model, GtkTreeIter* iter);

// The full process id of the running session child whose id ends in the five digits
// kept in the tree; the digits themselves when no such child is known.
pid_t session_process_id(int pid_digits);
// Forgets a session child that has been reaped.
void forget_session(pid_t pid);
