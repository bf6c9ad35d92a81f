// The administrator's windows driven as an administrator would, with the files on disk
// compared byte for byte.
#include "admin/advanced.h"
#include "admin/ping_options.h"
#include "editors/connections.h"
#include "editors/editors.h"
#include "gui/gui_support.h"
#include "platform/paths.h"
#include "shell/globals.h"
#include "store/models.h"
#include "ui/widgets.h"

#include <cstdio>

namespace {

const std::string desk = master_record("Desk", "RDP", true, "3389", {{5, "desk.example"}, {33, "04608"}});
const std::string intranet = master_record("Intranet", "Web", false, "8080", {{5, "http://intranet.example/"}});
const std::string tools = master_record("Tools", "Other", false, "80", {{8, "xterm -e top"}});
const std::string desk_with_tools =
    "Version 1.000\nTRUE\nDesk\nRDP\nFALSE\nTRUE\nFALSE\nFALSE\nTools\nOther\nFALSE\nFALSE\nFALSE\n";

class advanced_test : public admin_test {
protected:
    void SetUp() override
    {
        admin_test::SetUp();
        load(master_text(desk + intranet + tools), desk_with_tools);
    }
    // Adds a connection through the type chooser; returns the editor window.
    GtkWidget* open_new_editor(GtkWidget* advanced, const char* choice, const char* title)
    {
        click(advanced, "_Add");
        GtkWidget* chooser = find_window("Add Connection");
        type_text(chooser, "type", choice);
        save_screenshot(chooser, "add_connection");
        click(chooser, "_Ok");
        return find_window(title);
    }
    static std::string user_tree() { return dump_model(GTK_TREE_MODEL(selected_user_connection_tree), {TC_NAME}); }
};

// A new connection goes into the sorted list and to the user (the Web one, from the
// keyboard, is tests/e2e/administer.sh).
TEST_F(advanced_test, a_new_das_connection_is_saved_sorted_and_offered_to_the_user)
{
    GtkWidget* advanced = open_advanced();
    ASSERT_NE(advanced, nullptr);
    EXPECT_FALSE(gtk_widget_get_visible(root_window));
    save_screenshot(advanced, "advanced");
    GtkWidget* das_editor = open_new_editor(advanced, "DAS", "DAS connection");
    ASSERT_NE(das_editor, nullptr);
    EXPECT_FALSE(gtk_widget_get_visible(advanced));
    type_text(das_editor, "name", "Client");
    save_screenshot(das_editor, "das_editor");
    click(das_editor, "_Save");
    EXPECT_EQ(find_window("DAS connection"), nullptr);
    EXPECT_TRUE(gtk_widget_get_visible(advanced));
    EXPECT_EQ(master_file(), master_text(master_record("Client", "DAS", true, "1494") + desk + intranet + tools));
    EXPECT_EQ(user_file("admin"), desk_with_tools + "TRUE\nClient\nDAS\nFALSE\nFALSE\nFALSE\n");
    EXPECT_TRUE(messages->shown.empty());
}

TEST_F(advanced_test, a_new_name_must_be_given_and_free_for_its_type)
{
    GtkWidget* advanced = open_advanced();
    const struct { const char *choice, *title, *name, *refusal; } table[] = {  // refusal null: saved
        {"Firefox", "Web connection", "", "\nPlease enter a name for this connection.\n"},
        {"Firefox", "Web connection", "Intranet", "\nA connection with that name and type already exists.\n"},
        {"Other", "Other connection", "Intranet", nullptr},  // the same name with another type
        {"Other", "Other connection", "intranet", nullptr},  // names differ by case
    };
    for (const auto& a : table) {
        messages->shown.clear();
        GtkWidget* editor = open_new_editor(advanced, a.choice, a.title);
        ASSERT_NE(editor, nullptr);
        type_text(editor, "value", "kept");
        type_text(editor, "name", a.name);
        save_screenshot(editor, std::string(a.choice) + "_editor");
        click(editor, "_Save");
        GtkWidget* still_open = find_window(a.title);
        if (a.refusal) {
            EXPECT_EQ(messages->shown, std::vector<std::string>{a.refusal});
            ASSERT_EQ(still_open, editor);
            EXPECT_EQ(text_of(editor, "value"), "kept");
            click(editor, "_Cancel");
        } else {
            EXPECT_TRUE(messages->shown.empty()) << a.name;
            EXPECT_EQ(still_open, nullptr);
        }
    }
    EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(master_connection_list), nullptr), 5);
}

