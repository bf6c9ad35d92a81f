// The ICA editor's Refresh with a long list of published applications: from the click
// to the list attached and every event handled, then from asking for the drop-down to
// its list being shown, and the choices filtered as a prefix is typed. Printed, not
// asserted. Needs a display: run it under xvfb-run.
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "gui_timing.h"
#include "platform/tmp_files.h"
#include "store/ica_paths.h"
#include "store/models.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr int runs = 15;

// A pnabrowse that prints names ready-made, so that what is timed is this program.
void make_pnabrowse(const std::string& root, int names)
{
    std::string list;
    for (int i = 0; i < names; ++i)
        list += "\"Application " + std::to_string(i * 7919 % names) + "\"\n";
    const std::string folder = root + "/opt/ICAClient";
    g_mkdir_with_parents(folder.c_str(), 0755);
    g_file_set_contents((folder + "/names").c_str(), list.c_str(), static_cast<gssize>(list.size()), nullptr);
    const std::string script = "#!/bin/sh\nexec cat '" + folder + "/names'\n";
    g_file_set_contents((folder + "/pnabrowse").c_str(), script.c_str(), -1, nullptr);
    chmod((folder + "/pnabrowse").c_str(), 0755);
    ica_root = folder;
}

GtkWidget* named_child(GtkWidget* widget, const char* name)
{
    if (g_strcmp0(gtk_widget_get_name(widget), name) == 0)
        return widget;
    GtkWidget* found = nullptr;
    if (GTK_IS_CONTAINER(widget)) {
        GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
        for (GList* c = children; c && !found; c = c->next)
            found = named_child(GTK_WIDGET(c->data), name);
        g_list_free(children);
    }
    return found;
}

struct figures {
    std::vector<double> refresh, drop_down, drop_down_settled, completion;
};

void run_once(figures& f)
{
    gui_timing::until_mapped("ICA connection", [] { ica_dialog(nullptr); });
    GtkWidget* window = gui_timing::window_titled("ICA connection");
    connect_info.text[MC_ICA_LOCATION] = "apps.example";
    GtkWidget* combo = named_child(window, "server");
    f.refresh.push_back(gui_timing::timed([&] { gtk_button_clicked(GTK_BUTTON(named_child(window, "refresh"))); }));
    // The drop-down is a window without a title; every row measured comes later.
    const auto asked = std::chrono::steady_clock::now();
    f.drop_down.push_back(gui_timing::until_mapped("", [&] { gtk_combo_box_popup(GTK_COMBO_BOX(combo)); }));
    gui_timing::settle();
    f.drop_down_settled.push_back(gui_timing::milliseconds_since(asked));
    gtk_combo_box_popdown(GTK_COMBO_BOX(combo));
    gui_timing::settle();
    // What the entry does on each key typed: the choices filtered by the text so far.
    GtkEntry* entry = GTK_ENTRY(gtk_bin_get_child(GTK_BIN(combo)));
    gtk_entry_set_text(entry, "Application 99");
    f.completion.push_back(gui_timing::timed([&] { gtk_entry_completion_complete(gtk_entry_get_completion(entry)); }));
    gtk_widget_destroy(window);
    gui_timing::settle();
}

}  // namespace

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    gui_timing::watch_maps();
    for (const int names : {10000, 50000}) {
        const gui_timing::scratch_root scratch;
        const std::string& root = scratch.path();
        tmp_dir = root + "/tmp";
        set_ica_dir(root + "/etc/.kestrel");
        g_mkdir_with_parents(tmp_dir.c_str(), 0755);
        g_mkdir_with_parents(ica_dir.c_str(), 0755);
        make_pnabrowse(root, names);
        master_connection_list = create_master_store();
        figures f;
        for (int i = 0; i < runs; ++i)
            run_once(f);
        std::printf("%d published applications:\n", names);
        gui_timing::report("Refresh (click to list attached)", f.refresh);
        gui_timing::report("drop-down shown", f.drop_down);
        gui_timing::report("drop-down with every row measured", f.drop_down_settled);
        gui_timing::report("choices filtered by a typed prefix", f.completion);
    }
    return 0;
}
