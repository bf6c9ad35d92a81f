// The main window's buttons and the ways out of it: Exit, Shutdown, closing, End Session.
// Connect and signals are driven end to end in tests/e2e (connect.sh, startup.sh).
#include "gui/gui_support.h"

#include "launch/spawn.h"
#include "platform/paths.h"

namespace {

constexpr const char* warning = "\nPlease close all active connections before exiting.";

std::string desk_cell(int column)
{
    GtkTreeIter desk{};
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(current_user_connection_tree), &desk);
    return model_text(GTK_TREE_MODEL(current_user_connection_tree), &desk, column);
}

// A user's shell with one persistent connection, "Desk", an "Other" command.
class shell_window_test : public gui_test {
protected:
    shell_window_test()
    {
        connection_record desk;
        desk[MC_NAME] = "Desk";
        desk[MC_TYPE] = "Other";
        desk[MC_PING_PORT] = "0";
        desk[MC_PROGRAM] = "sleep 4";
        insert_master_row(master_connection_list, -1, desk);
        GtkTreeIter row;
        gtk_tree_store_append(current_user_connection_tree, &row, nullptr);
        write_tree_row(current_user_connection_tree, &row, {true, "Desk", "Other", false, true});
    }
    ~shell_window_test() override
    {
        pid_t pid = session_process_id(std::stoi(desk_cell(TC_PID)));
        if (pid > 0 && kill(pid, SIGKILL) == 0)
            waitpid(pid, nullptr, 0);
    }
};

void send_delete_event(GtkWidget* window)
{
    GdkEvent* event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->any.send_event = TRUE;
    gtk_main_do_event(event);
    gdk_event_free(event);
}

// The buttons follow the mode and the rights; nothing here may end the program, and only
// the shell's way out with no session running opens End Session.
TEST_F(shell_window_test, exit_shutdown_and_close_by_mode_rights_and_sessions)
{
    const texts user{"_Connect", "E_xit", "_Settings", "_Help"}, shell{"_Connect", "Sh_utdown", "_Settings", "_Help"};
    const texts admin{"_Connect", "E_xit", "_Settings", "Ad_vanced", "_Help"};
    const texts shell_admin{"_Connect", "Sh_utdown", "_Settings", "Ad_vanced", "_Help"};
    // The button pressed (null: the window is closed), the warning shown, the window kept.
    const struct { shell_setup setup; texts buttons; bool session; const char *button, *shown; bool window_kept; } table[] = {
        {{true, false}, shell, false, nullptr, "", true},
        {{false, false}, user, true, "E_xit", warning, true},
        {{true, true}, shell_admin, true, "Sh_utdown", warning, true},
        {{false, true}, admin, true, nullptr, warning, false},  // the window goes, the program stays
        {{false, false}, user, true, nullptr, warning, true},
    };
    for (const auto& e : table) {
        open_main_window(e.setup);
        texts buttons;
        find_below(root_window, [&](GtkWidget* w) {
            return GTK_IS_BUTTON(w) && (buttons.push_back(gtk_button_get_label(GTK_BUTTON(w))), false);
        });
        EXPECT_EQ(buttons, e.buttons);
        EXPECT_TRUE(gtk_widget_has_default(find_button(root_window, "_Connect")));
        if (e.session && desk_cell(TC_PID) == "0") {
            GtkTreeIter desk{};
            gtk_tree_model_get_iter_first(GTK_TREE_MODEL(current_user_connection_tree), &desk);
            spawn_connection(GTK_TREE_MODEL(current_user_connection_tree), &desk);
            ASSERT_EQ(desk_cell(TC_STATUS), "Active");
        }
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
        ASSERT_EQ(end_session != nullptr, !e.session);
        if (end_session) {
            EXPECT_FALSE(gtk_widget_get_visible(root_window));
            click(end_session, "_Cancel");
            EXPECT_EQ(find_window("End Session"), nullptr);
            EXPECT_TRUE(gtk_widget_get_visible(root_window));
        }
        if (root_window)
            gtk_widget_destroy(root_window);
    }
    EXPECT_EQ(read_file_text(root / "tmp/zarvoca.log").find("Cleaning"), std::string::npos);
}

// End Session offers what the user may do and runs the last choice; the machine's
// shutdown is left to remove the support folder.
TEST_F(shell_window_test, end_session_offers_and_runs_what_the_user_may_do)
{
    for (std::string program : {"reboot", "poweroff"})
        add_program(root / ("bin/" + program), "echo " + program + " >> " + (root / "machine"));
    const struct { shell_setup setup; std::string choices; int last; } table[] = {
        {{true, false, false, false}, "Quit current session\n", 0},
        {{true, false, false, true}, "Quit current session\nReboot the computer\n", 1},
        {{true, false, true, false}, "Quit current session\nTurn off computer\n", 1},
        {{true, true}, "Quit current session\nTurn off computer\nReboot the computer\n", 2},
    };
    for (const auto& e : table) {
        open_main_window(e.setup);
        click(root_window, "Sh_utdown");
        GtkWidget* window = find_window("End Session");
        ASSERT_NE(window, nullptr);
        GtkComboBox* choice = GTK_COMBO_BOX(find_below(window, [](GtkWidget* w) { return GTK_IS_COMBO_BOX(w); }));
        EXPECT_EQ(dump_model(gtk_combo_box_get_model(choice), {0}), e.choices);
        GtkWidget* entry = gtk_bin_get_child(GTK_BIN(choice));
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "Quit current session");
        EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry)));
        if (e.last == 2)
            save_screenshot(window, "end_session");
        if (e.last == 0) {
            gtk_widget_destroy(window);  // Ok would end this test program
        } else {
            gtk_combo_box_set_active(choice, e.last);
            click(window, "_Ok");
            EXPECT_EQ(find_window("End Session"), nullptr);
        }
        gtk_widget_destroy(root_window);
    }
    EXPECT_EQ(read_file_text(root / "machine"), "reboot\npoweroff\nreboot\n");
    EXPECT_TRUE(is_directory(tmp_dir));
}

}  // namespace
