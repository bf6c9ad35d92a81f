#pragma once
// The periodic poll of running sessions: reaps ended ones, restarts persistent ones and
// fails over from a primary connection to its secondaries.
#include <gtk/gtk.h>

// The 3000 ms timer callback; data is the user connection tree. Always TRUE.
gboolean update_status(gpointer data);
// The per-row step of update_status; always FALSE so that the walk goes on. data is
// null, or update_status's record of the rows it started, which the walk passes over.
gboolean check_connection_status(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                                 gpointer data);

// What a row whose session has ended looks like to the restart rules.
struct ended_row {
    int polls = 0;              // polls the session survived, read before the reset
    bool persistent = false;
    bool prompt = false;
    bool has_children = false;  // a primary with secondaries
    bool top_level = false;
    bool has_next_sibling = false;
    bool parent_persistent = false;
    bool parent_prompt = false;
};

enum class restart_target {
    none,
    self,          // restart the row that ended
    first_child,   // fail over to the first secondary
    next_sibling,  // fail over to the next secondary
    parent,        // the last secondary ended: restart its primary
};

struct restart_decision {
    restart_target target = restart_target::none;
    bool prompt = false;  // show the reconnect prompt before starting
};

// Polls a session must survive to count as having run properly (more than 30 s).
inline constexpr int polls_for_proper_run = 10;

// The restart rules for one ended row. dialog_shown: a prompt was already shown in
// this poll, so no second one is.
restart_decision decide_restart(const ended_row& row, bool dialog_shown);
