#include "gui/shell_window_fixture.h"

#include "launch/spawn.h"
#include "shell/exit.h"
#include "shell/status_monitor.h"

#include <csignal>
#include <sys/wait.h>

namespace {

using labels = std::vector<std::string>;

TEST_F(shell_window_test, buttons_follow_mode_and_rights)
{
    struct expectation {
        shell_setup setup;
        labels buttons;
    } table[] = {
        {{false, false}, {"_Connect", "E_xit", "_Settings", "_Help"}},
        {{true, false}, {"_Connect", "Sh_utdown", "_Settings", "_Help"}},
        {{false, true}, {"_Connect", "E_xit", "_Settings", "Ad_vanced", "_Help"}},
        {{true, true}, {"_Connect", "Sh_utdown", "_Settings", "Ad_vanced", "_Help"}},
    };
    for (const expectation& e : table) {
        open_main_window(e.setup);
        EXPECT_EQ(button_labels(root_window), e.buttons) << "shell " << e.setup.shell << " admin " << e.setup.admin;
        EXPECT_TRUE(gtk_widget_has_default(find_button(root_window, "_Connect")));
        gtk_widget_destroy(root_window);
    }
}

TEST_F(shell_window_test, window_shows_the_tree_expanded_in_three_columns)
{
    open_main_window({false, true});
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(root_window)), "Kestrelle");
    EXPECT_EQ(misc_widgets[0], root_window);
    EXPECT_NE(gtk_window_get_icon(GTK_WINDOW(root_window)), nullptr);
    GList* columns = gtk_tree_view_get_columns(view());
    labels titles;
    for (GList* item = columns; item; item = item->next)
        titles.push_back(gtk_tree_view_column_get_title(GTK_TREE_VIEW_COLUMN(item->data)));
    EXPECT_EQ(titles, (labels{"Name", "Type", "Status"}));
    EXPECT_GE(gtk_tree_view_column_get_width(GTK_TREE_VIEW_COLUMN(g_list_nth_data(columns, 0))), 290);
    EXPECT_EQ(gtk_tree_view_column_get_fixed_width(GTK_TREE_VIEW_COLUMN(g_list_nth_data(columns, 1))), 45);
    EXPECT_EQ(gtk_tree_view_column_get_fixed_width(GTK_TREE_VIEW_COLUMN(g_list_nth_data(columns, 2))), 102);
    g_list_free(columns);
    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    // Any change of the window's state (here: restored after minimising) expands the
    // rows again. Xvfb has no window manager, so the state event is sent directly.
    gtk_tree_view_collapse_all(view());
    GdkEventWindowState state{};
    state.type = GDK_WINDOW_STATE;
    state.window = gtk_widget_get_window(root_window);
    state.changed_mask = GDK_WINDOW_STATE_ICONIFIED;
    gboolean handled = FALSE;
    g_signal_emit_by_name(root_window, "window-state-event", &state, &handled);
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    gtk_tree_path_free(desk);
    save_screenshot(root_window, "main_window");
}

TEST_F(shell_window_test, connect_starts_the_selected_row_once)
{
    open_main_window({false, false});
    GtkWidget* connect = find_button(root_window, "_Connect");
    gtk_button_clicked(GTK_BUTTON(connect));  // nothing selected: nothing starts
    EXPECT_EQ(row_text("0"), "Desk|Not Connected");

    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(view()), desk);
    gtk_tree_path_free(desk);
    gtk_button_clicked(GTK_BUTTON(connect));
    EXPECT_EQ(row_text("0"), "Desk|Active");
    GtkTreeIter iter = row("0");
    std::string pid = model_text(GTK_TREE_MODEL(current_user_connection_tree), &iter, TC_PID);
    gtk_button_clicked(GTK_BUTTON(connect));  // an active row is not started twice
    EXPECT_EQ(model_text(GTK_TREE_MODEL(current_user_connection_tree), &iter, TC_PID), pid);
    save_screenshot(root_window, "main_window_active");

    // The session ends: the next poll shows it, and the early end of a persistent
    // primary fails over to its secondary.
    kill(session_process_id(std::stoi(pid)), SIGKILL);
    siginfo_t ended{};
    waitid(P_PID, session_process_id(std::stoi(pid)), &ended, WEXITED | WNOWAIT);
    update_status(current_user_connection_tree);
    EXPECT_EQ(row_text("0"), "Desk|Not Connected");
    EXPECT_EQ(row_text("0:0"), "Backup|Active");
}

