// The main window and the ways out of it: Exit, Shutdown, closing, End Session, signals.
#include "gui/gui_support.h"

#include "launch/spawn.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "shell/exit.h"
#include "shell/main_window.h"
#include "store/user_file.h"

namespace {

using labels = std::vector<std::string>;

TEST_F(shell_window_test, buttons_follow_mode_and_rights)
{
    struct expectation { shell_setup setup; labels buttons; } table[] = {
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

// A window state change (restored after minimising) expands the rows again. Xvfb has no
// window manager, so the event is sent directly.
TEST_F(shell_window_test, the_tree_is_shown_expanded_and_expands_again_when_restored)
{
    open_main_window({false, true});
    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    gtk_tree_view_collapse_all(view());
    GdkEventWindowState state{GDK_WINDOW_STATE, gtk_widget_get_window(root_window), FALSE,
                              GDK_WINDOW_STATE_ICONIFIED, GdkWindowState(0)};
    gboolean handled = FALSE;
    g_signal_emit_by_name(root_window, "window-state-event", &state, &handled);
    EXPECT_TRUE(gtk_tree_view_row_expanded(view(), desk));
    gtk_tree_path_free(desk);
    save_screenshot(root_window, "main_window");
}

// Start-up makes the list on the empty tree, then loads the user's rows into it, each
// group expanded as it comes in.
TEST_F(shell_window_test, groups_loaded_into_the_shown_list_come_in_expanded)
{
    gtk_tree_store_clear(current_user_connection_tree);
    open_main_window({false, false});
    const std::string group = "TRUE\nDesk\nOther\nFALSE\nFALSE\nFALSE\nFALSE\nBackup\nOther\nFALSE\nFALSE\nFALSE\n";
    write_file(root / "kestrel.inf", "Version 1.000\n" + group + "TRUE\nBackup\nOther\nFALSE\nFALSE\nFALSE\n" + group);
    make_connection_tree(current_user_connection_tree, (root / "kestrel.inf").c_str(), 6, expand_connection_group);
    EXPECT_EQ(dump_model(GTK_TREE_MODEL(current_user_connection_tree), {TC_NAME}),
              "Desk\n  Backup\nBackup\nDesk\n  Backup\n");
    for (const char* primary : {"0", "2"}) {
        GtkTreePath* path = gtk_tree_path_new_from_string(primary);
        EXPECT_TRUE(gtk_tree_view_row_expanded(view(), path)) << primary;
        gtk_tree_path_free(path);
    }
}

// A view whose Name column sizes itself to its contents the toolkit's way, with the same
// least width as the main window's: the widths a person should see.
GtkWidget* content_sized_view(GtkTreeViewColumn* name_column)
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(current_user_connection_tree));
    GtkTreeViewColumn* column = gtk_tree_view_column_new_with_attributes(
        "Name", gtk_cell_renderer_text_new(), "text", TC_NAME, nullptr);
    gtk_tree_view_column_set_resizable(column, TRUE);
    gtk_tree_view_column_set_min_width(column, gtk_tree_view_column_get_min_width(name_column));
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), column);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window), view);
    gtk_tree_view_expand_all(GTK_TREE_VIEW(view));
    gtk_widget_show_all(window);
    return view;
}

