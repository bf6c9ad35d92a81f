// The administrator's windows driven as an administrator would, with the files on disk
// compared byte for byte.
#include "admin/user_tree_edit.h"
#include "gui/gui_support.h"
#include "store/user_file.h"

namespace {

const std::string desk = master_record("Desk", "RDP", true, "3389", {{5, "desk.example"}, {33, "04608"}});
const std::string intranet = master_record("Intranet", "Web", false, "8080", {{5, "http://intranet.example/"}});
const std::string tools = master_record("Tools", "Other", false, "80", {{8, "xterm -e top"}});
const std::string desk_with_tools =
    "Version 1.000\nTRUE\nDesk\nRDP\nFALSE\nTRUE\nFALSE\nFALSE\nTools\nOther\nFALSE\nFALSE\nFALSE\n";

// The master list and the administrator's tree written and loaded as start-up does.
class advanced_test : public admin_test {
protected:
    advanced_test()
    {
        write_file(master_path, master_text(desk + intranet + tools));
        write_file(current_user_filename, desk_with_tools);
        make_connection_list(master_connection_list, master_path.c_str(), 35);
        for (GtkTreeStore* tree : {current_user_connection_tree, selected_user_connection_tree})
            make_connection_tree(tree, current_user_filename.c_str(), 6);
    }
    static GtkWidget* open_advanced()  // null when it did not open
    {
        click(root_window, "Ad_vanced");
        return find_window("Advanced Configuration");
    }
    static std::string user_tree() { return dump_model(GTK_TREE_MODEL(selected_user_connection_tree), {TC_NAME}); }

    const std::string master_path = root / "etc/.kestrel/kestrel.master";
};

// A refused Save keeps the editor open with what was typed.
TEST_F(advanced_test, a_new_name_must_be_given_and_free_for_its_type)
{
    const struct { editor_opener opener; const char *title, *name, *refusal; } table[] = {  // null: saved
        {web_dialog, "Web connection", "", "\nPlease enter a name for this connection.\n"},
        {web_dialog, "Web connection", "Intranet", "\nA connection with that name and type already exists.\n"},
        {other_dialog, "Other connection", "Intranet", nullptr},  // the same name with another type
    };
    for (const auto& a : table) {
        messages->shown.clear();
        GtkWidget* editor = open(a.opener, a.title);
        ASSERT_NE(editor, nullptr);
        type_text(editor, "value", "kept");
        type_text(editor, "name", a.name);
        click(editor, "_Save");
        EXPECT_EQ(messages->shown, a.refusal ? texts{a.refusal} : texts{}) << a.name;
        ASSERT_EQ(find_window(a.title), a.refusal ? editor : nullptr);
        if (a.refusal) {
            EXPECT_EQ(text_of(editor, "value"), "kept");
            click(editor, "_Cancel");
        }
    }
    EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(master_connection_list), nullptr), 4);
}

// Delete and "Show user interface" write the master list at once.
TEST_F(advanced_test, delete_and_show_interface_are_saved_in_the_master_list)
{
    GtkWidget* advanced = open_advanced();
    select_row(advanced, "available-connections", "2");  // Tools
    click(advanced, "_Delete");
    EXPECT_EQ(read_file_text(master_path), master_text(desk + intranet));
    set_box(advanced, "show-interface", false);
    EXPECT_EQ(show_gui, 0);
    EXPECT_EQ(read_file_text(master_path), master_text(desk + intranet, "Don't show GUI"));
    for (GtkTreeStore* tree : {current_user_connection_tree, selected_user_connection_tree})
        EXPECT_EQ(dump_model(GTK_TREE_MODEL(tree), {TC_NAME}), "Desk\n");
}

