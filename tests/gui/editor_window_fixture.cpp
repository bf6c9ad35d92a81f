#include "gui/editor_window_fixture.h"

#include "editors/form.h"
#include "ica/paths.h"
#include "keymaps/keymaps.h"
#include "launch/password.h"
#include "launch/spawn.h"
#include "platform/log.h"
#include "shell/globals.h"
#include "shell/widgets.h"
#include "store/master_file.h"
#include "store/models.h"

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace {

GtkListStore* keymap_store(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    GtkListStore* list = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
    for (const auto& [code, name] : rows)
        gtk_list_store_insert_with_values(list, nullptr, -1, KM_CODE, code, KM_DESCRIPTION, name, -1);
    return list;
}

GtkEntry* entry_of(GtkWidget* widget)
{
    return GTK_IS_COMBO_BOX(widget) ? GTK_ENTRY(gtk_bin_get_child(GTK_BIN(widget))) : GTK_ENTRY(widget);
}

}  // namespace

void editor_window_test::SetUp()
{
    for (const char* dir : {"tmp/.kestrel", "etc/.kestrel", "home/ann", "bin"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd", "ann:x:1000:1000::/home/ann:/bin/sh\n");
    tmp_dir = root / "tmp/.kestrel";
    ica_dir = root / "etc/.kestrel";
    wfclient_file = ica_dir + "/wfclient.ini";
    log_open();
    fill_seedchars();
    for (const char* program : {"rdesktop", "X", "xkbcomp", "ping"})
        ASSERT_EQ(symlink(RECORD_ARGV, (root / "bin/" + program).c_str()), 0) << program;
    old_path = std::getenv("PATH");
    setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
    setenv("KEST_FAKE_LOG", (root / "fake.log").c_str(), 1);
    x11_keymap = 1;
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
    selected_user_connection_tree = create_user_tree_store();
    selected_user_name = "ann";
    current_user_filename = root / "home/ann/kestrel.inf";
    rdesktop_keymap_list = keymap_store({{"xx", "Use Default"}, {"intl", "International Europe"},
                                         {"de", "German (Germany)"}, {"da", "Danish"}});
    keymap_list = keymap_store({{"us", "English (US)"}, {"de", "German"}, {"be", "belgian"}});
    main_window = program_window("Advanced Configuration");
    gtk_widget_show(main_window);
    misc_widgets = g_new0(GtkWidget*, 3);
    misc_widgets[0] = main_window;
}

void editor_window_test::TearDown()
{
    for (const char* title : {"Printers", "rdesktop connection", "XDM connection"})
        while (GtkWidget* w = find_window(title))
            gtk_widget_destroy(w);
    gtk_widget_destroy(main_window);
    pump_events(20);
    g_free(misc_widgets);
    misc_widgets = nullptr;
    for (GtkListStore** list : {&master_connection_list, &rdesktop_keymap_list, &keymap_list})
        g_clear_object(list);
    g_clear_object(&current_user_connection_tree);
    g_clear_object(&selected_user_connection_tree);
    unsetenv("KEST_FAKE_LOG");
    setenv("PATH", old_path.c_str(), 1);
    log_close();
}

connection_record with(connection_record record, column_texts columns)
{
    for (const auto& [column, text] : columns)
        record[column] = text;
    return record;
}

void editor_window_test::add_record(const connection_record& record)
{
    const int position = master_insert_position(GTK_TREE_MODEL(master_connection_list), record[MC_NAME]);
    insert_master_row(master_connection_list, position, record);
}

connection_record editor_window_test::master_row(const std::string& name, const std::string& type) const
{
    GtkTreeIter iter;
    if (!find_master_row(master_connection_list, name, type, &iter)) {
        ADD_FAILURE() << "no master row " << name << "/" << type;
        return {};
    }
    return read_master_row(GTK_TREE_MODEL(master_connection_list), &iter);
}

GtkWidget* editor_window_test::open(editor_opener opener, const char* title, const std::string& name,
                                    const std::string& type)
{
    GtkTreeIter iter;
    if (name.empty() || !find_master_row(master_connection_list, name, type, &iter)) {
        opener(nullptr, nullptr, nullptr);
    } else {
        GtkTreePath* path = gtk_tree_model_get_path(GTK_TREE_MODEL(master_connection_list), &iter);
        opener(nullptr, GTK_TREE_MODEL(master_connection_list), path);
        gtk_tree_path_free(path);
    }
    pump_events(10);
    GtkWidget* window = find_window(title);
    EXPECT_NE(window, nullptr) << title;
    return window;
}

GtkWidget* editor_window_test::control(GtkWidget* window, const char* name) const
{
    GtkWidget* w = find_named_widget(window, name);
    EXPECT_NE(w, nullptr) << name;
    return w;
}

std::string editor_window_test::text_of(GtkWidget* window, const char* name) const
{
    return gtk_entry_get_text(entry_of(control(window, name)));
}

void editor_window_test::type_text(GtkWidget* window, const char* name, const std::string& text) const
{
    GtkWidget* widget = control(window, name);
    if (GTK_IS_COMBO_BOX(widget))
        set_combo_text(widget, text);
    else
        gtk_entry_set_text(GTK_ENTRY(widget), text.c_str());
}

void editor_window_test::set_box(GtkWidget* window, const char* name, bool on) const
{
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(control(window, name)), on);
}

bool editor_window_test::box_on(GtkWidget* window, const char* name) const
{
    return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(control(window, name)));
}

void editor_window_test::click(GtkWidget* window, const char* label) const
{
    gtk_button_clicked(GTK_BUTTON(find_button(window, label)));
    pump_events(10);
}

texts editor_window_test::combo_choices(GtkWidget* window, const char* name) const
{
    texts choices;
    GtkTreeModel* model = gtk_combo_box_get_model(GTK_COMBO_BOX(control(window, name)));
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more; more = gtk_tree_model_iter_next(model, &iter))
        choices.push_back(model_text(model, &iter, 0));
    return choices;
}

std::string editor_window_test::launch(const std::string& name, const std::string& type)
{
    GtkTreeIter master;
    if (!find_master_row(master_connection_list, name, type, &master))
        return "no master row";
    gtk_list_store_set(master_connection_list, &master, MC_PING, FALSE, -1);
    GtkTreeIter row;
    gtk_tree_store_insert_with_values(current_user_connection_tree, &row, nullptr, -1, TC_PRIMARY, TRUE,
                                      TC_NAME, name.c_str(), TC_TYPE, type.c_str(), TC_PID, "0", TC_STATUS,
                                      "Not Connected", -1);
    std::remove((root / "fake.log").c_str());
    spawn_connection(GTK_TREE_MODEL(current_user_connection_tree), &row);
    // The child may already have been reaped by spawn_connection; wait for any left.
    while (waitpid(-1, nullptr, 0) > 0) {
    }
    return read_file_text(root / "fake.log");
}