// The Name column is as wide as its widest name, primary or secondary, at the map or added
// later, and never less than its minimum; Type and Status keep their widths.
TEST_F(shell_window_test, the_name_column_fits_its_widest_name)
{
    const std::string long_name(150, 'W');
    struct { const char* rename_path; bool after_map; } table[] = {
        {nullptr, false}, {"0", false}, {"0:0", false}, {"0:0", true},
    };
    for (const auto& c : table) {
        SCOPED_TRACE(std::string(c.rename_path ? c.rename_path : "none") + (c.after_map ? " after the map" : ""));
        GtkTreeIter renamed = row(c.rename_path ? c.rename_path : "0");
        if (c.rename_path && !c.after_map)
            gtk_tree_store_set(current_user_connection_tree, &renamed, TC_NAME, long_name.c_str(), -1);
        open_main_window({false, false});
        if (c.after_map)
            gtk_tree_store_set(current_user_connection_tree, &renamed, TC_NAME, long_name.c_str(), -1);
        GtkTreeViewColumn* name = gtk_tree_view_get_column(view(), 0);
        std::vector<int> fixed_widths;
        for (int i : {1, 2})
            fixed_widths.push_back(gtk_tree_view_column_get_fixed_width(gtk_tree_view_get_column(view(), i)));
        GtkWidget* expected = content_sized_view(name);
        pump_events(300);
        GtkTreeViewColumn* expected_name = gtk_tree_view_get_column(GTK_TREE_VIEW(expected), 0);
        EXPECT_EQ(gtk_tree_view_column_get_width(name), gtk_tree_view_column_get_width(expected_name));
        EXPECT_EQ(gtk_tree_view_column_get_width(name) > gtk_tree_view_column_get_min_width(name),
                  c.rename_path != nullptr);
        EXPECT_TRUE(gtk_tree_view_column_get_resizable(name));
        // The last column takes whatever room is left over.
        EXPECT_EQ(gtk_tree_view_column_get_width(gtk_tree_view_get_column(view(), 1)), fixed_widths[0]);
        EXPECT_GE(gtk_tree_view_column_get_width(gtk_tree_view_get_column(view(), 2)), fixed_widths[1]);
        if (c.rename_path)
            save_screenshot(root_window, "main_window_long_name");
        gtk_widget_destroy(gtk_widget_get_toplevel(expected));
        gtk_widget_destroy(root_window);
        if (c.rename_path)
            gtk_tree_store_set(current_user_connection_tree, &renamed, TC_NAME,
                               std::string(c.rename_path) == "0" ? "Desk" : "Backup", -1);
    }
}

// Connect starts the selected row, a double click the activated one.
TEST_F(shell_window_test, connect_and_double_click_start_their_row)
{
    open_main_window({false, false});
    GtkWidget* connect = find_button(root_window, "_Connect");
    gtk_button_clicked(GTK_BUTTON(connect));  // nothing selected
    EXPECT_EQ(cell("0", TC_STATUS), "Not Connected");
    GtkTreePath* desk = gtk_tree_path_new_from_string("0");
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(view()), desk);
    gtk_button_clicked(GTK_BUTTON(connect));
    gtk_tree_path_free(desk);
    GtkTreePath* backup = gtk_tree_path_new_from_string("0:0");
    gtk_tree_view_row_activated(view(), backup, gtk_tree_view_get_column(view(), 0));
    gtk_tree_path_free(backup);
    EXPECT_EQ(cell("0", TC_STATUS) + " " + cell("0:0", TC_STATUS), "Active Active");
}

TEST_F(shell_window_test, settings_starts_the_first_control_panel_found)
{
    open_main_window({false, false});
    GtkWidget* settings = find_button(root_window, "_Settings");
    gtk_button_clicked(GTK_BUTTON(settings));  // neither program: nothing happens
    for (std::string program : {"zarvocontrolpanel", "xfce-setting-show"})
        add_program(root / ("usr/bin/" + program), "echo " + program + " >> " + (root / "started"));
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] { return read_file_text(root / "started") == "zarvocontrolpanel\n"; }));
    unlink((root / "usr/bin/zarvocontrolpanel").c_str());
    gtk_button_clicked(GTK_BUTTON(settings));
    EXPECT_TRUE(wait_for([&] { return read_file_text(root / "started") == "zarvocontrolpanel\nxfce-setting-show\n"; }));
}