TEST_F(advanced_test, assigning_ordering_and_flags_are_saved_for_the_chosen_user)
{
    GtkWidget* advanced = open_advanced();
    GtkWidget* user_view = named(advanced, "user-connections");
    select_row(advanced, "available-connections", "1");  // Intranet
    click(advanced, "gtk-go-forward");
    EXPECT_EQ(user_tree(), "Desk\n  Tools\nIntranet\n");

    // Up from the first secondary swaps it with its primary.
    select_row(advanced, "user-connections", "0:0");
    click(advanced, "gtk-go-up");
    EXPECT_EQ(user_tree(), "Tools\n  Desk\nIntranet\n");
    select_row(advanced, "user-connections", "0:0");
    click(advanced, "gtk-go-down");  // where rows land is in test_tree_moves
    EXPECT_EQ(user_tree(), "Tools\n  Intranet\nDesk\n");

    // Flags only on primaries; Prompt only with Persistent.
    automatic_cb(nullptr, g_strdup("0:0"), selected_user_connection_tree);
    persistent_cb(nullptr, g_strdup("1"), selected_user_connection_tree);
    prompt_cb(nullptr, g_strdup("1"), selected_user_connection_tree);
    automatic_cb(nullptr, g_strdup("0"), selected_user_connection_tree);
    // Promote the secondary (after its primary, flags cleared); demoting the first row does nothing.
    primary_cb(nullptr, g_strdup("0:0"), user_view);
    primary_cb(nullptr, g_strdup("0"), user_view);
    prompt_cb(nullptr, g_strdup("1"), selected_user_connection_tree);  // the promoted row is not persistent
    click(advanced, "_Save");
    EXPECT_TRUE(find_window("Advanced Configuration"));
    EXPECT_EQ(read_file_text(current_user_filename), "Version 1.000\n"
                                                     "TRUE\nTools\nOther\nTRUE\nTRUE\nFALSE\n"
                                                     "TRUE\nIntranet\nWeb\nFALSE\nFALSE\nFALSE\n"
                                                     "TRUE\nDesk\nRDP\nFALSE\nTRUE\nTRUE\n");
    // Demoting makes a primary the last secondary of the one before, with its flags
    // cleared; one with secondaries is refused.
    primary_cb(nullptr, g_strdup("2"), user_view);
    EXPECT_EQ(dump_model(GTK_TREE_MODEL(selected_user_connection_tree), {TC_NAME, TC_PERSISTENT, TC_PROMPT}),
              "Tools|TRUE|FALSE\nIntranet|FALSE|FALSE\n  Desk|FALSE|FALSE\n");
    primary_cb(nullptr, g_strdup("1"), user_view);
    EXPECT_EQ(messages->shown.back(),
              "\nPlease remove or promote secondary connections before demoting this connection.\n");
    // Moving left drops a primary with its secondaries.
    select_row(advanced, "user-connections", "1");
    click(advanced, "gtk-go-back");
    EXPECT_EQ(user_tree(), "Tools\n");
}

// With a session running the administrator is asked first; leaving by Ok or Cancel
// restores the running user and reloads the master list as last saved.
TEST_F(advanced_test, sessions_are_asked_about_and_leaving_restores_the_running_user)
{
    GtkTreeIter first;
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(current_user_connection_tree), &first);
    gtk_tree_store_set(current_user_connection_tree, &first, TC_PID, "00123", TC_STATUS, "Active", -1);
    std::string question;
    answer_next_dialog(&question, GTK_RESPONSE_NO);
    EXPECT_EQ(open_advanced(), nullptr);
    EXPECT_EQ(question, "Changes made while connections are active may not take effect until those connections "
                        "are restarted, will cause the status of existing connections to be improperly "
                        "reported, and may cause other unpredictable behavior.\n\nDo you still want to continue?");
    for (const char* button : {"_Cancel", "_Ok"}) {
        answer_next_dialog(&question, GTK_RESPONSE_YES);
        GtkWidget* advanced = open_advanced();
        ASSERT_EQ(misc_widgets[0], advanced);
        set_combo_text(named(advanced, "user"), "bob");
        select_row(advanced, "available-connections", "1");
        click(advanced, "gtk-go-forward");
        GtkTreeIter row;  // a change in memory that no save wrote
        gtk_tree_model_get_iter_first(GTK_TREE_MODEL(master_connection_list), &row);
        gtk_list_store_remove(master_connection_list, &row);
        click(advanced, button);
        EXPECT_EQ(find_window("Advanced Configuration"), nullptr);
        EXPECT_TRUE(gtk_widget_get_visible(root_window));
        EXPECT_EQ(misc_widgets[0], root_window);
        EXPECT_EQ(selected_user_name, "admin");
        EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(master_connection_list), nullptr), 3);
        EXPECT_EQ(path_exists(root / "home/bob/kestrel.inf"), button[1] == 'O') << button;
    }
}

}  // namespace
