#include "launch/spawn.h"

#include "launch/password.h"
#include "launch_fixture.h"
#include "shell/globals.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sys/wait.h>
#include <vector>

namespace {

using lines = std::vector<std::string>;

// Every program a launch may start is played by the recording fake.
class spawn_test : public rooted_log_test {
protected:
    void SetUp() override
    {
        rooted_log_test::SetUp();
        fill_seedchars();
        make_dirs(root / "bin");
        make_dirs(root / "opt/zarvo");
        for (const char* path : {"bin/rdesktop", "bin/wfica", "bin/X", "bin/xkbcomp",
                                 "bin/firefox", "bin/ping", "opt/zarvo/marrow"})
            ASSERT_EQ(symlink(RECORD_ARGV, (root / path).c_str()), 0) << path;
        old_path = std::getenv("PATH");
        setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
        setenv("KEST_FAKE_LOG", (root / "fake.log").c_str(), 1);
        ica_dir = root / "etc/.kestrel";
        wfclient_file = root / "etc/.kestrel/wfclient.ini";
        keymap_list = make_keymap_list({{"de", "German"}});
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
    }
    void TearDown() override
    {
        setenv("PATH", old_path.c_str(), 1);
        for (const char* name : {"KEST_FAKE_LOG", "KEST_FAKE_FAIL", "KEST_FAKE_SLEEP_MS", "KEST_FAKE_FDS"})
            unsetenv(name);
        g_object_unref(master_connection_list);
        g_object_unref(current_user_connection_tree);
        g_object_unref(keymap_list);
        master_connection_list = nullptr;
        current_user_connection_tree = nullptr;
        keymap_list = nullptr;
        rooted_log_test::TearDown();
    }

    GtkTreeModel* tree() const { return GTK_TREE_MODEL(current_user_connection_tree); }

    GtkTreeIter add_row(const std::string& name, const std::string& type)
    {
        tree_row row;
        row.name = name;
        row.type = type;
        GtkTreeIter iter;
        gtk_tree_store_append(current_user_connection_tree, &iter, nullptr);
        write_tree_row(current_user_connection_tree, &iter, row);
        return iter;
    }

    GtkTreeIter add_connection(const connection_record& record)
    {
        insert_master_row(master_connection_list, -1, record);
        return add_row(record[MC_NAME], record[MC_TYPE]);
    }