// The reconnect prompt and the error dialog wait for their answer, then hide until the
// next time. The error dialog, made when first shown, shows the latest text set before.
TEST_F(shell_window_test, the_shared_dialogs_are_answered_and_hide)
{
    open_main_window({false, false});
    std::string shown;
    answer_next_dialog(&shown);
    run_reconnect_dialog();
    EXPECT_EQ(shown, "\nPlease close this dialog when you're ready to connect.\n");
    EXPECT_FALSE(gtk_widget_get_visible(reconnect_dialog));

    set_error_text("\nfirst\n");
    set_error_text("\nsecond\n");
    for (const char* text : {"\nsecond\n", "\nthird\n"}) {
        answer_next_dialog(&shown);
        run_error_dialog();
        EXPECT_EQ(shown, text);
        EXPECT_FALSE(gtk_widget_get_visible(error_dialog));
        set_error_text("\nthird\n");
    }
}

// Without its file Help shows a fixed text and no text view; with it, the file's text.
TEST_F(shell_window_test, help_shows_its_file_while_the_main_window_hides)
{
    open_main_window({false, false});
    GtkWidget* help_button = find_button(root_window, "_Help");
    gtk_button_clicked(GTK_BUTTON(help_button));
    GtkWidget* window = find_window("Help");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(find_widget(window, GTK_TYPE_TEXT_VIEW), nullptr);
    gtk_widget_destroy(window);

    // A long line comes in pieces that end inside a character, and a Latin-1 line is
    // shown converted: the pieces are joined before the encoding is checked.
    std::string accents;
    for (int i = 0; i < 150; ++i)
        accents += "\xc3\xa9";
    write_file(root / "etc/.kestrel/kestrel.help", accents + "\nCaf\xe9 cr\xe8me\nPress Connect.\n");
    const std::string help = accents + "\nCaf\xc3\xa9 cr\xc3\xa8me\nPress Connect.\n";
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

constexpr const char* warning = "\nPlease close all active connections before exiting.";

class exit_test : public shell_window_test {
protected:
    void start_desk()
    {
        GtkTreeIter desk = row("0");
        spawn_connection(GTK_TREE_MODEL(current_user_connection_tree), &desk);
        ASSERT_EQ(cell("0", TC_STATUS), "Active");
    }
    std::string log_text() { return read_file_text(root / "tmp/zarvoca.log"); }
};

void send_delete_event(GtkWidget* window)
{
    GdkEvent* event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->any.send_event = TRUE;
    gtk_main_do_event(event);
    gdk_event_free(event);
}

// Nothing here may end the program; only the shell's close opens End Session.
TEST_F(exit_test, exit_shutdown_and_close_by_mode_rights_and_sessions)
{
    // The button pressed (null: the window is closed), the warning shown, the window kept.
    struct expectation { shell_setup setup; bool session; const char *button, *shown; bool window_kept; } table[] = {
        {{true, false}, false, nullptr, "", true},
        {{false, false}, true, "E_xit", warning, true},
        {{true, true}, true, "Sh_utdown", warning, true},
        {{false, true}, true, nullptr, warning, false},  // the window goes, the program stays
        {{false, false}, true, nullptr, warning, true},
    };
    for (const expectation& e : table) {
        open_main_window(e.setup);
        if (e.session && cell("0", TC_PID) == "0")
            start_desk();
        std::string shown;
        if (e.session)
            answer_next_dialog(&shown);
        if (e.button)
            gtk_button_clicked(GTK_BUTTON(find_button(root_window, e.button)));
        else
            send_delete_event(root_window);
        pump_events();
        EXPECT_EQ(shown, e.shown);
        EXPECT_EQ(root_window != nullptr, e.window_kept);
        EXPECT_TRUE(is_directory(tmp_dir));
        GtkWidget* end_session = find_window("End Session");
        EXPECT_EQ(end_session != nullptr, !e.session);
        if (end_session) {
            EXPECT_FALSE(gtk_widget_get_visible(root_window));
            gtk_button_clicked(GTK_BUTTON(find_button(end_session, "_Cancel")));
            pump_events();
            EXPECT_EQ(find_window("End Session"), nullptr);
            EXPECT_TRUE(gtk_widget_get_visible(root_window));
        }
        if (root_window)
            gtk_widget_destroy(root_window);
    }
    EXPECT_EQ(log_text().find("Cleaning"), std::string::npos);
}

// Each row ends with its last choice; the machine's shutdown is left to remove the support folder.
TEST_F(exit_test, end_session_offers_and_runs_what_the_user_may_do)
{
    for (std::string program : {"reboot", "poweroff"})
        add_program(root / ("bin/" + program), "echo " + program + " >> " + (root / "machine"));
    struct expectation { shell_setup setup; std::string choices; int last; } table[] = {
        {{true, false, false, false}, "Quit current session\n", 0},
        {{true, false, false, true}, "Quit current session\nReboot the computer\n", 1},
        {{true, false, true, false}, "Quit current session\nTurn off computer\n", 1},
        {{true, true}, "Quit current session\nTurn off computer\nReboot the computer\n", 2},
    };
    for (const expectation& e : table) {
        open_main_window(e.setup);
        gtk_button_clicked(GTK_BUTTON(find_button(root_window, "Sh_utdown")));
        GtkWidget* window = find_window("End Session");
        ASSERT_NE(window, nullptr);
        GtkComboBox* choice = GTK_COMBO_BOX(find_widget(window, GTK_TYPE_COMBO_BOX));
        EXPECT_EQ(dump_model(gtk_combo_box_get_model(choice), {0}), e.choices);
        GtkWidget* entry = find_widget(window, GTK_TYPE_ENTRY);
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "Quit current session");
        EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry)));
        if (e.last == 2)
            save_screenshot(window, "end_session");
        if (e.last == 0) {
            gtk_widget_destroy(window);
        } else {
            gtk_combo_box_set_active(choice, e.last);
            gtk_button_clicked(GTK_BUTTON(find_button(window, "_Ok")));
            pump_events();
            EXPECT_EQ(find_window("End Session"), nullptr);
        }
        gtk_widget_destroy(root_window);
    }
    EXPECT_EQ(read_file_text(root / "machine"), "reboot\npoweroff\nreboot\n");
    EXPECT_TRUE(is_directory(tmp_dir));
}

