#include "launch/spawn.h"

#include "launch/password.h"
#include "launch_fixture.h"
#include "ica/paths.h"
#include "launch/command_line.h"
#include "shell/globals.h"
#include "store/models.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>

namespace {

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
        setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
        setenv("KEST_FAKE_LOG", (root / "fake.log").c_str(), 1);
        ica_dir = root / "etc/.kestrel";
        wfclient_file = root / "etc/.kestrel/wfclient.ini";
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
    }
    void TearDown() override
    {
        setenv("PATH", old_path.c_str(), 1);
        for (const char* name : {"LOG", "FAIL", "SLEEP_MS", "FDS"})
            unsetenv(("KEST_FAKE_" + std::string(name)).c_str());
        g_clear_object(&master_connection_list);
        g_clear_object(&current_user_connection_tree);
        rooted_log_test::TearDown();
    }

    GtkTreeModel* tree() const { return GTK_TREE_MODEL(current_user_connection_tree); }
    std::string fake_log() const { return read_file_text(root / "fake.log"); }

    GtkTreeIter add_row(const std::string& name, const std::string& type)
    {
        GtkTreeIter iter;
        gtk_tree_store_insert_with_values(current_user_connection_tree, &iter, nullptr, -1, TC_NAME,
                                          name.c_str(), TC_TYPE, type.c_str(), -1);
        return iter;
    }
    GtkTreeIter add_connection(const connection_record& record)
    {
        insert_master_row(master_connection_list, -1, record);
        return add_row(record[MC_NAME], record[MC_TYPE]);
    }

    // Starts the row and returns its child's exit status (-1: it did not exit), after checking
    // that the row names the child. A child that ends before spawn_connection looks is reaped
    // there, its status lost: the launch is then made again, both logs put back as they were.
    int launch_and_wait(GtkTreeIter* iter)
    {
        const off_t log_size = static_cast<off_t>(log_text().size());
        for (int attempt = 0; attempt < 50; ++attempt) {
            std::remove((root / "fake.log").c_str());
            EXPECT_EQ(truncate((root / "tmp/zarvoca.log").c_str(), log_size), 0);
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

    std::string old_path = std::getenv("PATH");
};

TEST_F(spawn_test, each_type_starts_its_program_after_its_check)
{
    const local_port open(true), closed(false);
    const std::string up = "http://127.0.0.1:" + std::string(open.port()) + "/x";
    const std::string down = "http://127.0.0.1:" + std::string(closed.port()) + "/x";
    const std::string r = root.path();
    const struct { connection_record record; int status; std::string programs, log; } cases[] = {
        {make_record("Office", "RDP",
                     {{MC_PING_PORT, "0"}, {MC_SERVER, "ts:3390"}, {MC_USERNAME, "ann"},
                      {MC_PASSWORD, "t`kber"}, {MC_RDP_FLAGS, "16384"},
                      {MC_RDP_EXTRA_OPTIONS, "-T 'My desk'"}},
                     true),
         69, "ping|ping|-c|1|-q|ts\nrdesktop|rdesktop|-uann|-psecret|-T|My desk|ts:3390\n", ""},
        {make_record("Citrix", "ICA",
                     {{MC_PING_PORT, "0"}, {MC_SERVER, "app"}, {MC_ICA_LOCATION, "farm1"}}, true),
         0,
         "ping|ping|-c|1|-1|farm1\nwfica|wfica|-file|" + r + "/etc/.kestrel/appsrv.ini|" +
             "-clientfile|" + r + "/etc/.kestrel/wfclient.ini|-desc|Citrix\n",
         ""},
        {make_record("Lab", "XDM",
                     {{MC_SERVER, "xhost"}, {MC_XDM_MODE, "Query"}, {MC_XDM_VT, "7"},
                      {MC_XDM_DISPLAY, "0"}, {MC_KEYBOARD, "de"}}),
         0,
         "xkbcomp|xkbcomp|-xkm|-m|de|" + r + "/etc/X11/xkb/keymap/xfree86|-o|" + r +
             "/tmp/tmp.xkm\nX|X|:0|vt7|+kb|-xkbmap|tmp.xkm|-query|xhost\n",
         ""},
        // Started without any argument, the kernel gives it one empty argv[0].
        {make_record("Marrow", "DAS", {{MC_SERVER, "das"}}), 0, "marrow|\n", ""},
        {make_record("Browser", "Other", {{MC_PROGRAM, "firefox -new-window 'a b' \"c\""}}), 69,
         "firefox|firefox|-new-window|a b|c\n", ""},
        {make_record("Up", "Web", {{MC_PING_PORT, open.port()}, {MC_SERVER, up.c_str()}}, true),
         0, "firefox|firefox|" + up + "\n", ""},
        {make_record("Down", "Web", {{MC_PING_PORT, closed.port()}, {MC_SERVER, down.c_str()}},
                     true),
         69, "",
         "Connection to server 127.0.0.1 failed with error Connection refused (6f).\n"
         "Ping exit code 6f\n"},
    };
    for (const auto& c : cases) {
        const size_t before = log_text().size();
        GtkTreeIter iter = add_connection(c.record);
        EXPECT_EQ(launch_and_wait(&iter), c.status) << c.record[MC_NAME];
        EXPECT_EQ(fake_log(), c.programs) << c.record[MC_NAME];
        EXPECT_EQ(log_text().substr(before), c.log) << c.record[MC_NAME];
    }
}

// 189: no master row of exactly this name and type; 69: no session program started.
TEST_F(spawn_test, launch_without_a_session_ends_with_its_status)
{
    for (const char* path : {"bin/wfica", "opt/zarvo/marrow"})
        unlink((root / path).c_str());
    setenv("PATH", (root / "bin").c_str(), 1);
    setenv("KEST_FAKE_FAIL", "ping", 1);
    for (const char* type : {"ICA", "DAS", "Telnet"})
        add_connection(make_record("Office", type, {{MC_SERVER, "ts"}}));
    add_connection(make_record("Down", "RDP", {{MC_PING_PORT, "0"}, {MC_SERVER, "ts"}}, true));
    const struct { const char *name, *type; int status; const char* programs; } cases[] = {
        {"office", "ICA", 189, ""}, {"Office ", "ICA", 189, ""}, {"Office", "Web", 189, ""},
        {"Down", "RDP", 69, "ping|ping|-c|1|-q|ts\n"}, {"Office", "ICA", 69, ""},
        {"Office", "DAS", 69, ""}, {"Office", "Telnet", 69, ""}};
    for (const auto& c : cases) {
        GtkTreeIter iter = add_row(c.name, c.type);
        EXPECT_EQ(launch_and_wait(&iter), c.status) << c.name << "/" << c.type;
        EXPECT_EQ(fake_log(), c.programs) << c.name << "/" << c.type;
    }
    EXPECT_EQ(log_text(), "Ping exit code 100\n");
}

TEST_F(spawn_test, session_programs_inherit_only_what_is_not_close_on_exec)
{
    const int leak = open((root / "leak").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    setenv("KEST_FAKE_FDS", "1", 1);
    GtkTreeIter iter = add_connection(make_record("Intranet", "Web", {{MC_SERVER, "intra"}}));
    EXPECT_EQ(launch_and_wait(&iter), 0);
    close(leak);
    EXPECT_NE(fake_log().find("|" + root / "leak"), std::string::npos) << fake_log();
    EXPECT_EQ(fake_log().find("zarvoca.log"), std::string::npos) << fake_log();
}

// The program's own handler only writes to a pipe its main loop reads; a child that ran it
// would not end. The waiting RDP child takes the default action instead, and the parent's
// own mask is left as it was.
TEST_F(spawn_test, running_session_ends_on_sigterm_and_is_not_started_twice)
{
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = [](int) {};
    sigaction(SIGTERM, &action, &previous);
    setenv("KEST_FAKE_SLEEP_MS", "2000", 1);

    GtkTreeIter iter = add_connection(make_record("Office", "RDP", {{MC_SERVER, "ts"}}));
    spawn_connection(tree(), &iter);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_FALSE(sigismember(&mask, SIGTERM));
    for (int i = 0; i < 200 && fake_log().empty(); ++i)
        usleep(10 * 1000);
    gtk_tree_store_set(current_user_connection_tree, &iter, TC_POLLS, 7, -1);
    const std::string pid = read_tree_row(tree(), &iter).pid;
    EXPECT_EQ(spawn_connection(tree(), &iter), 0);
    const tree_row row = read_tree_row(tree(), &iter);
    EXPECT_EQ(row.pid + " " + std::to_string(row.polls), pid + " 7");

    const pid_t child = session_process_id(std::atoi(pid.c_str()));
    siginfo_t info{};
    // Only a child of ours is signalled: the row keeps just the last five digits.
    ASSERT_EQ(waitid(P_PID, child, &info, WEXITED | WNOHANG | WNOWAIT), 0);
    int status = 0;
    ASSERT_EQ(kill(child, SIGTERM), 0);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);

    sigaction(SIGTERM, &previous, nullptr);
}

}  // namespace
