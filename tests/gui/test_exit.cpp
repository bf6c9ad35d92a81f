#include "gui/shell_window_fixture.h"

#include "launch/spawn.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "shell/exit.h"

#include <csignal>

namespace {

constexpr const char* warning = "\nPlease close all active connections before exiting.";

class exit_test : public shell_window_test {
protected:
    void start_desk()
    {
        GtkTreeIter desk = row("0");
        spawn_connection(GTK_TREE_MODEL(current_user_connection_tree), &desk);
        ASSERT_EQ(row_text("0"), "Desk|Active");
    }
    std::string log_text() { return read_file_text(root / "tmp/zarvoca.log"); }
    // Runs the main loop until it is left, or for at most the given time.
    bool main_loop_ends_within(int milliseconds)
    {
        guint guard = g_timeout_add(milliseconds, [](gpointer ended) -> gboolean {
            *static_cast<bool*>(ended) = false;
            gtk_main_quit();
            return FALSE;
        }, &ended_);
        ended_ = true;
        gtk_main();
        if (ended_)
            g_source_remove(guard);
        return ended_;
    }
    bool ended_ = false;
};

TEST_F(exit_test, exit_is_refused_while_a_session_runs)
{
    open_main_window({false, false});
    start_desk();
    std::string shown;
    answer_next_dialog(&shown);
    gtk_button_clicked(GTK_BUTTON(find_button(root_window, "E_xit")));
    EXPECT_EQ(shown, warning);
    EXPECT_TRUE(is_directory(tmp_dir));
    EXPECT_EQ(log_text().find("Cleaning"), std::string::npos);
}

TEST_F(exit_test, exit_removes_the_support_directory_and_logs_the_result)
{
    open_main_window({false, false});
    write_file(tmp_dir + "/running", "");
    exit_program();
    EXPECT_FALSE(path_exists(tmp_dir));
    EXPECT_NE(log_text().find("Cleaning " + tmp_dir + " and exiting with status 0.\n"), std::string::npos);
}

TEST_F(exit_test, closing_the_window_depends_on_mode_and_rights)
{
    struct expectation {
        shell_setup setup;
        bool warned;
        bool window_kept;
    } table[] = {
        {{false, true}, true, false},  // administrator: warned, the window goes, the program stays
        {{false, false}, true, true},  // other users: warned, the window stays
    };
    for (const expectation& e : table) {
        open_main_window(e.setup);
        start_desk();
        std::string shown;
        answer_next_dialog(&shown);
        send_delete_event(root_window);
        pump_events();
        EXPECT_EQ(shown, e.warned ? warning : "");
        EXPECT_EQ(root_window != nullptr, e.window_kept);
        EXPECT_TRUE(is_directory(tmp_dir));
        if (root_window)
            gtk_widget_destroy(root_window);
    }
}

TEST_F(exit_test, closing_the_shell_opens_end_session_and_keeps_the_window)
{
    open_main_window({true, false});
    send_delete_event(root_window);
    pump_events();
    GtkWidget* end_session = find_window("End Session");
    ASSERT_NE(end_session, nullptr);
    ASSERT_NE(root_window, nullptr);
    EXPECT_FALSE(gtk_widget_get_visible(root_window));
    gtk_button_clicked(GTK_BUTTON(find_button(end_session, "_Cancel")));
    pump_events();
    EXPECT_EQ(find_window("End Session"), nullptr);
    EXPECT_TRUE(gtk_widget_get_visible(root_window));
}

std::vector<std::string> choices_of(GtkWidget* window)
{
    GtkTreeModel* model = gtk_combo_box_get_model(GTK_COMBO_BOX(find_widget(window, GTK_TYPE_COMBO_BOX)));
    std::vector<std::string> choices;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more; more = gtk_tree_model_iter_next(model, &iter))
        choices.push_back(model_text(model, &iter, 0));
    return choices;
}