TEST_F(advanced_test, delete_removes_the_connection_from_the_file_and_both_trees)
{
    GtkWidget* advanced = open_advanced();
    select_row(advanced, "available-connections", "2");  // Tools
    click(advanced, "_Delete");
    EXPECT_EQ(master_file(), master_text(desk + intranet));
    for (GtkTreeStore* tree : {current_user_connection_tree, selected_user_connection_tree})
        EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(tree), nullptr), 1);
    // Nothing else is offered: a DAS row has no editor, and Edit without a selection
    // does nothing.
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(GTK_TREE_VIEW(named(advanced, "available-connections"))));
    click(advanced, "_Edit");
    EXPECT_EQ(find_window("Web connection"), nullptr);
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
    // Down from the last secondary lands on the next primary.
    select_row(advanced, "user-connections", "0:0");
    click(advanced, "gtk-go-down");
    EXPECT_EQ(user_tree(), "Tools\n  Intranet\nDesk\n");

    // Flags only on primaries; Prompt only with Persistent; Persistent clears Prompt.
    prompt_cb(nullptr, g_strdup("1"), selected_user_connection_tree);
    automatic_cb(nullptr, g_strdup("0:0"), selected_user_connection_tree);
    persistent_cb(nullptr, g_strdup("1"), selected_user_connection_tree);
    prompt_cb(nullptr, g_strdup("1"), selected_user_connection_tree);
    automatic_cb(nullptr, g_strdup("0"), selected_user_connection_tree);
    // Promote the secondary (after its primary); demoting the first row does nothing.
    primary_cb(nullptr, g_strdup("0:0"), user_view);
    primary_cb(nullptr, g_strdup("0"), user_view);
    click(advanced, "_Save");
    EXPECT_TRUE(find_window("Advanced Configuration"));
    EXPECT_EQ(user_file("admin"), "Version 1.000\n"
                                  "TRUE\nTools\nOther\nTRUE\nTRUE\nFALSE\n"
                                  "TRUE\nIntranet\nWeb\nFALSE\nFALSE\nFALSE\n"
                                  "TRUE\nDesk\nRDP\nFALSE\nTRUE\nTRUE\n");
    // Demoting makes a primary the last secondary of the one before, with its flags
    // cleared; one with secondaries is refused.
    primary_cb(nullptr, g_strdup("2"), user_view);
    EXPECT_EQ(user_tree(), "Tools\nIntranet\n  Desk\n");
    primary_cb(nullptr, g_strdup("1"), user_view);
    EXPECT_EQ(messages->shown.back(),
              "\nPlease remove or promote secondary connections before demoting this connection.\n");
    // Moving left drops a primary with its secondaries.
    select_row(advanced, "user-connections", "1");
    click(advanced, "gtk-go-back");
    EXPECT_EQ(user_tree(), "Tools\n");
}

TEST_F(advanced_test, users_are_chosen_from_the_password_database)
{
    EXPECT_EQ(administered_users(), (std::vector<std::string>{"Zed", "admin", "bob"}));
    GtkWidget* advanced = open_advanced();
    GtkWidget* chooser = named(advanced, "user");
    EXPECT_EQ(combo_text(chooser), "admin");
    set_combo_text(chooser, "bob");
    EXPECT_EQ(selected_user_name, "bob");
    EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(selected_user_connection_tree), nullptr), 0);
    select_row(advanced, "available-connections", "0");
    click(advanced, "gtk-go-forward");
    click(advanced, "_Save");
    EXPECT_EQ(user_file("bob"), "Version 1.000\nTRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
}

TEST_F(advanced_test, leaving_restores_the_running_user_and_the_saved_master_list)
{
    const struct { const char* button; bool saved; } table[] = {{"_Ok", true}, {"_Cancel", false}};
    for (const auto& l : table) {
        std::remove((root / "home/bob/kestrel.inf").c_str());
        GtkWidget* advanced = open_advanced();
        ASSERT_EQ(misc_widgets[0], advanced);
        set_combo_text(named(advanced, "user"), "bob");
        select_row(advanced, "available-connections", "1");
        click(advanced, "gtk-go-forward");
        // A change of the list in memory that no save wrote is undone by the reload.
        GtkTreeIter first;
        gtk_tree_model_get_iter_first(GTK_TREE_MODEL(master_connection_list), &first);
        gtk_list_store_remove(master_connection_list, &first);
        click(advanced, l.button);
        EXPECT_EQ(find_window("Advanced Configuration"), nullptr);
        EXPECT_TRUE(gtk_widget_get_visible(root_window));
        EXPECT_EQ(misc_widgets[0], root_window);
        EXPECT_EQ(selected_user_name, "admin");
        EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(master_connection_list), nullptr), 3);
        EXPECT_EQ(path_exists(root / "home/bob/kestrel.inf"), l.saved) << l.button;
    }
}

