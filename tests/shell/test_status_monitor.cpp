#include "shell/status_monitor.h"

#include "launch/spawn.h"
#include "shell/globals.h"
#include "store/record.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The reconnect prompt, replaced at link level: it counts instead of showing a window.
int reconnect_prompts = 0;
int prompts_without_dialog_up = 0;
void run_reconnect_dialog()
{
    ++reconnect_prompts;
    if (!dialog_up)
        ++prompts_without_dialog_up;
}

namespace {

using target = restart_target;

TEST(restart_rules, decide_what_starts_and_whether_to_prompt)
{
    struct example {
        const char* what;
        ended_row row;
        bool dialog_shown;
        restart_decision expected;
    } table[] = {
        // polls, persistent, prompt, children, top, next sibling, parent persistent, parent prompt
        {"a: ran properly, restarted despite secondaries", {11, true, true, true, true}, false,
         {target::self, true}},
        {"a: second prompt in a poll is not shown", {11, true, true, true, true}, true,
         {target::self, false}},
        {"a applies to secondaries too", {11, true, false, false, false, true}, false,
         {target::self, false}},
        {"10 polls is not enough for a", {10, true, true, true, true}, false,
         {target::first_child, false}},
        {"b: non-persistent primary fails over, no prompt", {50, false, true, true, true}, false,
         {target::first_child, false}},
        {"c: persistent primary alone", {0, true, true, false, true}, false, {target::self, true}},
        {"c: non-persistent primary alone", {20, false, true, false, true}, false,
         {target::none, false}},
        {"d: next secondary, no prompt", {3, true, true, false, false, true, true, true}, false,
         {target::next_sibling, false}},
        {"d: last secondary, persistent parent with its prompt",
         {3, false, false, false, false, false, true, true}, false, {target::parent, true}},
        {"d: the secondary's own prompt does not count",
         {3, true, true, false, false, false, true, false}, false, {target::parent, false}},
        {"d: non-persistent parent", {3, true, true, false, false, false, false, true}, false,
         {target::none, false}},
    };
    for (const example& e : table) {
        restart_decision decision = decide_restart(e.row, e.dialog_shown);
        EXPECT_EQ(decision.target, e.expected.target) << e.what;
        EXPECT_EQ(decision.prompt, e.expected.prompt) << e.what;
    }
}

enum class session { idle, running, ended };

struct row_shape {
    const char* name;
    bool secondary;  // under the last primary before it
    bool persistent;
    bool prompt;
    session state;
    int polls;
};

// Real child processes stand for sessions; rows started by the monitor get children
// that end at once, since no connection is in the (empty) master list.
class status_poll : public ::testing::Test {
protected:
    status_poll()
    {
        master_connection_list = create_master_store();
        tree = create_user_tree_store();
        reconnect_prompts = prompts_without_dialog_up = 0;
    }

    ~status_poll() override
    {
        for (pid_t pid : sleepers)
            kill(pid, SIGKILL);
        while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
        }
        g_object_unref(tree);
        g_object_unref(master_connection_list);
        master_connection_list = nullptr;
    }

    pid_t child(session state)
    {
        const pid_t pid = fork();
        if (pid == 0) {
            if (state == session::running)
                pause();
            _exit(0);
        }
        if (state == session::running) {
            sleepers.push_back(pid);
        } else {
            // Ended but not reaped: the poll is what reaps it.
            siginfo_t info;
            waitid(P_PID, pid, &info, WEXITED | WNOWAIT);
        }
        return pid;
    }

    void build(const std::vector<row_shape>& rows)
    {
        GtkTreeIter primary, iter;
        for (const row_shape& shape : rows) {
            gtk_tree_store_append(tree, &iter, shape.secondary ? &primary : nullptr);
            if (!shape.secondary)
                primary = iter;
            tree_row row;
            row.primary = !shape.secondary;
            row.name = shape.name;
            row.type = "Other";
            row.persistent = shape.persistent;
            row.prompt = shape.prompt;
            if (shape.state != session::idle) {
                row.pid = std::to_string(child(shape.state));
                row.status = status_active;
            }
            row.polls = shape.polls;
            write_tree_row(tree, &iter, row);
        }
    }

    std::vector<tree_row> rows()
    {
        std::vector<tree_row> all;
        gtk_tree_model_foreach(
            model(),
            [](GtkTreeModel* m, GtkTreePath*, GtkTreeIter* iter, gpointer out) {
                static_cast<std::vector<tree_row>*>(out)->push_back(read_tree_row(m, iter));
                return FALSE;
            },
            &all);
        return all;
    }

    // Names of the active rows, space-separated, in tree order.
    std::string active_names()
    {
        std::string names;
        for (const tree_row& row : rows())
            if (row.status == status_active)
                names += (names.empty() ? "" : " ") + row.name;
        return names;
    }

    // Blocks until every session the poll started has ended, without reaping it.
    void wait_for_sessions_to_end()
    {
        for (const tree_row& row : rows()) {
            if (row.pid == no_process || std::ranges::count(sleepers, session_process_id(std::stoi(row.pid))))
                continue;
            siginfo_t info;
            waitid(P_PID, session_process_id(std::stoi(row.pid)), &info, WEXITED | WNOWAIT);
        }
    }

