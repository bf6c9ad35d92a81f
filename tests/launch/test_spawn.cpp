#include "launch/spawn.h"

#include "launch/reachability.h"
#include "launch_fixture.h"
#include "platform/log.h"
#include "store/models.h"
#include "store/password.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

// A TCP socket bound to a free port of 127.0.0.1, listening or not.
struct local_port {
    explicit local_port(bool listening = true)
    {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* named = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(fd, named, length) || getsockname(fd, named, &length), 0) << "no local port";
        if (listening)
            listen(fd, 16);
        port = std::to_string(ntohs(address.sin_port));
    }
    ~local_port() { close(fd); }
    int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    std::string port;
};

// A private root with the program's log open in it.
class reachability_test : public rooted_test {
protected:
    void SetUp() override
    {
        make_dirs(root / "tmp");
        ASSERT_TRUE(log_open());
    }
    void TearDown() override { log_close(); }
    std::string log_text() const { return read_file_text(root / "tmp/zarvoca.log"); }
};

TEST_F(reachability_test, smart_ping_against_local_ports)
{
    const local_port open, closed(false);
    const std::string refused = "Connection to server 127.0.0.1 failed with error Connection refused (6f).\n";
    const struct { std::string host, port; int result; std::string log; } cases[] = {
        {"127.0.0.1", open.port, 0, ""}, {"localhost", open.port, 0, ""},
        {"127.0.0.1", closed.port, ECONNREFUSED, refused},
        // Begins with a digit: never looked up; unreadable, it stays 0.0.0.0, this machine.
        {"1nosuchhost", open.port, 0, ""},
        {"no-such-host.invalid", open.port, -1, "Unknown host no-such-host.invalid.\n"},
    };
    for (const auto& c : cases) {
        const size_t before = log_text().size();
        const int result = smart_ping(c.host.c_str(), c.port.c_str());
        if (c.result >= 0) {
            EXPECT_EQ(result, c.result) << c.host << ":" << c.port;
        }
        EXPECT_EQ(log_text().substr(before), c.log) << c.host << ":" << c.port;
    }
}

// The programs a launch here may start are played by the recording fake; the DAS client
// is missing.
class spawn_test : public reachability_test {
protected:
    void SetUp() override
    {
        reachability_test::SetUp();
        fill_seedchars();
        make_dirs(root / "bin");
        for (const char* program : {"rdesktop", "firefox", "ping"})
            ASSERT_EQ(symlink(RECORD_ARGV, (root / "bin/" + program).c_str()), 0) << program;
        setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
        setenv("KEST_FAKE_LOG", (root / "fake.log").c_str(), 1);
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
    }
    void TearDown() override
    {
        setenv("PATH", old_path.c_str(), 1);
        unsetenv("KEST_FAKE_LOG");
        unsetenv("KEST_FAKE_SLEEP_MS");
        g_clear_object(&master_connection_list);
        g_clear_object(&current_user_connection_tree);
        reachability_test::TearDown();
    }
    GtkTreeModel* tree() const { return GTK_TREE_MODEL(current_user_connection_tree); }
    std::string fake_log() const { return read_file_text(root / "fake.log"); }

