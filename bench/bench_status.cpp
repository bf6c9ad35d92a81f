// One status poll over 200 running sessions: a non-blocking wait and a poll count
// update per row.
#include "launch/command_line.h"
#include "shell/globals.h"
#include "shell/status_monitor.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/record.h"

#include <benchmark/benchmark.h>
#include <csignal>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int active_rows = 200;

std::vector<pid_t> start_sleeping_children(int count)
{
    std::vector<pid_t> children;
    for (int i = 0; i < count; ++i) {
        const pid_t pid = fork();
        if (pid == 0) {
            pause();
            _exit(0);
        }
        children.push_back(pid);
    }
    return children;
}

// Primaries with two secondaries each, every row running its own child.
GtkTreeStore* tree_of_active_rows(const std::vector<pid_t>& children)
{
    GtkTreeStore* tree = create_user_tree_store();
    GtkTreeIter primary, iter;
    for (size_t i = 0; i < children.size(); ++i) {
        const bool secondary = i % 3 != 0;
        gtk_tree_store_append(tree, &iter, secondary ? &primary : nullptr);
        if (!secondary)
            primary = iter;
        tree_row row;
        row.primary = !secondary;
        row.name = "connection " + std::to_string(i);
        row.type = "Other";
        row.persistent = true;
        row.pid = std::to_string(children[i]);
        row.status = status_active;
        write_tree_row(tree, &iter, row);
    }
    return tree;
}

void status_poll_of_active_rows(benchmark::State& state)
{
    const std::vector<pid_t> children = start_sleeping_children(active_rows);
    GtkTreeStore* tree = tree_of_active_rows(children);
    for (auto _ : state)
        benchmark::DoNotOptimize(update_status(tree));
    state.counters["rows"] = active_rows;
    g_object_unref(tree);
    for (pid_t pid : children) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

BENCHMARK(status_poll_of_active_rows)->Unit(benchmark::kMicrosecond);

}  // namespace