    GtkTreeModel* model() { return GTK_TREE_MODEL(tree); }

    GtkTreeStore* tree;
    std::vector<pid_t> sleepers;
};

TEST_F(status_poll, each_rule_starts_the_right_row)
{
    using enum session;
    struct example {
        const char* what;
        std::vector<row_shape> rows;
        const char* active_after;
    } table[] = {
        {"running rows stay", {{"P", false, true, false, running, 4}}, "P"},
        {"c: ended persistent primary restarts", {{"P", false, true, false, ended, 2}}, "P"},
        {"b: early end fails over",
         {{"P", false, true, false, ended, 2}, {"S1", true, true, false, idle, 0},
          {"S2", true, true, false, idle, 0}},
         "S1"},
        {"a: long run restarts the primary",
         {{"P", false, true, false, ended, 11}, {"S1", true, true, false, idle, 0}}, "P"},
        {"d: next secondary",
         {{"P", false, true, false, idle, 0}, {"S1", true, false, false, ended, 1},
          {"S2", true, false, false, idle, 0}},
         "S2"},
        {"d: last secondary restarts a persistent primary",
         {{"P", false, true, false, idle, 0}, {"S1", true, false, false, idle, 0},
          {"S2", true, false, false, ended, 1}},
         "P"},
        {"d: not a non-persistent one",
         {{"P", false, false, false, idle, 0}, {"S1", true, true, false, ended, 1}}, ""},
    };
    for (const example& e : table) {
        gtk_tree_store_clear(tree);
        build(e.rows);
        EXPECT_TRUE(update_status(tree));
        EXPECT_EQ(active_names(), e.active_after) << e.what;
        EXPECT_EQ(active_connections(model()), *e.active_after != '\0') << e.what;
        for (const tree_row& row : rows()) {
            const bool was_running = row.name == std::string("P") && e.rows[0].state == running;
            EXPECT_EQ(row.polls, was_running ? 5 : 0) << e.what << " " << row.name;
            if (row.status != status_active) {
                EXPECT_EQ(row.pid, "0") << e.what << " " << row.name;
            }
        }
        wait_for_sessions_to_end();
    }
    EXPECT_EQ(reconnect_prompts, 0);
}

TEST_F(status_poll, one_prompt_per_poll_and_none_before_a_failover)
{
    build({{"A", false, true, true, session::ended, 0},
           {"B", false, true, true, session::ended, 0},
           {"C", false, false, true, session::ended, 0},
           {"S", true, true, true, session::idle, 0}});
    update_status(tree);
    EXPECT_EQ(active_names(), "A B S");
    EXPECT_EQ(reconnect_prompts, 1);
    EXPECT_EQ(prompts_without_dialog_up, 0);

    // The next poll may prompt again; the failed-over secondary restarts without one.
    wait_for_sessions_to_end();
    update_status(tree);
    EXPECT_EQ(reconnect_prompts, 2);
}

TEST_F(status_poll, an_id_that_is_not_our_child_counts_as_ended)
{
    build({{"init", false, true, false, session::idle, 0},
           {"zero", false, true, false, session::idle, 0},
           {"idle", false, true, false, session::idle, 0}});
    GtkTreeIter iter;
    gtk_tree_model_get_iter_first(model(), &iter);
    gtk_tree_store_set(tree, &iter, TC_PID, "1", TC_STATUS, "Active", TC_POLLS, 3, -1);
    gtk_tree_model_iter_next(model(), &iter);
    // An id of 0 must not make the poll reap some other child of ours.
    gtk_tree_store_set(tree, &iter, TC_PID, "00000", TC_STATUS, "Active", -1);
    const pid_t other = child(session::ended);
    EXPECT_TRUE(active_connections(model()));

    update_status(tree);
    EXPECT_EQ(active_names(), "init zero");
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, other, &info, WEXITED | WNOHANG), 0);
    EXPECT_EQ(info.si_pid, other) << "still ours to reap";
}

int children_of_this_process()
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream stat(entry.path() / "stat");
        std::string text;
        std::getline(stat, text);
        const size_t end_of_name = text.rfind(')');
        if (end_of_name == std::string::npos)
            continue;
        char state;
        int parent = 0;
        if (std::sscanf(text.c_str() + end_of_name + 1, " %c %d", &state, &parent) == 2 &&
            parent == getpid())
            ++count;
    }
    return count;
}

TEST_F(status_poll, sessions_that_end_at_once_start_once_per_poll_and_nothing_piles_up)
{
    build({{"solo", false, true, false, session::ended, 0},
           {"P", false, true, false, session::ended, 0},
           {"S1", true, false, false, session::idle, 0},
           {"S2", true, false, false, session::idle, 0}});
    const char* chain[] = {"S1", "S2", "P"};
    for (int poll = 0; poll < 100; ++poll) {
        update_status(tree);
        ASSERT_EQ(active_names(), std::string("solo ") + chain[poll % 3]) << "poll " << poll;
        ASSERT_LE(children_of_this_process(), 2) << "poll " << poll;
        wait_for_sessions_to_end();
    }
    EXPECT_EQ(rows().size(), 4u);
}

}  // namespace
