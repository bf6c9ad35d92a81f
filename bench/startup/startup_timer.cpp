// Measures how long a program takes from its start to the mapping of its window with a
// given title, and its resident memory once the window is up. Usage:
//   startup_timer TITLE SETTLE_MS PROGRAM [ARGUMENT...]
// Prints "MILLISECONDS RSS_KB" and ends the program with SIGTERM. It listens for the map
// event itself rather than polling, so the figure is not rounded to a polling interval.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using steady = std::chrono::steady_clock;
constexpr auto map_timeout = std::chrono::seconds(60);

bool has_title(Display* display, Window window, const char* title)
{
    char* name = nullptr;
    if (!XFetchName(display, window, &name) || !name)
        return false;
    bool same = std::strcmp(name, title) == 0;
    XFree(name);
    return same;
}

// Waits for a top-level window with the title to be mapped; false on time-out.
bool wait_for_map(Display* display, const char* title, steady::time_point deadline)
{
    pollfd watch{ConnectionNumber(display), POLLIN, 0};
    while (steady::now() < deadline) {
        while (XPending(display)) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type == MapNotify && has_title(display, event.xmap.window, title))
                return true;
        }
        poll(&watch, 1, 100);
    }
    return false;
}

long resident_kb(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string key;
    long value = -1;
    while (status >> key) {
        if (key == "VmRSS:") {
            status >> value;
            break;
        }
        status.ignore(4096, '\n');
    }
    return value;
}

void stop(pid_t pid)
{
    kill(pid, SIGTERM);
    for (int i = 0; i < 50; ++i) {
        if (waitpid(pid, nullptr, WNOHANG) == pid)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s TITLE SETTLE_MS PROGRAM [ARGUMENT...]\n", argv[0]);
        return 2;
    }
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "cannot open the display\n");
        return 2;
    }
    // Listen before the program starts, so that no map event can be missed.
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, False);

    steady::time_point start = steady::now();
    pid_t pid = fork();
    if (pid == 0) {
        close(ConnectionNumber(display));
        execv(argv[3], argv + 3);
        _exit(127);
    }
    if (pid < 0 || !wait_for_map(display, argv[1], start + map_timeout)) {
        std::fprintf(stderr, "no window \"%s\" appeared\n", argv[1]);
        if (pid > 0)
            stop(pid);
        return 1;
    }
    double ms = std::chrono::duration<double, std::milli>(steady::now() - start).count();
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
    long rss = resident_kb(pid);
    stop(pid);
    std::printf("%.1f %ld\n", ms, rss);
    return 0;
}
