#include "shell/status_monitor.h"

#include "launch/command_line.h"
#include "launch/spawn.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
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

// Real child processes stand for sessions: idle (no process), running, ended (left
// unreaped: the poll is what reaps it), not ours (process 1) and the id "00000".
enum class session { idle, running, ended, not_ours, zero_id };

class status_poll : public ::testing::Test {
protected:
    ~status_poll() override
    {
        for (pid_t pid : sleepers)
            kill(pid, SIGKILL);
        while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
        }
        g_object_unref(tree);
    }

    pid_t child(session state)
    {
        const pid_t pid = fork();
        if (pid == 0)
            _exit(state == session::running ? pause() : 0);
        siginfo_t info;
        state == session::running ? sleepers.push_back(pid) : (void)waitid(P_PID, pid, &info, WEXITED | WNOWAIT);
        return pid;
    }

    // Persistent primary rows without Prompt.
    void add(const char* name, session state, int polls)
    {
        const std::string pid = state == session::idle       ? no_process
                                : state == session::not_ours ? "1"
                                : state == session::zero_id  ? "00000"
                                                             : std::to_string(child(state));
        GtkTreeIter iter;
        gtk_tree_store_append(tree, &iter, nullptr);
        write_tree_row(tree, &iter, {true, name, "Other", false, true, false, pid,
                                     state == session::idle ? status_not_connected : status_active, polls});
    }

    GtkTreeStore* tree = create_user_tree_store();
    std::vector<pid_t> sleepers;
    message_recorder messages;
};

// The poll counts the survivors, finds sessions past idle rows, and an id of zero reaps no
// other child of ours. Which row restarts is the table's above; restarts are seen end to
// end in tests/e2e/connect.sh.
TEST_F(status_poll, counts_running_sessions_and_reaps_only_its_own)
{
    using enum session;
    add("idle", idle, 0);
    EXPECT_FALSE(active_connections(GTK_TREE_MODEL(tree)));
    add("run", running, 4);
    add("foreign", not_ours, 3);
    add("zero", zero_id, 0);
    const pid_t other = child(ended);
    EXPECT_TRUE(update_status(tree));
    EXPECT_TRUE(active_connections(GTK_TREE_MODEL(tree)));
    EXPECT_EQ(dump_model(GTK_TREE_MODEL(tree), {TC_NAME, TC_STATUS, TC_POLLS}),
              "idle|Not Connected|0\nrun|Active|5\nforeign|Active|0\nzero|Active|0\n");
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, other, &info, WEXITED | WNOHANG), 0);
    EXPECT_EQ(info.si_pid, other) << "still ours to reap";
    EXPECT_EQ(messages.prompts, 0);
}

}  // namespace
