#include "shell/status_monitor.h"

#include "store/models.h"
#include "store/record.h"
#include "support/test_support.h"

namespace {

using target = restart_target;

// Row fields: polls, persistent, prompt, children, top, next sibling, parent persistent,
// parent prompt.
TEST(restart_rules, decide_what_starts_and_whether_to_prompt)
{
    struct example { const char* what; ended_row row; bool dialog_shown; restart_decision expected; } table[] = {
        {"a", {11, true, true, true, true}, false, {target::self, true}},
        {"a: prompt already shown", {11, true, true, true, true}, true, {target::self, false}},
        {"a: a secondary", {11, true, false, false, false, true}, false, {target::self, false}},
        {"a: 10 polls", {10, true, true, true, true}, false, {target::first_child, false}},
        {"b", {50, false, true, true, true}, false, {target::first_child, false}},
        {"c", {0, true, true, false, true}, false, {target::self, true}},
        {"c: not persistent", {20, false, true, false, true}, false, {target::none, false}},
        {"d: next", {3, true, true, false, false, true, true, true}, false, {target::next_sibling}},
        {"d: last", {3, false, false, false, false, false, true, true}, false,
         {target::parent, true}},
        {"d: own prompt", {3, true, true, false, false, false, true}, false, {target::parent}},
        {"d: parent not persistent", {3, true, true, false, false, false, false, true}, false, {}},
    };
    for (const example& e : table) {
        const restart_decision decision = decide_restart(e.row, e.dialog_shown);
        EXPECT_EQ(decision.target, e.expected.target) << e.what;
        EXPECT_EQ(decision.prompt, e.expected.prompt) << e.what;
    }
}

// A child that waits for a signal, or one that has ended and is left unreaped: the poll
// is what reaps it.
pid_t child(bool running)
{
    const pid_t pid = fork();
    if (pid == 0)
        _exit(running ? pause() : 0);
    siginfo_t info;
    if (!running)
        waitid(P_PID, pid, &info, WEXITED | WNOWAIT);
    return pid;
}

// The poll counts the survivors, finds sessions past idle rows, takes a session that is
// not ours (process 1) for running, and an id of "00000" reaps no other child of ours.
// Which row restarts is the table's above.
TEST(status_poll, counts_running_sessions_and_reaps_only_its_own)
{
    message_recorder messages;
    GtkTreeStore* tree = create_user_tree_store();
    const pid_t running = child(true);
    const auto add = [&](const char* name, const std::string& pid, int polls) {  // persistent, no Prompt
        GtkTreeIter iter;
        gtk_tree_store_append(tree, &iter, nullptr);
        const char* status = pid == no_process ? status_not_connected : status_active;
        write_tree_row(tree, &iter, {true, name, "Other", false, true, false, pid, status, polls});
    };
    add("idle", no_process, 0);
    EXPECT_FALSE(active_connections(GTK_TREE_MODEL(tree)));
    add("run", std::to_string(running), 4);
    add("foreign", "1", 3);
    add("zero", "00000", 0);
    const pid_t ended = child(false);
    EXPECT_TRUE(update_status(tree));
    EXPECT_TRUE(active_connections(GTK_TREE_MODEL(tree)));
    EXPECT_EQ(dump_model(GTK_TREE_MODEL(tree), {TC_NAME, TC_STATUS, TC_POLLS}),
              "idle|Not Connected|0\nrun|Active|5\nforeign|Active|0\nzero|Active|0\n");
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, ended, &info, WEXITED | WNOHANG), 0);
    EXPECT_EQ(info.si_pid, ended) << "still ours to reap";
    EXPECT_EQ(messages.prompts, 0);
    kill(running, SIGKILL);
    waitpid(running, nullptr, 0);
    g_object_unref(tree);
}

}  // namespace
