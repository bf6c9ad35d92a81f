#pragma once
// Timing of windows for the benchmarks that need a display: how long from a call to a
// window of a given title being mapped, and a printed summary. Printed, not asserted.
#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace gui_timing {

inline std::string& awaited_title()
{
    static std::string title;
    return title;
}
inline bool& mapped()
{
    static bool flag = false;
    return flag;
}

inline gboolean note_map(GSignalInvocationHint*, guint, const GValue* values, gpointer)
{
    GtkWidget* widget = GTK_WIDGET(g_value_get_object(&values[0]));
    if (GTK_IS_WINDOW(widget) && awaited_title() == (gtk_window_get_title(GTK_WINDOW(widget)) ?: ""))
        mapped() = true;
    return TRUE;
}

// Once, after gtk_init.
inline void watch_maps()
{
    g_type_class_unref(g_type_class_ref(GTK_TYPE_WINDOW));  // registers the widget signals
    g_signal_add_emission_hook(g_signal_lookup("map-event", GTK_TYPE_WIDGET), 0, note_map, nullptr, nullptr);
}

inline void settle()
{
    while (gtk_events_pending())
        gtk_main_iteration();
}

inline double milliseconds_since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Milliseconds from calling open to the window titled title being mapped.
template <typename action>
double until_mapped(const char* title, action open)
{
    awaited_title() = title;
    mapped() = false;
    const auto start = std::chrono::steady_clock::now();
    open();
    while (!mapped())
        gtk_main_iteration_do(TRUE);
    return milliseconds_since(start);
}

// Milliseconds that work takes, events it causes included.
template <typename action>
double timed(action work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    settle();
    return milliseconds_since(start);
}

inline GtkWidget* window_titled(const char* title)
{
    GList* windows = gtk_window_list_toplevels();
    GtkWidget* found = nullptr;
    for (GList* w = windows; w; w = w->next)
        if (g_strcmp0(gtk_window_get_title(GTK_WINDOW(w->data)), title) == 0)
            found = GTK_WIDGET(w->data);
    g_list_free(windows);
    return found;
}

// A private root for one benchmark run: KESTRELLE_ROOT points at it while it lives, and
// it is removed with its contents afterwards.
class scratch_root {
public:
    scratch_root()
    {
        char name[] = "/tmp/kest-bench-XXXXXX";
        path_ = g_mkdtemp(name);
        setenv("KESTRELLE_ROOT", path_.c_str(), 1);
    }
    ~scratch_root()
    {
        const std::string clean = "rm -rf " + path_;
        if (std::system(clean.c_str()) != 0)
            std::fprintf(stderr, "%s was not removed\n", path_.c_str());
    }
    scratch_root(const scratch_root&) = delete;
    scratch_root& operator=(const scratch_root&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

inline void report(const char* what, std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    std::printf("%-40s median %6.1f ms   min %6.1f ms   max %6.1f ms   (%zu runs)\n", what,
                times[times.size() / 2], times.front(), times.back(), times.size());
}

}  // namespace gui_timing
