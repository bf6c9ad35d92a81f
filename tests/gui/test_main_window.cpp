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