TEST_F(advanced_test, running_sessions_are_asked_about_first)
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
    answer_next_dialog(&question, GTK_RESPONSE_YES);
    EXPECT_NE(open_advanced(), nullptr);
}

// From a view of a user's tree: the question names the connection, and only Yes deletes
// it, from the master list and from both trees read again.
TEST_F(advanced_test, wizard_delete_asks_before_deleting_from_all_users)
{
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(selected_user_connection_tree));
    g_object_ref_sink(view);
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(view));
    for (int answer : {GTK_RESPONSE_NO, GTK_RESPONSE_YES}) {
        GtkTreePath* desk_row = gtk_tree_path_new_first();
        gtk_tree_selection_select_path(selection, desk_row);
        gtk_tree_path_free(desk_row);
        std::string question;
        answer_next_dialog(&question, answer);
        wizard_delete_connection(nullptr, selection);
        EXPECT_EQ(question, "Deleting a connection here also deletes it from all other users.\n\nTo only remove "
                            "it from a single user, click on the Advanced button and remove it from the "
                            "appropriate user(s).\n\nDelete Desk from all users?");
        EXPECT_EQ(master_file().find("Desk\n") != std::string::npos, answer == GTK_RESPONSE_NO);
    }
    EXPECT_EQ(master_file(), master_text(intranet + tools));
    EXPECT_EQ(user_tree(), "Tools\n");  // Desk's secondary is a primary now
    EXPECT_EQ(dump_model(GTK_TREE_MODEL(current_user_connection_tree), {TC_NAME}), "Tools\n");
    g_object_unref(view);
}

TEST_F(advanced_test, show_user_interface_is_saved_in_the_master_list)
{
    GtkWidget* advanced = open_advanced();
    set_box(advanced, "show-interface", false);
    EXPECT_EQ(show_gui, 0);
    EXPECT_EQ(master_file(), master_text(desk + intranet + tools, "Don't show GUI"));
}

// "Ping First" and the Ping Options window, by what the administrator does.
TEST_F(advanced_test, ping_first_and_its_options)
{
    // The row: Desk RDP (on, 3389), Intranet Web (off, 8080), Tools Other (off, 80); what is
    // done in the window ("": none opens); the port it shows; the ping and port after.
    const struct { const char *row, *action, *shown_port; bool ping_after; const char* port_after; } table[] = {
        {"0", "", "", false, "3389"},        // turned off: no window
        {"1", "_Save", "80", true, "80"},    // a stored port shows the default
        {"2", "_Cancel", "0", false, "80"},  // Cancel turns the ping off again
        {"1", "close", "80", true, "80"},    // closing keeps it on
    };
    GtkWidget* advanced = open_advanced();
    GtkTreeModel* list = GTK_TREE_MODEL(master_connection_list);
    for (const auto& p : table) {
        SCOPED_TRACE(p.row);
        const std::string action = p.action;
        GtkTreeIter row;
        ASSERT_TRUE(gtk_tree_model_get_iter_from_string(list, &row, p.row));
        if (action == "close")  // from off again, so that it opens
            gtk_list_store_set(master_connection_list, &row, MC_PING, FALSE, -1);
        smart_ping_dialog(nullptr, g_strdup(p.row), advanced);
        GtkWidget* window = find_window("Ping Options");
        ASSERT_EQ(window != nullptr, !action.empty());
        if (window) {
            EXPECT_FALSE(gtk_widget_get_visible(advanced));
            EXPECT_TRUE(box_on(window, "smart-ping"));
            EXPECT_EQ(text_of(window, "port"), p.shown_port);
            save_screenshot(window, "ping_options");
            action == "close" ? gtk_widget_destroy(window) : click(window, p.action);
            EXPECT_TRUE(gtk_widget_get_visible(advanced));
        }
        EXPECT_EQ(model_flag(list, &row, MC_PING), p.ping_after);
        EXPECT_EQ(model_text(list, &row, MC_PING_PORT), p.port_after);
    }
    // The file follows every step: Desk off, Intranet on with 80, Tools as it was.
    EXPECT_EQ(master_file(),
              master_text(master_record("Desk", "RDP", false, "3389", {{5, "desk.example"}, {33, "04608"}}) +
                          master_record("Intranet", "Web", true, "80", {{5, "http://intranet.example/"}}) + tools));
}

TEST(add_connection_choices, follow_the_installed_programs_and_the_shell_mode)
{
    using choices = std::vector<std::string>;
    EXPECT_EQ(add_connection_choices(false, false, true), (choices{"Citrix ICA", "rdesktop", "XDM"}));
    EXPECT_EQ(add_connection_choices(true, true, false),
              (choices{"Citrix ICA", "DAS", "Firefox", "rdesktop", "XDM", "Other"}));
}

}  // namespace
