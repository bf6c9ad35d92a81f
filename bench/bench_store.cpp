// Loading and saving master lists (with a user tree naming every connection) of 100,
// 1,000 and 10,000 connections. Prints milliseconds per load and per save.
#include "launch/command_line.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/save.h"
#include "store/user_file.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

const char* types[] = {"RDP", "ICA", "XDM", "Web", "DAS", "Other"};

// A private root holding a master list and a user tree of n connections, in the
// unsorted order an administrator's edits leave behind.
struct bench_root {
    std::string path;

    explicit bench_root(int n)
    {
        char pattern[] = "/tmp/kestrelle-bench-XXXXXX";
        path = mkdtemp(pattern);
        for (const char* dir : {"/etc/.kestrel", "/tmp/.kestrel", "/home/u"})
            std::filesystem::create_directories(path + dir);
        setenv("KESTRELLE_ROOT", path.c_str(), 1);
        ica_dir = path + "/etc/.kestrel";
        std::ofstream master(path + "/etc/.kestrel/kestrel.master");
        std::ofstream tree(path + "/home/u/kestrel.inf");
        master << "Version 1.000\nShow GUI\nDon't show taskbar\nNot kiosk\n";
        tree << "Version 1.000\n";
        for (int i = 0; i < n; ++i) {
            std::string name = "Connection " + std::to_string((i * 7919) % n);
            const char* type = types[i % 6];
            master << name << '\n' << type << "\nStandard echo\n3389\n1\nserver" << i << '\n';
            for (int c = 6; c < 33; ++c)
                master << (c == 13 ? "Full Screen" : "") << '\n';
            master << "00000\n0\n";
            tree << (i % 3 == 0 ? "TRUE" : "FALSE") << '\n' << name << '\n' << type
                 << "\nFALSE\nFALSE\nFALSE\n";
        }
    }
    ~bench_root() { std::filesystem::remove_all(path); }
};

void load(const std::string& root)
{
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
    make_connection_list(master_connection_list, (root + "/etc/.kestrel/kestrel.master").c_str(), 35);
    make_connection_tree(current_user_connection_tree, (root + "/home/u/kestrel.inf").c_str(), 6);
}

void unload()
{
    g_object_unref(master_connection_list);
    g_object_unref(current_user_connection_tree);
}

void load_master_and_tree(benchmark::State& state)
{
    bench_root root(state.range(0));
    for (auto _ : state) {
        load(root.path);
        state.PauseTiming();
        unload();
        state.ResumeTiming();
    }
}

void save_master(benchmark::State& state)
{
    bench_root root(state.range(0));
    load(root.path);
    for (auto _ : state)
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    unload();
}

}  // namespace

BENCHMARK(load_master_and_tree)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(save_master)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
