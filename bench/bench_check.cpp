// kestrelle-check over a root of 10,000 connections and 200 users (each with a tree of
// 50 rows): the whole program, as a roll-out runs it, timed over several runs. Prints
// the fastest and the median wall time and the processor time of a run in milliseconds
// (on a shared machine the wall time also counts the waits for a processor).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

constexpr int connections = 10000;
constexpr int users = 200;
constexpr int rows_per_user = 50;
constexpr int runs = 9;
const char* types[] = {"RDP", "ICA", "XDM", "Web", "DAS", "Other"};

std::string make_root()
{
    char pattern[] = "/tmp/kestrelle-bench-check-XXXXXX";
    const std::string root = mkdtemp(pattern);
    std::filesystem::create_directories(root + "/etc/.kestrel");
    std::ofstream master(root + "/etc/.kestrel/kestrel.master");
    master << "Version 1.000\nShow GUI\nDon't show taskbar\nNot kiosk\n";
    for (int i = 0; i < connections; ++i) {
        master << "Connection " << i << '\n' << types[i % 6] << "\nStandard echo\n3389\n1\nserver" << i << '\n';
        for (int c = 6; c < 33; ++c)
            master << (c == 13 ? "Full Screen" : c == 8 ? "client --option value" : "") << '\n';
        master << "00000\n0\n";
    }
    std::ofstream passwd(root + "/etc/passwd");
    for (int u = 0; u < users; ++u) {
        const std::string home = "/home/u" + std::to_string(u);
        passwd << "u" << u << ":x:" << 2000 + u << ":100::" << home << ":/bin/sh\n";
        std::filesystem::create_directories(root + home);
        std::ofstream tree(root + home + "/kestrel.inf");
        tree << "Version 1.000\n";
        for (int r = 0; r < rows_per_user; ++r) {
            const int i = (u * 131 + r * 197) % connections;
            tree << (r % 3 ? "FALSE" : "TRUE") << "\nConnection " << i << '\n' << types[i % 6]
                 << "\nTRUE\nTRUE\nFALSE\n";
        }
    }
    return root;
}

}  // namespace

int main()
{
    const std::string root = make_root();
    const std::string command = std::string(KESTRELLE_CHECK) + " --root " + root + " >/dev/null";
    std::vector<double> times;
    auto processor_ms = [] {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
               (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
    };
    const double processor_before = processor_ms();
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        const int status = std::system(command.c_str());
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        if (status == -1)
            return 1;
    }
    const double processor = (processor_ms() - processor_before) / runs;
    std::filesystem::remove_all(root);
    std::sort(times.begin(), times.end());
    std::printf("kestrelle-check, %d connections and %d users of %d rows: wall fastest %.1f ms, median %.1f ms; "
                "processor %.1f ms a run (%d runs)\n",
                connections, users, rows_per_user, times.front(), times[runs / 2], processor, runs);
}