    // Starts the row and returns its child's exit status (-1 when it did not exit), after
    // checking that the row names the child. A child that ends before spawn_connection
    // looks is reaped there and its status lost: the launch is then made again, with the
    // fake's log and the program's log put back as they were.
    int launch_and_wait(GtkTreeIter* iter)
    {
        const std::string log = root / "tmp/zarvoca.log";
        const off_t log_size = static_cast<off_t>(log_text().size());
        for (int attempt = 0; attempt < 50; ++attempt) {
            std::remove((root / "fake.log").c_str());
            EXPECT_EQ(truncate(log.c_str(), log_size), 0);
            gtk_tree_store_set(current_user_connection_tree, iter, TC_PID, "0", TC_STATUS,
                               "Not Connected", TC_POLLS, 3, -1);
            if (spawn_connection(tree(), iter) == 0)
                continue;
            int status = 0;
            const pid_t pid = waitpid(-1, &status, 0);
            const tree_row row = read_tree_row(tree(), iter);
            EXPECT_EQ(row.status, "Active");
            EXPECT_EQ(row.polls, 0);
            EXPECT_EQ(row.pid.size(), 5u) << row.pid;
            EXPECT_EQ(std::atoi(row.pid.c_str()), pid % 100000) << row.pid;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        ADD_FAILURE() << "every child ended before spawn_connection returned";
        return -1;
    }

    lines fake_lines() const
    {
        lines all;
        std::ifstream in(root / "fake.log");
        for (std::string line; std::getline(in, line);)
            all.push_back(line);
        return all;
    }

    std::string old_path;
};

TEST_F(spawn_test, each_type_starts_its_program)
{
    const std::string ica = "wfica|wfica|-file|" + root / "etc/.kestrel/appsrv.ini" +
                            "|-clientfile|" + root / "etc/.kestrel/wfclient.ini" + "|-desc|";
    const struct {
        connection_record record;
        int status;
        lines expected;
    } cases[] = {
        {make_record("Office", "RDP",
                     {{MC_PING_PORT, "0"}, {MC_SERVER, "ts:3390"}, {MC_USERNAME, "ann"},
                      {MC_PASSWORD, "t`kber"}, {MC_RDP_FLAGS, "16384"},
                      {MC_RDP_EXTRA_OPTIONS, "-T 'My desk'"}},
                     true),
         69, {"ping|ping|-c|1|-q|ts", "rdesktop|rdesktop|-uann|-psecret|-T|My desk|ts:3390"}},
        {make_record("Citrix", "ICA",
                     {{MC_PING_PORT, "0"}, {MC_SERVER, "app"}, {MC_ICA_LOCATION, "farm1"}}, true),
         0, {"ping|ping|-c|1|-1|farm1", ica + "Citrix"}},
        {make_record("Lab", "XDM",
                     {{MC_SERVER, "xhost"}, {MC_XDM_MODE, "Query"}, {MC_XDM_VT, "7"},
                      {MC_XDM_DISPLAY, "0"}, {MC_KEYBOARD, "German"}}),
         0,
         {"xkbcomp|xkbcomp|-xkm|-m|de|" + root / "etc/X11/xkb/keymap/xfree86" + "|-o|" +
              root / "tmp/tmp.xkm",
          "X|X|:0|vt7|+kb|-xkbmap|tmp.xkm|-query|xhost"}},
        {make_record("Intranet", "Web", {{MC_SERVER, "http://intra/start"}}), 0,
         {"firefox|firefox|http://intra/start"}},
        // Started without any argument, the kernel gives it one empty argv[0].
        {make_record("Marrow", "DAS", {{MC_SERVER, "das"}}), 0, {"marrow|"}},
        {make_record("Browser", "Other", {{MC_PROGRAM, "firefox -new-window 'a b' \"c\""}}),
         69, {"firefox|firefox|-new-window|a b|c"}},
    };
    for (const auto& c : cases) {
        GtkTreeIter iter = add_connection(c.record);
        EXPECT_EQ(launch_and_wait(&iter), c.status) << c.record[MC_NAME];
        EXPECT_EQ(fake_lines(), c.expected) << c.record[MC_NAME];
    }
    EXPECT_EQ(log_text(), "");
}

TEST_F(spawn_test, failed_reachability_check_starts_nothing)
{
    const local_port closed(false);
    const std::string port = closed.port();
    const std::string url = "http://127.0.0.1:" + port + "/x";
    setenv("KEST_FAKE_FAIL", "ping", 1);
    const struct {
        connection_record record;
        lines expected;
        std::string log;
    } cases[] = {
        {make_record("Office", "RDP", {{MC_PING_PORT, "0"}, {MC_SERVER, "ts"}}, true),
         {"ping|ping|-c|1|-q|ts"}, "Ping exit code 100\n"},
        {make_record("Intranet", "Web", {{MC_PING_PORT, port.c_str()}, {MC_SERVER, url.c_str()}}, true),
         {},
         "Connection to server 127.0.0.1 failed with error Connection refused (6f).\n"
         "Ping exit code 6f\n"},
    };
    for (const auto& c : cases) {
        const size_t before = log_text().size();
        GtkTreeIter iter = add_connection(c.record);
        EXPECT_EQ(launch_and_wait(&iter), 69) << c.record[MC_NAME];
        EXPECT_EQ(fake_lines(), c.expected) << c.record[MC_NAME];
        EXPECT_EQ(log_text().substr(before), c.log) << c.record[MC_NAME];
    }
}

// 189: no master row of exactly this name and type; 69: the session program cannot start.
TEST_F(spawn_test, launch_without_a_session_ends_with_its_status)
{
    for (const char* path : {"bin/wfica", "bin/rdesktop", "opt/zarvo/marrow"})
        unlink((root / path).c_str());
    setenv("PATH", (root / "bin").c_str(), 1);
    for (const char* type : {"RDP", "ICA", "DAS", "Telnet"})
        insert_master_row(master_connection_list, -1, make_record("Office", type, {{MC_SERVER, "ts"}}));
    const struct {
        const char* name;
        const char* type;
        int status;
    } cases[] = {{"office", "RDP", 189}, {"Office ", "RDP", 189}, {"Office", "Web", 189},
                 {"Office", "RDP", 69},  {"Office", "ICA", 69},   {"Office", "DAS", 69},
                 {"Office", "Telnet", 69}};
    for (const auto& c : cases) {
        GtkTreeIter iter = add_row(c.name, c.type);
        EXPECT_EQ(launch_and_wait(&iter), c.status) << c.name << "/" << c.type;
        EXPECT_EQ(fake_lines(), lines{});
    }
}

TEST_F(spawn_test, active_row_is_not_started_again)
{
    GtkTreeIter iter = add_connection(make_record("Office", "RDP", {{MC_SERVER, "ts"}}));
    gtk_tree_store_set(current_user_connection_tree, &iter, TC_PID, "01234", TC_STATUS, "Active",
                       TC_POLLS, 7, -1);
    EXPECT_EQ(spawn_connection(tree(), &iter), 0);
    const tree_row row = read_tree_row(tree(), &iter);
    EXPECT_EQ(row.pid, "01234");
    EXPECT_EQ(row.polls, 7);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(spawn_test, session_programs_inherit_only_what_is_not_close_on_exec)
{
    const int leak = open((root / "leak").c_str(), O_WRONLY | O_CREAT, 0600);
    setenv("KEST_FAKE_FDS", "1", 1);
    GtkTreeIter iter = add_connection(make_record("Intranet", "Web", {{MC_SERVER, "intra"}}));
    EXPECT_EQ(launch_and_wait(&iter), 0);
    close(leak);
    const lines fds = fake_lines();
    ASSERT_EQ(fds.size(), 2u);
    EXPECT_NE(fds[0].find(root / "leak"), std::string::npos) << fds[0];
    EXPECT_EQ(fds[0].find("zarvoca.log"), std::string::npos) << fds[0];
}

int signal_pipe[2];

void write_to_pipe(int) { (void)!write(signal_pipe[1], "x", 1); }

// The program's handler only writes to a pipe its main loop reads; a child running it would
// make the parent exit. The waiting RDP child takes the default action instead, and the
// parent's own mask is left as it was.
TEST_F(spawn_test, termination_signal_ends_a_waiting_child_by_default)
{
    ASSERT_EQ(pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK), 0);
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = write_to_pipe;
    sigaction(SIGTERM, &action, &previous);
    setenv("KEST_FAKE_SLEEP_MS", "2000", 1);

    GtkTreeIter iter = add_connection(make_record("Office", "RDP", {{MC_SERVER, "ts"}}));
    spawn_connection(tree(), &iter);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_FALSE(sigismember(&mask, SIGTERM));
    for (int i = 0; i < 200 && fake_lines().empty(); ++i)
        usleep(10 * 1000);
    const pid_t child = session_process_id(std::atoi(read_tree_row(tree(), &iter).pid.c_str()));
    siginfo_t info{};
    // Only a child of ours is signalled: the row keeps just the last five digits.
    ASSERT_EQ(waitid(P_PID, child, &info, WEXITED | WNOHANG | WNOWAIT), 0);
    int status = 0;
    ASSERT_EQ(kill(child, SIGTERM), 0);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    char byte;
    EXPECT_EQ(read(signal_pipe[0], &byte, 1), -1);

    sigaction(SIGTERM, &previous, nullptr);
    close(signal_pipe[0]);
    close(signal_pipe[1]);
}

}  // namespace
