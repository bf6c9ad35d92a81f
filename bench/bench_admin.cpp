// The administrator's waits, with 1,000 connections and 200 accounts: the Advanced window
// from the click to the window mapped, an editor's Save (the master list and appsrv.ini
// rewritten) and Cancel's reload of the master list. Printed, not asserted. Needs a
// display: run it under xvfb-run.
#include "admin/advanced.h"
#include "editors/editors.h"
#include "gui_timing.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/record.h"
#include "store/save.h"

#include <cstdlib>
#include <string>

namespace {

constexpr int connections = 1000;
constexpr int accounts = 200;
constexpr int assigned = 20;
constexpr int runs = 30;

void save_master_list()
{
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
}

void write(const std::string& path, const std::string& text)
{
    g_file_set_contents(path.c_str(), text.c_str(), static_cast<gssize>(text.size()), nullptr);
}

void make_accounts(const std::string& root)
{
    std::string passwd;
    for (int i = 0; i < accounts; ++i) {
        const std::string name = "user" + std::to_string(i);
        passwd += name + ":x:" + std::to_string(1000 + i) + ":100::/home/" + name + ":/bin/sh\n";
        g_mkdir_with_parents((root + "/home/" + name).c_str(), 0755);
    }
    write(root + "/etc/passwd", passwd);
}

// Every type, so that appsrv.ini has sections to write too.
void make_connections(const std::string& root)
{
    const char* types[] = {"RDP", "ICA", "XDM", "Web", "DAS", "Other"};
    std::string tree = "Version 1.000\n";
    for (int i = 0; i < connections; ++i) {
        connection_record record;
        record[MC_NAME] = "Connection " + std::to_string(i);
        record[MC_TYPE] = types[i % 6];
        record[MC_SERVER] = "server" + std::to_string(i) + ".example";
        record[MC_ICA_LOCATION] = record[MC_ICA_PROTOCOL] = record[MC_COLOURS] = "Default";
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        insert_master_row(master_connection_list, -1, record);
        if (i < assigned)
            tree += "TRUE\n" + record[MC_NAME] + "\n" + record[MC_TYPE] + "\nFALSE\nFALSE\nFALSE\n";
    }
    save_master_list();
    write(root + "/home/user0/kestrel.inf", tree);
    current_user_filename = root + "/home/user0/kestrel.inf";
}

double open_advanced()
{
    return gui_timing::until_mapped("Advanced Configuration", [] { advanced_dialog(nullptr, root_window); });
}

double cancel_advanced()
{
    GtkWidget* window = gui_timing::window_titled("Advanced Configuration");
    return gui_timing::timed([&] { gtk_widget_destroy(window); });
}

// An edited Web connection saved: the master list and appsrv.ini are written whole.
double save_web_editor()
{
    GtkTreePath* path = gtk_tree_path_new_from_indices(3, -1);
    gui_timing::until_mapped("Web connection", [&] { web_dialog(nullptr, GTK_TREE_MODEL(master_connection_list), path); });
    gtk_tree_path_free(path);
    GtkWidget* window = gui_timing::window_titled("Web connection");
    // "_Save" is the window's default button.
    return gui_timing::timed([&] { gtk_button_clicked(GTK_BUTTON(gtk_window_get_default_widget(GTK_WINDOW(window)))); });
}

}  // namespace

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    const gui_timing::scratch_root scratch;
    const std::string& root = scratch.path();
    for (const char* dir : {"/etc/.kestrel", "/tmp/.kestrel"})
        g_mkdir_with_parents((root + dir).c_str(), 0755);
    ica_dir = root + "/etc/.kestrel";
    tmp_dir = root + "/tmp/.kestrel";
    current_user_name = selected_user_name = "user0";
    misc_widgets = g_new0(GtkWidget*, 3);
    root_window = misc_widgets[0] = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
    selected_user_connection_tree = create_user_tree_store();
    make_accounts(root);
    make_connections(root);
    gui_timing::watch_maps();

    std::vector<double> opening, saving, cancelling, writing, reloading;
    for (int i = 0; i < runs; ++i) {
        opening.push_back(open_advanced());
        saving.push_back(save_web_editor());
        cancelling.push_back(cancel_advanced());
        writing.push_back(gui_timing::timed(save_master_list));
        reloading.push_back(gui_timing::timed(cancel_advanced_cb));
    }
    std::printf("%d connections, %d accounts:\n", connections, accounts);
    gui_timing::report("Advanced opens (call to mapped)", opening);
    gui_timing::report("editor Save (master list, appsrv.ini)", saving);
    gui_timing::report("Cancel (master list reloaded)", cancelling);
    gui_timing::report("  of which the lists written", writing);
    gui_timing::report("  of which the master list read again", reloading);
    return 0;
}
