// How long the RDP editor takes from the call to its window being mapped, with 1,000
// connections (half of them RDP, so the Computer list is long) and an rdesktop keymap
// folder of 300 maps. Printed, not asserted. Needs a display: run it under xvfb-run.
#include "gui_timing.h"
#include "editors/editors.h"
#include "keymaps/keymaps.h"
#include "store/models.h"
#include "store/record.h"

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int connections = 1000;
constexpr int keymaps = 300;
constexpr int runs = 30;

void make_keymap_folder(const std::string& root)
{
    const std::string folder = root + "/usr/share/rdesktop/keymaps";
    g_mkdir_with_parents(folder.c_str(), 0755);
    for (int i = 0; i < keymaps; ++i) {
        const std::string path = folder + "/map" + std::to_string(i * 7919 % 1000);
        g_file_set_contents(path.c_str(), "", 0, nullptr);
    }
}

void fill_master_list()
{
    master_connection_list = create_master_store();
    for (int i = 0; i < connections; ++i) {
        connection_record record;
        record[MC_NAME] = "Connection " + std::to_string(i);
        record[MC_TYPE] = i % 2 ? "RDP" : "Web";
        record[MC_SERVER] = "server" + std::to_string(i % 400) + ".example";
        record[MC_RDP_FLAGS] = "04608";
        insert_master_row(master_connection_list, -1, record);
    }
}

// Milliseconds from the call to the window's map event.
double time_open(GtkTreePath* path)
{
    const double ms = gui_timing::until_mapped("rdesktop connection", [&] {
        rd_dialog(nullptr, path ? GTK_TREE_MODEL(master_connection_list) : nullptr, path);
    });
    gtk_widget_destroy(gui_timing::window_titled("rdesktop connection"));
    gui_timing::settle();
    return ms;
}

}  // namespace

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    const gui_timing::scratch_root scratch;
    const std::string& root = scratch.path();
    make_keymap_folder(root);
    make_rdesktop_keymap();
    fill_master_list();
    gui_timing::watch_maps();

    GtkTreePath* last_rdp = gtk_tree_path_new_from_indices(connections - 1, -1);
    std::vector<double> fresh, edited;
    for (int i = 0; i < runs; ++i) {
        fresh.push_back(time_open(nullptr));
        edited.push_back(time_open(last_rdp));
    }
    gtk_tree_path_free(last_rdp);
    std::printf("RDP editor, %d connections (%d RDP), %d keymaps:\n", connections, connections / 2,
                gtk_tree_model_iter_n_children(GTK_TREE_MODEL(rdesktop_keymap_list), nullptr) - 1);
    gui_timing::report("new connection", fresh);
    gui_timing::report("existing connection", edited);
    return 0;
}
