// Time from spawn_connection to the first instruction of the session program, with
// 1,000 connections in the master list and the one started last in it. At the end each
// type's median is printed beside that of a bare fork and exec of the same program (the
// floor, measured first and last), with the difference. The fake
// session program (tests/launch/fakes/record_argv.c, built with the tests) writes the
// time it started to a file first thing. Each benchmark also reports how long the
// caller, the main loop, was held by spawn_connection.
//
// The fake is found through KEST_RECORD_ARGV, else in the build tree beside this
// program (../tests/launch/record_argv).
#include "launch/command_line.h"
#include "launch/spawn.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "store/master_index.h"
#include "store/models.h"
#include "store/record.h"

#include <algorithm>
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int master_rows = 1000;
constexpr const char* session_programs[] = {"rdesktop", "wfica", "X", "firefox"};

long long now_ns()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

std::string find_fake()
{
    if (const char* path = std::getenv("KEST_RECORD_ARGV"))
        return path;
    char self[PATH_MAX] = {};
    if (readlink("/proc/self/exe", self, sizeof self - 1) < 0)
        return "";
    std::string dir = self;
    dir.resize(dir.rfind('/'));
    return dir + "/../tests/launch/record_argv";
}

// A private root with the fake under every session program's name, first in PATH, and
// the models: 1,000 master rows, the last ones being the connections started here.
struct sandbox {
    std::string root;
    std::string stamp;
    std::string error;

    sandbox()
    {
        const std::string fake = find_fake();
        if (access(fake.c_str(), X_OK) != 0) {
            error = "fake session program not found: build record_argv or set KEST_RECORD_ARGV";
            return;
        }
        char folder[] = "/tmp/bench_spawn.XXXXXX";
        root = mkdtemp(folder);
        for (const std::string dir : {"/bin", "/opt", "/opt/zarvo", "/etc", "/etc/.kestrel"})
            mkdir((root + dir).c_str(), 0700);
        for (const char* program : session_programs)
            (void)!symlink(fake.c_str(), (root + "/bin/" + program).c_str());
        (void)!symlink(fake.c_str(), (root + "/opt/zarvo/marrow").c_str());
        stamp = root + "/stamp";
        setenv("KESTRELLE_ROOT", root.c_str(), 1);
        const char* path = std::getenv("PATH");
        setenv("PATH", (root + "/bin:" + (path ? path : "/usr/bin:/bin")).c_str(), 1);
        setenv("KEST_FAKE_STAMP", stamp.c_str(), 1);
        set_ica_dir(root + "/etc/.kestrel");
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
        fill_master_list();
    }
    ~sandbox()
    {
        if (!root.empty())
            std::system(("rm -rf " + root).c_str());
    }

    static void fill_master_list()
    {
        const char* types[] = {"RDP", "ICA", "XDM", "Web", "DAS", "Other"};
        for (int i = 0; i < master_rows - 8; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "Connection %04d", i);
            add_master(name, types[i % 6], {});
        }
        add_master("Zz RDP", "RDP", {{MC_SERVER, "ts"}, {MC_WINDOW_SIZE, "Use Default"}});
        add_master("Zz ICA", "ICA", {{MC_SERVER, "farm"}});
        add_master("Zz XDM", "XDM", {{MC_SERVER, "xhost"}, {MC_XDM_MODE, "Query"},
                                     {MC_XDM_VT, "Automatic"}, {MC_XDM_DISPLAY, "1"},
                                     {MC_KEYBOARD, "Use Server Settings"}});
        add_master("Zz Web", "Web", {{MC_SERVER, "http://intra/"}});
        add_master("Zz DAS", "DAS", {});
        add_master("Zz Other", "Other", {{MC_PROGRAM, "firefox http://intra/"}});
    }

    static void add_master(const char* name, const char* type,
                           std::initializer_list<std::pair<int, const char*>> values)
    {
        connection_record record;
        record[MC_NAME] = name;
        record[MC_TYPE] = type;
        record[MC_RDP_FLAGS] = "0";
        record[MC_ICA_MASK] = "0";
        for (const auto& [column, text] : values)
            record[column] = text;
        insert_master_row(master_connection_list, -1, record);
    }
};

