#include "gui/shell_window_fixture.h"

#include "launch/spawn.h"
#include "platform/log.h"

#include <cstdlib>
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

connection_record other_connection(const std::string& name, const std::string& command)
{
    connection_record record;
    record[MC_NAME] = name;
    record[MC_TYPE] = "Other";
    record[MC_PING_PORT] = "0";
    record[MC_PROGRAM] = command;
    return record;
}

void add_tree_row(GtkTreeIter* parent, GtkTreeIter* row, const std::string& name, bool persistent)
{
    gtk_tree_store_append(current_user_connection_tree, row, parent);
    tree_row values;
    values.primary = parent == nullptr;
    values.name = name;
    values.type = "Other";
    values.persistent = persistent;
    write_tree_row(current_user_connection_tree, row, values);
}

}  // namespace

void shell_window_test::SetUp()
{
    make_dirs(root / "tmp/.kestrel");
    make_dirs(root / "bin");
    tmp_dir = root / "tmp/.kestrel";
    log_open();
    old_path = std::getenv("PATH");
    setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
    connect_info = static_cast<char*>(g_malloc0(connect_info_size));
    misc_widgets = g_new0(GtkWidget*, 3);
    master_connection_list = create_master_store();
    insert_master_row(master_connection_list, -1, other_connection("Backup", "sleep 4"));
    insert_master_row(master_connection_list, -1, other_connection("Desk", "sleep 4"));
    current_user_connection_tree = create_user_tree_store();
    GtkTreeIter desk, backup;
    add_tree_row(nullptr, &desk, "Desk", true);
    add_tree_row(&desk, &backup, "Backup", false);
}

void shell_window_test::TearDown()
{
    GtkTreeModel* model = GTK_TREE_MODEL(current_user_connection_tree);
    gtk_tree_model_foreach(model, [](GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer) -> gboolean {
        pid_t pid = session_process_id(std::atoi(model_text(model, iter, TC_PID).c_str()));
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        return FALSE;
    }, nullptr);
    for (GtkWidget* window : {root_window, error_dialog, reconnect_dialog})
        if (window)
            gtk_widget_destroy(window);
    pump_events(20);
    root_window = error_dialog = reconnect_dialog = nullptr;
    g_object_unref(master_connection_list);
    g_object_unref(current_user_connection_tree);
    g_free(connect_info);
    g_free(misc_widgets);
    connect_info = nullptr;
    misc_widgets = nullptr;
    log_close();
    setenv("PATH", old_path.c_str(), 1);
}

void shell_window_test::open_main_window(shell_setup setup)
{
    shell_mode = setup.shell;
    user_has_root = setup.admin;
    allow_turnoff = setup.turnoff || setup.admin;
    allow_reboot = setup.reboot || setup.admin;
    build_main_window();
    finish_main_window();
    if (user_has_root)
        add_advanced_button();
    show_main_window();
    pump_events();
}

GtkTreeView* shell_window_test::view() const
{
    return GTK_TREE_VIEW(find_widget(root_window, GTK_TYPE_TREE_VIEW));
}

GtkTreeIter shell_window_test::row(const char* path) const
{
    GtkTreeIter iter{};
    gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(current_user_connection_tree), &iter, path);
    return iter;
}

std::string shell_window_test::row_text(const char* path) const
{
    GtkTreeIter iter = row(path);
    GtkTreeModel* model = GTK_TREE_MODEL(current_user_connection_tree);
    return model_text(model, &iter, TC_NAME) + "|" + model_text(model, &iter, TC_STATUS);
}

void shell_window_test::add_program(const std::string& name, const std::string& body)
{
    std::string path = root / ("bin/" + name);
    write_file(path, "#!/bin/sh\n" + body + "\n");
    chmod(path.c_str(), 0755);
}

void shell_window_test::send_delete_event(GtkWidget* window)
{
    GdkEvent* event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->any.send_event = TRUE;
    gtk_main_do_event(event);
    gdk_event_free(event);
}
