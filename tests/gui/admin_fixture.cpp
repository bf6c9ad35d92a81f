#include "gui/admin_fixture.h"

#include "admin/advanced.h"
#include "editors/form.h"
#include "ica/paths.h"
#include "platform/log.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/user_file.h"

#include <unistd.h>

void admin_test::SetUp()
{
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/admin", "home/bob"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd",
               "admin:x:" + std::to_string(getuid()) + ":0::/home/admin:/bin/sh\n"
               "svc:x:5:5::/srv/data:/bin/sh\n"
               "bob:x:1001:1001::/home/bob:/bin/sh\n"
               "nobody:x:65534:65534::/home/nobody:/bin/sh\n"
               "Zed:x:1002:1002::/var/lib/home-less:/bin/sh\n");
    write_file(root / "etc/group", "root:x:0:admin\n");
    ica_dir = root / "etc/.kestrel";
    tmp_dir = root / "tmp/.kestrel";
    current_user_name = selected_user_name = "admin";
    current_user_filename = root / "home/admin/kestrel.inf";
    show_gui = 1;
    show_taskbar = kiosk_mode = shell_mode = 0;
    das = firefox = user_has_root = 1;
    misc_widgets = g_new0(GtkWidget*, 3);
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
    selected_user_connection_tree = create_user_tree_store();
    build_main_window();
    finish_main_window();
    add_advanced_button(G_CALLBACK(advanced_dialog));
    show_main_window();
    messages = std::make_unique<message_recorder>();
}

void admin_test::TearDown()
{
    messages.reset();
    GList* windows = gtk_window_list_toplevels();
    for (GList* w = windows; w; w = w->next)
        if (GTK_WIDGET(w->data) != error_dialog && GTK_WIDGET(w->data) != reconnect_dialog &&
            gtk_widget_get_visible(GTK_WIDGET(w->data)))
            gtk_widget_destroy(GTK_WIDGET(w->data));
    g_list_free(windows);
    for (GtkWidget* window : {root_window, error_dialog, reconnect_dialog})
        if (window)
            gtk_widget_destroy(window);
    pump_events(20);
    root_window = error_dialog = reconnect_dialog = nullptr;
    g_object_unref(master_connection_list);
    g_object_unref(current_user_connection_tree);
    g_object_unref(selected_user_connection_tree);
    g_free(misc_widgets);
    misc_widgets = nullptr;
}

std::string admin_test::record(const std::string& name, const std::string& type, bool ping,
                               const std::string& port, const std::map<int, std::string>& columns)
{
    std::string lines = name + "\n" + type + "\n" + (ping ? "Standard echo" : "Don't ping") + "\n" +
                        port + "\n";
    for (int c = 4; c < 35; ++c) {
        auto given = columns.find(c);
        lines += (given != columns.end() ? given->second : c == 4 ? "1" : c >= 33 ? "0" : "") + "\n";
    }
    return lines;
}

std::string admin_test::master(const std::string& records, const std::string& gui)
{
    return "Version 1.000\n" + gui + "\nDon't show taskbar\nNot kiosk\n" + records;
}

void admin_test::load(const std::string& master_text, const std::string& user_tree)
{
    write_file(root / "etc/.kestrel/kestrel.master", master_text);
    write_file(current_user_filename, user_tree);
    make_connection_list(master_connection_list, (root / "etc/.kestrel/kestrel.master").c_str(), 35);
    make_connection_tree(current_user_connection_tree, current_user_filename.c_str(), 6);
    make_connection_tree(selected_user_connection_tree, current_user_filename.c_str(), 6);
}

GtkWidget* admin_test::open_advanced()
{
    gtk_button_clicked(GTK_BUTTON(find_button(root_window, "Ad_vanced")));
    pump_events();
    return find_window("Advanced Configuration");
}

GtkWidget* admin_test::named(GtkWidget* window, const char* name)
{
    GtkWidget* widget = find_named_widget(window, name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void admin_test::select(GtkWidget* window, const char* view, const char* path)
{
    GtkTreeView* tree = GTK_TREE_VIEW(named(window, view));
    GtkTreePath* at = gtk_tree_path_new_from_string(path);
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(tree), at);
    gtk_tree_path_free(at);
}

void admin_test::click(GtkWidget* window, const char* label)
{
    GtkWidget* button = find_button(window, label);
    if (!button)  // an icon button, named by its stock item
        button = find_named_widget(window, label);
    ASSERT_NE(button, nullptr) << label;
    gtk_button_clicked(GTK_BUTTON(button));
    pump_events();
}

std::string admin_test::master_file() const { return read_file_text(root / "etc/.kestrel/kestrel.master"); }

std::string admin_test::user_file(const std::string& user) const
{
    return read_file_text(root / ("home/" + user + "/kestrel.inf"));
}
