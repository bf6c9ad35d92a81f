#include "store/user_file.h"

#include "store_fixture.h"

#include <filesystem>
#include <unistd.h>

namespace {

class user_file_test : public store_test {
protected:
    void SetUp() override
    {
        store_test::SetUp();
        for (const char* name : {"Desk", "Mail", "Web1", "Spare", "TRUE"})
            add_master(name, "RDP");
    }
    // The tree as text: one line per row, secondary rows indented, flags as letters
    // (A automatic, P persistent, Q prompt).
    std::string shape(GtkTreeStore* tree)
    {
        std::string text;
        append_level(GTK_TREE_MODEL(tree), nullptr, "", text);
        return text;
    }
    void append_level(GtkTreeModel* model, GtkTreeIter* parent, const std::string& indent,
                      std::string& text)
    {
        GtkTreeIter iter;
        for (bool more = gtk_tree_model_iter_children(model, &iter, parent); more;
             more = gtk_tree_model_iter_next(model, &iter)) {
            tree_row row = read_tree_row(model, &iter);
            text += indent + row.name + "/" + row.type + (row.primary ? " primary" : "") +
                    (row.automatic ? " A" : "") + (row.persistent ? " P" : "") +
                    (row.prompt ? " Q" : "") + " " + row.pid + " " + row.status + "\n";
            append_level(model, &iter, indent + "  ", text);
        }
    }
    std::string load(const std::string& text)
    {
        write_file(root / "kestrel.inf", text);
        GtkTreeStore* tree = create_user_tree_store();
        make_connection_tree(tree, (root / "kestrel.inf").c_str(), 6);
        std::string result = shape(tree);
        g_object_unref(tree);
        return result;
    }
};

TEST_F(user_file_test, loads_primaries_with_their_secondaries)
{
    EXPECT_EQ(load("Version 1.000\n"
                   "TRUE\nDesk\nRDP\nTRUE\nTRUE\nTRUE\n"
                   "FALSE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n"
                   "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n"
                   "TRUE\nWeb1\nRDP\nFALSE\nTRUE\nFALSE\n"),
              "Desk/RDP primary A P Q 0 Not Connected\n"
              "  Mail/RDP 0 Not Connected\n"
              "  Spare/RDP 0 Not Connected\n"
              "Web1/RDP primary P 0 Not Connected\n");
}

TEST_F(user_file_test, rows_without_a_primary_are_promoted)
{
    EXPECT_EQ(load("Version 1.000\nFALSE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n"),
              "Desk/RDP primary 0 Not Connected\n");
    // A deleted primary: its first secondary leads, the second follows it.
    EXPECT_EQ(load("Version 1.000\n"
                   "TRUE\nGone\nRDP\nTRUE\nFALSE\nFALSE\n"
                   "FALSE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n"
                   "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n"),
              "Mail/RDP primary 0 Not Connected\n  Spare/RDP 0 Not Connected\n");
    // A deleted secondary: the next secondary of the same primary becomes a primary.
    EXPECT_EQ(load("Version 1.000\n"
                   "TRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n"
                   "FALSE\nGone\nRDP\nFALSE\nFALSE\nFALSE\n"
                   "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n"),
              "Desk/RDP primary 0 Not Connected\nSpare/RDP primary 0 Not Connected\n");
    // Same name, other type: not the same connection.
    EXPECT_EQ(load("Version 1.000\nTRUE\nDesk\nICA\nFALSE\nFALSE\nFALSE\n"), "");
}

TEST_F(user_file_test, older_files_have_no_prompt_line)
{
    EXPECT_EQ(load("TRUE\nDesk\nRDP\nTRUE\nTRUE\nFALSE\nMail\nRDP\nFALSE\nFALSE\n"),
              "Desk/RDP primary A P 0 Not Connected\n  Mail/RDP 0 Not Connected\n");
}

TEST_F(user_file_test, names_are_text_and_odd_flags_are_false)
{
    EXPECT_EQ(load("Version 1.000\nTRUE\nTRUE\nRDP\nyes\nTRUE\n1\n"),
              "TRUE/RDP primary P 0 Not Connected\n");
    EXPECT_EQ(load(""), "");
    // Cut short after the name: the type comes from the buffer, one character shorter,
    // and names no connection.
    EXPECT_EQ(load("Version 1.000\nTRUE\nDesk\n"), "");
}

TEST_F(user_file_test, save_writes_the_selected_tree_and_reloads_the_current_one)
{
    write_file(root / "home/ann/kestrel.inf", "Version 1.000\nTRUE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n");
    make_connection_tree(selected_user_connection_tree, (root / "home/ann/kestrel.inf").c_str(), 6);
    locate_key key{"Desk", "RDP", {}, FALSE};
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 1);
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 0);
    EXPECT_EQ(messages.shown,
              std::vector<std::string>{"\nA connection with that name and type already exists.\n"});
    GtkTreeIter mail, child;
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(selected_user_connection_tree), &mail);
    gtk_tree_store_append(selected_user_connection_tree, &child, &mail);
    tree_row spare;
    spare.primary = false;
    spare.name = "Spare";
    spare.type = "RDP";
    write_tree_row(selected_user_connection_tree, &child, spare);

    save_user_connections(nullptr, "ann");
    EXPECT_EQ(read_file_text(root / "home/ann/kestrel.inf"),
              "Version 1.000\n"
              "TRUE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n"
              "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n"
              "TRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
    EXPECT_EQ(shape(current_user_connection_tree),
              "Mail/RDP primary 0 Not Connected\n  Spare/RDP 0 Not Connected\n"
              "Desk/RDP primary 0 Not Connected\n");
}

TEST_F(user_file_test, save_failures_are_reported)
{
    save_user_connections(nullptr, "nobody");
    std::filesystem::remove_all(root / "home/ann");
    save_user_connections(nullptr, "ann");
    make_dirs(root / "home/ann");
    // A file that takes no data: the write fails as on a full disk.
    ASSERT_EQ(symlink("/dev/full", (root / "home/ann/kestrel.inf").c_str()), 0);
    locate_key key{"Desk", "RDP", {}, FALSE};
    save_if_unique_connection(selected_user_connection_tree, &key);
    save_user_connections(nullptr, "ann");
    EXPECT_EQ(messages.shown, (std::vector<std::string>{
                                  "\nCouldn't open user connection tree for writing.\n",
                                  "\nCouldn't open user connection tree for writing.\n",
                                  "\nError writing user connection tree.\n"}));
}
}  // namespace
