#pragma once
// The periodic poll of running sessions: reaps ended ones, restarts persistent ones and
// fails over from a primary connection to its secondaries.
#include <gtk/gtk.h>

// The 3000 ms timer callback; data is the user connection tree. Always TRUE.
gboolean update_status(gpointer data);
// The per-row step of update_status; always FALSE so that the walk goes on.
gboolean check_connection_status(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                                 gpointer data);
// TRUE when any row, primary or secondary, has a running session.
gboolean active_connections(GtkTreeModel* model);