    GtkTreeIter add_row(const std::string& name, const std::string& type)
    {
        GtkTreeIter iter;
        gtk_tree_store_insert_with_values(current_user_connection_tree, &iter, nullptr, -1, TC_NAME, name.c_str(),
                                          TC_TYPE, type.c_str(), -1);
        return iter;
    }
    GtkTreeIter add_connection(const connection_record& record)
    {
        insert_master_row(master_connection_list, -1, record);
        return add_row(record[MC_NAME], record[MC_TYPE]);
    }
    // Starts the row and returns its child's exit status (-1: it did not exit), after checking
    // that the row names the child. A child that ends before spawn_connection looks is reaped
    // there, its status lost: the launch is then made again, on a fresh fake log.
    int launch_and_wait(GtkTreeIter* iter)
    {
        for (int attempt = 0; attempt < 50; ++attempt) {
            std::remove((root / "fake.log").c_str());
            gtk_tree_store_set(current_user_connection_tree, iter, TC_PID, "0", TC_STATUS, "Not Connected", TC_POLLS,
                               3, -1);
            if (spawn_connection(tree(), iter) == 0)
                continue;
            int status = 0;
            const pid_t pid = waitpid(-1, &status, 0);
            const tree_row row = read_tree_row(tree(), iter);
            EXPECT_EQ(row.status + " " + std::to_string(row.polls), "Active 0");
            EXPECT_EQ(row.pid, std::to_string(100000 + pid % 100000).substr(1));
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        ADD_FAILURE() << "every child ended before spawn_connection returned";
        return -1;
    }
    void script(const std::string& name, const std::string& text)
    {
        unlink((root / "bin/" + name).c_str());
        write_file(root / "bin/" + name, text);
        chmod((root / "bin/" + name).c_str(), 0755);
    }
    std::string old_path = std::getenv("PATH");
};

// The check before the start, and the exit statuses: 189, no master row of exactly this
// name and type (as the list is now, the first of equal rows); 69, nothing started.
TEST_F(spawn_test, each_check_comes_before_its_program_and_failures_end_with_their_status)
{
    const local_port open, closed(false);
    const std::string up = "http://127.0.0.1:" + open.port + "/x", down = "http://127.0.0.1:" + closed.port + "/x";
    add_connection(make_record("Office", "RDP",
                               {{MC_PING_PORT, "0"}, {MC_SERVER, "ts:3390"}, {MC_USERNAME, "ann"},
                                {MC_PASSWORD, "t`kber"}, {MC_RDP_FLAGS, "16384"}, {MC_RDP_EXTRA_OPTIONS, "-T 'My desk'"}},
                               true));
    add_connection(make_record("Up", "Web", {{MC_PING_PORT, open.port.c_str()}, {MC_SERVER, up.c_str()}}, true));
    add_connection(make_record("Down", "Web", {{MC_PING_PORT, closed.port.c_str()}, {MC_SERVER, down.c_str()}}, true));
    for (const char* type : {"DAS", "Telnet"})
        add_connection(make_record("Office", type));
    const auto remove_first = [] {
        GtkTreeIter first;
        gtk_tree_model_get_iter_first(GTK_TREE_MODEL(master_connection_list), &first);
        gtk_list_store_remove(master_connection_list, &first);
    };
    const auto add_web = [](const char* server) {
        insert_master_row(master_connection_list, 0, make_record("Intranet", "Web", {{MC_SERVER, server}}));
    };
    const struct { const char *name, *type; int status; std::string programs; std::function<void()> then = {}; } cases[] = {
        {"Office", "RDP", 69, "ping|ping|-c|1|-q|ts\nrdesktop|rdesktop|-uann|-psecret|-T|My desk|ts:3390\n"},
        {"Up", "Web", 0, "firefox|firefox|" + up + "\n"}, {"Down", "Web", 69, ""},
        {"office", "RDP", 189, ""}, {"Office", "DAS", 69, ""}, {"Office", "Telnet", 69, "", [&] { add_web("one"); }},
        {"Intranet", "Web", 0, "firefox|firefox|one\n", remove_first},
        {"Intranet", "Web", 189, "", [&] { add_web("two"), add_web("three"); }},
        {"Intranet", "Web", 0, "firefox|firefox|three\n", remove_first},
        {"Intranet", "Web", 0, "firefox|firefox|two\n"},
    };
    for (const auto& c : cases) {
        GtkTreeIter iter = add_row(c.name, c.type);
        EXPECT_EQ(launch_and_wait(&iter), c.status) << c.name << "/" << c.type;
        EXPECT_EQ(fake_log(), c.programs) << c.name << "/" << c.type;
        if (c.then)
            c.then();
    }
}

// An Other command line is split by the shell's quoting rules but run without a shell; a
// program without "#!" is run by /bin/sh. It gets /dev/null as standard input and no
// descriptor above 2, and the child ends with 69 once it has ended. Session programs of
// the other types inherit what is not close-on-exec, but never the log. A storm of
// restarts may be all that writes to the log, through the children, which leave moving
// it aside to this process: a full log moves aside before a launch.
TEST_F(spawn_test, what_session_programs_are_started_with)
{
    const int leak = open((root / "leak").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    script("noshebang", "printf '%s|' \"$0\" \"$@\" > " + root / "out\nreadlink /proc/$$/fd/0 >> " + root / "out\n"
                        "[ -e /proc/$$/fd/" + std::to_string(leak) + " ] && echo leaked >> " + root / "out\n"
                        "sleep 0.2; echo ended >> " + root / "out\n");
    script("firefox", "#!/bin/sh\nls -l /proc/$$/fd > " + root / "fds\n");
    GtkTreeIter tool = add_connection(make_record("Tool", "Other", {{MC_PROGRAM, "noshebang 'two words' \"$HOME\" a\\ b"}}));
    GtkTreeIter web = add_connection(make_record("Intranet", "Web", {{MC_SERVER, "intra"}}));
    EXPECT_EQ(launch_and_wait(&tool), 69);
    ASSERT_EQ(truncate((root / "tmp/zarvoca.log").c_str(), 1024 * 1024), 0);
    EXPECT_EQ(launch_and_wait(&web), 0);
    EXPECT_EQ(std::filesystem::file_size(root / "tmp/zarvoca.log.old"), 1024u * 1024u);
    close(leak);
    EXPECT_EQ(read_file_text(root / "out"), root / "bin/noshebang|two words|$HOME|a b|/dev/null\nended\n");
    const std::string fds = read_file_text(root / "fds");
    EXPECT_NE(fds.find(root / "leak"), std::string::npos) << fds;
    EXPECT_EQ(fds.find("zarvoca.log"), std::string::npos) << fds;
}

// The program's own handler only writes to a pipe its main loop reads; a child that ran it
// would not end. The waiting RDP child takes the default action instead, and the parent's
// own mask is left as it was.
TEST_F(spawn_test, running_session_ends_on_sigterm_and_is_not_started_twice)
{
    struct sigaction action {}, previous {};
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
    // Only a child of ours is signalled: the row keeps just the last five digits.
    const pid_t child = session_process_id(std::atoi(pid.c_str()));
    siginfo_t info{};
    ASSERT_EQ(waitid(P_PID, child, &info, WEXITED | WNOHANG | WNOWAIT), 0);
    int status = 0;
    ASSERT_EQ(kill(child, SIGTERM), 0);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    sigaction(SIGTERM, &previous, nullptr);
}

}  // namespace