sandbox& the_sandbox()
{
    static sandbox box;
    return box;
}

GtkTreeIter tree_row_for(const std::string& name, const std::string& type)
{
    tree_row row;
    row.name = name;
    row.type = type;
    GtkTreeIter iter;
    gtk_tree_store_append(current_user_connection_tree, &iter, nullptr);
    write_tree_row(current_user_connection_tree, &iter, row);
    return iter;
}

void mark_not_connected(GtkTreeIter* iter)
{
    gtk_tree_store_set(current_user_connection_tree, iter, TC_PID, no_process, TC_STATUS,
                       status_not_connected, TC_POLLS, 0, -1);
}

long long read_stamp(const std::string& path)
{
    std::ifstream in(path);
    long long stamp = 0;
    in >> stamp;
    return stamp;
}

// The medians of each launch type, and every sample of the bare fork and exec, for the
// summary printed at the end.
std::vector<std::pair<std::string, double>>& launch_medians()
{
    static std::vector<std::pair<std::string, double>> medians;
    return medians;
}
std::vector<double>& bare_samples()
{
    static std::vector<double> samples;
    return samples;
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

void spawn_to_first_instruction(benchmark::State& state, const char* type)
{
    sandbox& box = the_sandbox();
    if (!box.error.empty()) {
        state.SkipWithError(box.error.c_str());
        return;
    }
    GtkTreeIter iter = tree_row_for(std::string("Zz ") + type, type);
    GtkTreeModel* model = GTK_TREE_MODEL(current_user_connection_tree);
    std::vector<double> to_program_ms;
    std::vector<double> held_us;
    for (auto _ : state) {
        std::remove(box.stamp.c_str());
        const long long start = now_ns();
        spawn_connection(model, &iter);
        const long long returned = now_ns();
        int status = 0;
        wait(&status);
        const long long started = read_stamp(box.stamp);
        if (started == 0) {
            state.SkipWithError("the session program did not start");
            break;
        }
        mark_not_connected(&iter);
        state.SetIterationTime(static_cast<double>(started - start) / 1e9);
        to_program_ms.push_back(static_cast<double>(started - start) / 1e6);
        held_us.push_back(static_cast<double>(returned - start) / 1e3);
    }
    state.counters["median_ms"] = median(to_program_ms);
    state.counters["caller_held_median_us"] = median(held_us);
    launch_medians().emplace_back(type, median(to_program_ms));
}

// The child's look-up of its connection, the last of the 1,000 rows, without the fork.
void master_list_lookup(benchmark::State& state)
{
    sandbox& box = the_sandbox();
    if (!box.error.empty()) {
        state.SkipWithError(box.error.c_str());
        return;
    }
    for (auto _ : state) {
        GtkTreeIter found;
        benchmark::DoNotOptimize(find_master_row(master_connection_list, "Zz ICA", "ICA", &found));
        benchmark::DoNotOptimize(read_master_row(GTK_TREE_MODEL(master_connection_list), &found));
    }
}

// The floor under the figures above: fork and execv of the fake, nothing else.
void bare_fork_and_exec(benchmark::State& state, const char*)
{
    sandbox& box = the_sandbox();
    if (!box.error.empty()) {
        state.SkipWithError(box.error.c_str());
        return;
    }
    const std::string program = box.root + "/bin/firefox";
    std::vector<double> to_program_ms;
    std::vector<double> held_us;
    for (auto _ : state) {
        std::remove(box.stamp.c_str());
        const long long start = now_ns();
        if (fork() == 0) {
            char* const arguments[] = {const_cast<char*>("firefox"), nullptr};
            execv(program.c_str(), arguments);
            _exit(69);
        }
        const long long returned = now_ns();
        wait(nullptr);
        const long long started = read_stamp(box.stamp);
        state.SetIterationTime(static_cast<double>(started - start) / 1e9);
        to_program_ms.push_back(static_cast<double>(started - start) / 1e6);
        held_us.push_back(static_cast<double>(returned - start) / 1e3);
    }
    // The same counters as the launches', which a report in columns needs from its first row.
    state.counters["median_ms"] = median(to_program_ms);
    state.counters["caller_held_median_us"] = median(held_us);
    bare_samples().insert(bare_samples().end(), to_program_ms.begin(), to_program_ms.end());
}

// A connection checked first against a server that never answers: the caller is held
// only for the fork, while the child waits for the check.
void caller_not_held_by_check(benchmark::State& state)
{
    sandbox& box = the_sandbox();
    if (!box.error.empty()) {
        state.SkipWithError(box.error.c_str());
        return;
    }
    // A listener whose one-place queue is taken drops further connections unanswered.
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(listener, reinterpret_cast<sockaddr*>(&address), length);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    listen(listener, 0);
    const int taken = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connect(taken, reinterpret_cast<sockaddr*>(&address), length);
    const std::string port = std::to_string(ntohs(address.sin_port));

    sandbox::add_master("Zz silent", "RDP",
                        {{MC_SERVER, "127.0.0.1"}, {MC_PING_PORT, port.c_str()}});
    GtkListStore* list = master_connection_list;
    GtkTreeIter last;
    gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(list), &last, nullptr,
                                  gtk_tree_model_iter_n_children(GTK_TREE_MODEL(list), nullptr) - 1);
    gtk_list_store_set(list, &last, MC_PING, TRUE, -1);

    GtkTreeIter iter = tree_row_for("Zz silent", "RDP");
    GtkTreeModel* model = GTK_TREE_MODEL(current_user_connection_tree);
    std::vector<double> held_us;
    for (auto _ : state) {
        const long long start = now_ns();
        spawn_connection(model, &iter);
        const long long returned = now_ns();
        state.SetIterationTime(static_cast<double>(returned - start) / 1e9);
        held_us.push_back(static_cast<double>(returned - start) / 1e3);
        mark_not_connected(&iter);
    }
    // The children are still waiting for the check; they give up within seconds.
    while (wait(nullptr) > 0) {
    }
    state.counters["caller_held_median_us"] = median(held_us);
    close(taken);
    close(listener);
}

}  // namespace

