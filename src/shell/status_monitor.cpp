#include "shell/status_monitor.h"

#include "launch/spawn.h"
#include "platform/message.h"
#include "shell/globals.h"
#include "store/models.h"
#include "store/record.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

// Rows started during the current poll. The walk passes over them: a session that ends
// at once is then started again at the next poll, not over and over within this one,
// and a failover chain moves one step per poll.
struct poll_state {
    std::vector<std::string> started;
};

std::string path_text(GtkTreePath* path)
{
    gchar* text = gtk_tree_path_to_string(path);
    std::string result = text;
    g_free(text);
    return result;
}

bool started_in_this_poll(const poll_state* poll, GtkTreePath* path)
{
    if (!poll || poll->started.empty())
        return false;
    return std::ranges::find(poll->started, path_text(path)) != poll->started.end();
}

void remember_started(poll_state* poll, GtkTreeModel* model, GtkTreeIter* iter)
{
    if (!poll)
        return;
    GtkTreePath* path = gtk_tree_model_get_path(model, iter);
    poll->started.push_back(path_text(path));
    gtk_tree_path_free(path);
}

// A text that is not a positive number names no child of ours: waiting for 0 or a
// negative id would reap any child or a whole process group, so it counts as ended,
// as does an id waitpid cannot wait for.
bool session_running(const std::string& pid_text)
{
    int pid = 0;
    const char* first = pid_text.data();
    auto [rest, error] = std::from_chars(first, first + pid_text.size(), pid);
    if (error != std::errc() || pid <= 0)
        return false;
    const pid_t child = session_process_id(pid);
    if (waitpid(child, nullptr, WNOHANG) == 0)
        return true;
    forget_session(child);
    return false;
}

ended_row describe_ended_row(GtkTreeModel* model, GtkTreeIter* iter, int polls)
{
    ended_row row;
    row.polls = polls;
    row.persistent = model_flag(model, iter, TC_PERSISTENT);
    row.prompt = model_flag(model, iter, TC_PROMPT);
    row.has_children = gtk_tree_model_iter_has_child(model, iter);
    GtkTreeIter parent;
    row.top_level = !gtk_tree_model_iter_parent(model, &parent, iter);
    if (!row.top_level) {
        row.parent_persistent = model_flag(model, &parent, TC_PERSISTENT);
        row.parent_prompt = model_flag(model, &parent, TC_PROMPT);
    }
    GtkTreeIter next = *iter;
    row.has_next_sibling = gtk_tree_model_iter_next(model, &next);
    return row;
}

restart_target choose_target(const ended_row& row)
{
    // Checked first for every row: a persistent primary that ran properly is
    // restarted even when it has secondaries.
    if (row.polls > polls_for_proper_run && row.persistent)
        return restart_target::self;
    if (row.has_children)
        return restart_target::first_child;
    if (row.top_level)
        return row.persistent ? restart_target::self : restart_target::none;
    if (row.has_next_sibling)
        return restart_target::next_sibling;
    return row.parent_persistent ? restart_target::parent : restart_target::none;
}

bool find_target(GtkTreeModel* model, GtkTreeIter* iter, restart_target target, GtkTreeIter* found)
{
    switch (target) {
    case restart_target::none:
        return false;
    case restart_target::self:
        *found = *iter;
        return true;
    case restart_target::first_child:
        return gtk_tree_model_iter_children(model, found, iter);
    case restart_target::next_sibling:
        *found = *iter;
        return gtk_tree_model_iter_next(model, found);
    case restart_target::parent:
        return gtk_tree_model_iter_parent(model, found, iter);
    }
    return false;
}

void mark_not_connected(GtkTreeModel* model, GtkTreeIter* iter)
{
    gtk_tree_store_set(GTK_TREE_STORE(model), iter, TC_PID, no_process, TC_STATUS,
                       status_not_connected, TC_POLLS, 0, -1);
}

void restart_after_end(GtkTreeModel* model, GtkTreeIter* iter, int polls, poll_state* poll)
{
    const ended_row row = describe_ended_row(model, iter, polls);
    const restart_decision decision = decide_restart(row, dialog_up);
    GtkTreeIter target;
    if (!find_target(model, iter, decision.target, &target))
        return;
    if (decision.prompt) {
        dialog_up = 1;
        run_reconnect_dialog();
    }
    spawn_connection(model, &target);
    remember_started(poll, model, &target);
}

}  // namespace

restart_decision decide_restart(const ended_row& row, bool dialog_shown)
{
    const restart_target target = choose_target(row);
    // Only a restart is announced; a failover to a secondary starts without a prompt.
    const bool wants_prompt = (target == restart_target::self && row.prompt) ||
                              (target == restart_target::parent && row.parent_prompt);
    return {target, wants_prompt && !dialog_shown};
}

gboolean update_status(gpointer data)
{
    dialog_up = 0;
    poll_state poll;
    gtk_tree_model_foreach(GTK_TREE_MODEL(data), check_connection_status, &poll);
    return TRUE;
}

gboolean check_connection_status(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                                 gpointer data)
{
    auto* poll = static_cast<poll_state*>(data);
    const std::string pid = model_text(model, iter, TC_PID);
    if (pid == no_process || started_in_this_poll(poll, path))
        return FALSE;
    gint polls = 0;
    gtk_tree_model_get(model, iter, TC_POLLS, &polls, -1);
    if (session_running(pid)) {
        gtk_tree_store_set(GTK_TREE_STORE(model), iter, TC_POLLS, polls + 1, -1);
        return FALSE;
    }
    mark_not_connected(model, iter);
    restart_after_end(model, iter, polls, poll);
    return FALSE;
}