TEST_F(shell_window_test, double_click_starts_a_row)
{
    open_main_window({false, false});
    GtkTreePath* backup = gtk_tree_path_new_from_string("0:0");
    gtk_tree_view_row_activated(view(), backup, gtk_tree_view_get_column(view(), 0));
    gtk_tree_path_free(backup);
    EXPECT_EQ(row_text("0:0"), "Backup|Active");
}

TEST_F(shell_window_test, settings_starts_the_first_control_panel_found)
{
    open_main_window({false, false});
    GtkWidget* settings = find_button(root_window, "_Settings");
    gtk_button_clicked(GTK_BUTTON(settings));  // neither program: nothing happens
    make_dirs(root / "usr/bin");
    for (const char* program : {"zarvocontrolpanel", "xfce-setting-show"}) {
        std::string path = root / (std::string("usr/bin/") + program);
        write_file(path, "#!/bin/sh\necho " + std::string(program) + " >> " + (root / "started") + "\n");
        chmod(path.c_str(), 0755);
    }
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] { return read_file_text(root / "started") == "zarvocontrolpanel\n"; }));
    unlink((root / "usr/bin/zarvocontrolpanel").c_str());
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] {
        return read_file_text(root / "started") == "zarvocontrolpanel\nxfce-setting-show\n";
    }));
}

TEST_F(shell_window_test, shared_dialogs_show_their_texts_and_hide)
{
    open_main_window({false, false});
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(error_label)), "\nWarning dialogs are enabled.\n");
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(reconnect_label)),
                 "\nPlease close this dialog when you're ready to connect.\n");
    std::string shown;
    answer_next_dialog(&shown);
    run_reconnect_dialog();
    EXPECT_EQ(shown, "\nPlease close this dialog when you're ready to connect.\n");
    EXPECT_FALSE(gtk_widget_get_visible(reconnect_dialog));
}

TEST_F(shell_window_test, help_shows_the_help_file_while_the_main_window_hides)
{
    open_main_window({false, false});
    std::string long_line(450, 'x');
    std::string help = "Connecting\n" + long_line + "\nPress Connect.\n";
    make_dirs(root / "etc/.kestrel");
    write_file(root / "etc/.kestrel/kestrel.help", help);
    gtk_button_clicked(GTK_BUTTON(find_button(root_window, "_Help")));
    pump_events();
    GtkWidget* window = find_window("Help");
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(gtk_widget_get_visible(root_window));
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(find_widget(window, GTK_TYPE_TEXT_VIEW)));
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    char* shown = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
    EXPECT_EQ(shown, help);
    g_free(shown);
    save_screenshot(window, "help");
    gtk_widget_destroy(window);
    EXPECT_TRUE(gtk_widget_get_visible(root_window));
}

TEST_F(shell_window_test, help_without_its_file_points_to_the_support_site)
{
    open_main_window({false, false});
    help_dialog(nullptr, root_window);
    GtkWidget* window = find_window("Help");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(find_widget(window, GTK_TYPE_TEXT_VIEW), nullptr);
    GList* labels_in_window = gtk_container_get_children(GTK_CONTAINER(gtk_bin_get_child(GTK_BIN(window))));
    ASSERT_EQ(g_list_length(labels_in_window), 3u);
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(g_list_nth_data(labels_in_window, 0))), "Kestrelle");
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(g_list_nth_data(labels_in_window, 1))), "Version 1.3.3\n");
    std::string support = gtk_label_get_text(GTK_LABEL(g_list_nth_data(labels_in_window, 2)));
    EXPECT_NE(support.find("administrator's guide"), std::string::npos);
    g_list_free(labels_in_window);
    save_screenshot(window, "help_without_file");
    gtk_widget_destroy(window);
}

}  // namespace