// The answer to a signal waits while a modal dialog is up (SIGTERM with a running session
// and a clean exit are checked end to end in tests/e2e/startup.sh).
TEST_F(exit_test, a_signal_is_answered_only_after_the_modal_dialog_closes)
{
    install_signal_handlers();
    watch_signals();
    open_main_window({false, false});
    write_file(tmp_dir + "/running", "");
    static std::string log_file;
    log_file = root / "tmp/zarvoca.log";
    g_timeout_add(50, [](gpointer) -> gboolean {
        g_timeout_add(100, [](gpointer) -> gboolean { raise(SIGHUP); return FALSE; }, nullptr);
        g_timeout_add(600, [](gpointer) -> gboolean {
            EXPECT_EQ(read_file_text(log_file).find("Caught signal 1."), std::string::npos);
            gtk_dialog_response(GTK_DIALOG(error_dialog), GTK_RESPONSE_CLOSE);
            return FALSE;
        }, nullptr);
        show_error("\nA message.\n");
        return FALSE;
    }, nullptr);
    static bool timed_out = false;
    const guint guard = g_timeout_add(3000, [](gpointer) -> gboolean { timed_out = true; gtk_main_quit(); return FALSE; }, nullptr);
    gtk_main();
    ASSERT_FALSE(timed_out) << "the main loop was not left";
    g_source_remove(guard);
    EXPECT_FALSE(path_exists(tmp_dir));
    EXPECT_NE(log_text().find("Caught signal 1.\nCleaning " + tmp_dir + " and exiting with status 0.\n"),
              std::string::npos);
}

}  // namespace
