#include "gui/shell_window_fixture.h"

#include "launch/spawn.h"
#include "platform/log.h"

namespace {

void add_connection(GtkTreeIter* parent, GtkTreeIter* row, const std::string& name, bool persistent)
{
    connection_record record;
    record[MC_NAME] = name;
    record[MC_TYPE] = "Other";
    record[MC_PING_PORT] = "0";
    record[MC_PROGRAM] = "sleep 4";
    insert_master_row(master_connection_list, -1, record);
    gtk_tree_store_append(current_user_connection_tree, row, parent);
    write_tree_row(current_user_connection_tree, row, {parent == nullptr, name, "Other", false, persistent});
}

}  // namespace

shell_state::shell_state(const temp_dir& root)
{
    make_dirs(root / "tmp/.kestrel");
    tmp_dir = root / "tmp/.kestrel";
    log_open();
    old_path_ = std::getenv("PATH");
    setenv("PATH", (root / "bin:" + old_path_).c_str(), 1);
    misc_widgets = g_new0(GtkWidget*, 3);
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
}

shell_state::~shell_state()
{
    for (GtkWidget* window : {root_window, error_dialog, reconnect_dialog})
        if (window)
            gtk_widget_destroy(window);
    pump_events(20);
    root_window = error_dialog = reconnect_dialog = nullptr;
    g_clear_object(&master_connection_list);
    g_clear_object(&current_user_connection_tree);
    g_free(misc_widgets);
    misc_widgets = nullptr;
    log_close();
    setenv("PATH", old_path_.c_str(), 1);
}

void shell_window_test::SetUp()
{
    GtkTreeIter desk, backup;
    add_connection(nullptr, &desk, "Desk", true);
    add_connection(&desk, &backup, "Backup", false);
}

void shell_window_test::TearDown()
{
    for (const char* connection : {"0", "0:0"}) {
        pid_t pid = session_process_id(std::stoi(cell(connection, TC_PID)));
        if (pid > 0 && kill(pid, SIGKILL) == 0)
            waitpid(pid, nullptr, 0);
    }
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
        add_advanced_button(nullptr);
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

std::string shell_window_test::cell(const char* path, int column) const
{
    GtkTreeIter iter = row(path);
    return model_text(GTK_TREE_MODEL(current_user_connection_tree), &iter, column);
}