BENCHMARK_CAPTURE(bare_fork_and_exec, first, "")->UseManualTime()->Iterations(300);
BENCHMARK_CAPTURE(spawn_to_first_instruction, ICA, "ICA")->UseManualTime()->Iterations(300);
BENCHMARK_CAPTURE(spawn_to_first_instruction, XDM, "XDM")->UseManualTime()->Iterations(300);
BENCHMARK_CAPTURE(spawn_to_first_instruction, Web, "Web")->UseManualTime()->Iterations(300);
BENCHMARK_CAPTURE(spawn_to_first_instruction, DAS, "DAS")->UseManualTime()->Iterations(300);
BENCHMARK_CAPTURE(spawn_to_first_instruction, RDP, "RDP")->UseManualTime()->Iterations(100);
BENCHMARK_CAPTURE(spawn_to_first_instruction, Other, "Other")->UseManualTime()->Iterations(100);
BENCHMARK(master_list_lookup);
BENCHMARK_CAPTURE(bare_fork_and_exec, last, "")->UseManualTime()->Iterations(300);
BENCHMARK(caller_not_held_by_check)->UseManualTime()->Iterations(20);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (launch_medians().empty() || bare_samples().empty())
        return 0;
    const double bare = median(bare_samples());
    std::printf("\nSpawn to the session program's first instruction, %d connections (median ms):\n",
                master_rows);
    std::printf("%-8s %8s %16s %12s\n", "type", "launch", "bare fork+exec", "difference");
    for (const auto& [type, ms] : launch_medians())
        std::printf("%-8s %8.2f %16.2f %+12.2f\n", type.c_str(), ms, bare, ms - bare);
    return 0;
}
