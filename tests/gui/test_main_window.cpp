// The main window's buttons and the ways out of it: Exit, Shutdown, closing, End Session.
// Connect and signals are driven end to end in tests/e2e.
#include "gui/gui_support.h"

namespace {

constexpr const char* warning = "\nPlease close all active connections before exiting.";

void send_delete_event(GtkWidget* window)
{
    GdkEvent* event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->any.send_event = TRUE;
    gtk_main_do_event(event);
    gdk_event_free(event);
}

// Exit is Shutdown in the shell, Advanced needs the right; nothing here may end the
// program. With a session running every way out warns; without one the shell's opens End
// Session, which offers what the user may do and runs the choice (the machine's shutdown
// is left to remove the support folder).
TEST_F(gui_test, ways_out_by_mode_rights_and_sessions)
{
    GtkTreeIter desk;  // running while its process id is not "0"
    gtk_tree_store_insert_with_values(current_user_connection_tree, &desk, nullptr, -1, TC_NAME, "Desk", -1);
    for (std::string program : {"reboot", "poweroff"})
        add_program(root / ("bin/" + program), "echo " + program + " >> " + (root / "machine"));
    const std::string quit = "Quit current session\n", off = "Turn off computer\n", reboot = "Reboot the computer\n";
    // The button pressed (null: the window is closed), the window kept, then End Session's
    // choices and the one taken (0: Cancel, as Quit would end this program).
    const struct { shell_setup setup; bool session; const char* button; bool kept; std::string choices; int taken; } table[] = {
        {{true}, false, nullptr, true, quit, 0},
        {{true, false, false, true}, false, "Sh_utdown", true, quit + reboot, 1},
        {{true, false, true}, false, "Sh_utdown", true, quit + off, 1},
        {{true, true}, false, "Sh_utdown", true, quit + off + reboot, 2},
        {{false}, true, "E_xit", true, "", 0},
        {{true, true}, true, "Sh_utdown", true, "", 0},
        {{false, true}, true, nullptr, false, "", 0},  // the window goes, the program stays
        {{false}, true, nullptr, true, "", 0},
    };
    for (const auto& e : table) {
        open_main_window(e.setup);
        texts buttons;
        find_below(root_window, [&](GtkWidget* w) {
            return GTK_IS_BUTTON(w) && (buttons.push_back(gtk_button_get_label(GTK_BUTTON(w))), false);
        });
        texts expected{"_Connect", e.setup.shell ? "Sh_utdown" : "E_xit", "_Settings", "_Help"};
        if (e.setup.admin)
            expected.insert(expected.begin() + 3, "Ad_vanced");
        EXPECT_EQ(buttons, expected);
        EXPECT_TRUE(gtk_widget_has_default(find_button(root_window, "_Connect")));
        gtk_tree_store_set(current_user_connection_tree, &desk, TC_PID, e.session ? "04242" : "0", -1);
        std::string shown;
        if (e.session)
            answer_next_dialog(&shown);
        if (e.button)
            click(root_window, e.button);
        else
            send_delete_event(root_window);
        pump_events();
        EXPECT_EQ(shown, e.session ? warning : "");
        EXPECT_EQ(root_window != nullptr, e.kept);
        GtkWidget* end_session = find_window("End Session");
        ASSERT_EQ(end_session != nullptr, !e.choices.empty());
        if (end_session) {
            EXPECT_FALSE(gtk_widget_get_visible(root_window));
            GtkComboBox* choice = GTK_COMBO_BOX(find_below(end_session, [](GtkWidget* w) { return GTK_IS_COMBO_BOX(w); }));
            EXPECT_EQ(dump_model(gtk_combo_box_get_model(choice), {0}), e.choices);
            GtkWidget* entry = gtk_bin_get_child(GTK_BIN(choice));
            EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(entry)), "Quit current session");
            EXPECT_FALSE(gtk_editable_get_editable(GTK_EDITABLE(entry)));
            if (e.taken == 2)
                save_screenshot(end_session, "end_session");
            gtk_combo_box_set_active(choice, e.taken);
            click(end_session, e.taken ? "_Ok" : "_Cancel");
            EXPECT_EQ(find_window("End Session"), nullptr);
            EXPECT_TRUE(gtk_widget_get_visible(root_window));
        }
        if (root_window)
            gtk_widget_destroy(root_window);
    }
    EXPECT_EQ(read_file_text(root / "machine"), "reboot\npoweroff\nreboot\n");
    EXPECT_TRUE(is_directory(tmp_dir));
    EXPECT_EQ(read_file_text(root / "tmp/zarvoca.log").find("Cleaning"), std::string::npos);
}

}  // namespace
