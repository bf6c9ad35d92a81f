#include "gui/shell_window_fixture.h"

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
    ASSERT_EQ(g_list_length(columns), 3u);
    auto column = [&](int n) { return GTK_TREE_VIEW_COLUMN(g_list_nth_data(columns, n)); };
    labels titles{gtk_tree_view_column_get_title(column(0)), gtk_tree_view_column_get_title(column(1)),
                  gtk_tree_view_column_get_title(column(2))};
    EXPECT_EQ(titles, (labels{"Name", "Type", "Status"}));
    EXPECT_GE(gtk_tree_view_column_get_width(column(0)), 290);
    EXPECT_EQ(gtk_tree_view_column_get_fixed_width(column(1)), 45);
    EXPECT_EQ(gtk_tree_view_column_get_fixed_width(column(2)), 102);
    g_list_free(columns);
    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    // A window state change (restored after minimising) expands the rows again. Xvfb has
    // no window manager, so the event is sent directly.
    gtk_tree_view_collapse_all(view());
    GdkEventWindowState state{GDK_WINDOW_STATE, gtk_widget_get_window(root_window), FALSE,
                              GDK_WINDOW_STATE_ICONIFIED, GdkWindowState(0)};
    gboolean handled = FALSE;
    g_signal_emit_by_name(root_window, "window-state-event", &state, &handled);
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    gtk_tree_path_free(desk);
    save_screenshot(root_window, "main_window");
}

TEST_F(shell_window_test, connect_and_double_click_start_a_row_once)
{
    open_main_window({false, false});
    GtkWidget* connect = find_button(root_window, "_Connect");
    gtk_button_clicked(GTK_BUTTON(connect));  // nothing selected
    EXPECT_EQ(cell("0", TC_STATUS), "Not Connected");
    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(view()), desk);
    gtk_button_clicked(GTK_BUTTON(connect));
    EXPECT_EQ(cell("0", TC_STATUS), "Active");
    std::string pid = cell("0", TC_PID);
    gtk_button_clicked(GTK_BUTTON(connect));
    gtk_tree_view_row_activated(view(), desk, gtk_tree_view_get_column(view(), 0));
    EXPECT_EQ(cell("0", TC_PID), pid);
    gtk_tree_path_free(desk);

    GtkTreePath* backup = gtk_tree_path_new_from_string("0:0");
    gtk_tree_view_row_activated(view(), backup, gtk_tree_view_get_column(view(), 0));
    gtk_tree_path_free(backup);
    EXPECT_EQ(cell("0:0", TC_STATUS), "Active");
}

TEST_F(shell_window_test, settings_starts_the_first_control_panel_found)
{
    open_main_window({false, false});
    GtkWidget* settings = find_button(root_window, "_Settings");
    gtk_button_clicked(GTK_BUTTON(settings));  // neither program: nothing happens
    for (std::string program : {"zarvocontrolpanel", "xfce-setting-show"})
        add_program("usr/bin/" + program, "echo " + program + " >> " + (root / "started"));
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] { return read_file_text(root / "started") == "zarvocontrolpanel\n"; }));
    unlink((root / "usr/bin/zarvocontrolpanel").c_str());
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] { return read_file_text(root / "started") == "zarvocontrolpanel\nxfce-setting-show\n"; }));
}

TEST_F(shell_window_test, shared_dialogs_show_their_texts_and_hide)
{
    open_main_window({false, false});
    const std::string reconnect = "\nPlease close this dialog when you're ready to connect.\n";
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(error_label)), "\nWarning dialogs are enabled.\n");
    EXPECT_EQ(gtk_label_get_text(GTK_LABEL(reconnect_label)), reconnect);
    std::string shown;
    answer_next_dialog(&shown);
    run_reconnect_dialog();
    EXPECT_EQ(shown, reconnect);
    EXPECT_FALSE(gtk_widget_get_visible(reconnect_dialog));
}

TEST_F(shell_window_test, help_shows_its_file_or_the_support_site_while_the_main_window_hides)
{
    open_main_window({false, false});
    GtkWidget* help_button = find_button(root_window, "_Help");
    gtk_button_clicked(GTK_BUTTON(help_button));
    GtkWidget* window = find_window("Help");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(find_widget(window, GTK_TYPE_TEXT_VIEW), nullptr);
    std::string text = label_text(window);
    EXPECT_EQ(text.rfind("KestrelleVersion 1.3.3\n", 0), 0u) << text;
    EXPECT_NE(text.find("administrator's guide"), std::string::npos);
    gtk_widget_destroy(window);

    const std::string help = "Connecting\n" + std::string(450, 'x') + "\nPress Connect.\n";
    make_dirs(root / "etc/.kestrel");
    write_file(root / "etc/.kestrel/kestrel.help", help);
    gtk_button_clicked(GTK_BUTTON(help_button));
    pump_events();
    window = find_window("Help");
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

}  // namespace