TEST_F(exit_test, end_session_offers_what_the_user_may_do)
{
    struct expectation {
        shell_setup setup;
        std::vector<std::string> choices;
    } table[] = {
        {{true, false, false, false}, {"Quit current session"}},
        {{true, false, false, true}, {"Quit current session", "Reboot the computer"}},
        {{true, false, true, false}, {"Quit current session", "Turn off computer"}},
        {{true, true}, {"Quit current session", "Turn off computer", "Reboot the computer"}},
    };
    for (const expectation& e : table) {
        open_main_window(e.setup);
        gtk_button_clicked(GTK_BUTTON(find_button(root_window, "Sh_utdown")));
        GtkWidget* window = find_window("End Session");
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(choices_of(window), e.choices);
        GtkWidget* entry = find_widget(window, GTK_TYPE_ENTRY);
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "Quit current session");
        EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry)));
        if (e.choices.size() == 3)
            save_screenshot(window, "end_session");
        gtk_widget_destroy(window);
        gtk_widget_destroy(root_window);
    }
}

TEST_F(exit_test, end_session_runs_reboot_and_poweroff)
{
    add_program("reboot", "echo reboot >> " + (root / "machine"));
    add_program("poweroff", "echo poweroff >> " + (root / "machine"));
    open_main_window({true, true});
    for (int choice : {2, 1}) {
        gtk_button_clicked(GTK_BUTTON(find_button(root_window, "Sh_utdown")));
        GtkWidget* window = find_window("End Session");
        ASSERT_NE(window, nullptr);
        gtk_combo_box_set_active(GTK_COMBO_BOX(find_widget(window, GTK_TYPE_COMBO_BOX)), choice);
        gtk_button_clicked(GTK_BUTTON(find_button(window, "_Ok")));
        pump_events();
        EXPECT_EQ(find_window("End Session"), nullptr);
    }
    EXPECT_EQ(read_file_text(root / "machine"), "reboot\npoweroff\n");
    EXPECT_TRUE(is_directory(tmp_dir));  // the program leaves it to the machine's shutdown
}

TEST_F(exit_test, shutdown_is_refused_while_a_session_runs)
{
    open_main_window({true, true});
    start_desk();
    std::string shown;
    answer_next_dialog(&shown);
    gtk_button_clicked(GTK_BUTTON(find_button(root_window, "Sh_utdown")));
    EXPECT_EQ(shown, warning);
    EXPECT_EQ(find_window("End Session"), nullptr);
}

TEST_F(exit_test, signals_reach_the_exit_from_the_main_loop)
{
    install_signal_handlers();
    watch_signals();
    open_main_window({false, false});
    start_desk();
    // With a session running the signal only brings up the warning.
    std::string shown;
    answer_next_dialog(&shown);
    g_timeout_add(50, [](gpointer) -> gboolean { raise(SIGTERM); return FALSE; }, nullptr);
    EXPECT_FALSE(main_loop_ends_within(1500));
    EXPECT_EQ(shown, warning);
    EXPECT_NE(log_text().find("Caught signal 15.\n"), std::string::npos);

    // A signal that arrives while a modal dialog is open waits until it is closed.
    GtkTreeIter desk = row("0");
    kill(session_process_id(std::stoi(model_text(GTK_TREE_MODEL(current_user_connection_tree), &desk, TC_PID))), SIGKILL);
    gtk_tree_store_set(current_user_connection_tree, &desk, TC_PID, "0", -1);
    static std::string log_file;
    log_file = root / "tmp/zarvoca.log";
    g_timeout_add(50, [](gpointer) -> gboolean {
        g_timeout_add(100, [](gpointer) -> gboolean { raise(SIGHUP); return FALSE; }, nullptr);
        g_timeout_add(600, [](gpointer) -> gboolean {
            // Still inside the dialog: the signal has not been handled yet.
            EXPECT_EQ(read_file_text(log_file).find("Caught signal 1."), std::string::npos);
            gtk_dialog_response(GTK_DIALOG(error_dialog), GTK_RESPONSE_CLOSE);
            return FALSE;
        }, nullptr);
        show_error("\nA message.\n");
        return FALSE;
    }, nullptr);
    EXPECT_TRUE(main_loop_ends_within(3000));
    EXPECT_NE(log_text().find("Caught signal 1.\nCleaning " + tmp_dir + " and exiting with status 0.\n"),
              std::string::npos);
}

}  // namespace
