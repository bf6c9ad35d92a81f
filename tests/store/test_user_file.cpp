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
    static std::string shape(GtkTreeStore* tree, GtkTreeIter* parent = nullptr, const std::string& indent = "")
    {
        std::string text;
        GtkTreeIter iter;
        for (bool more = gtk_tree_model_iter_children(GTK_TREE_MODEL(tree), &iter, parent); more;
             more = gtk_tree_model_iter_next(GTK_TREE_MODEL(tree), &iter)) {
            tree_row row = read_tree_row(GTK_TREE_MODEL(tree), &iter);
            text += indent + row.name + "/" + row.type + (row.primary ? " primary" : "") +
                    (row.automatic ? " A" : "") + (row.persistent ? " P" : "") + (row.prompt ? " Q" : "") +
                    " " + row.pid + " " + row.status + "\n" + shape(tree, &iter, indent + "  ");
        }
        return text;
    }
};

TEST_F(user_file_test, loads_rows_promoting_or_dropping_them_by_the_master_list)
{
    const std::pair<std::string, std::string> cases[] = {
        {"Version 1.000\n"
         "TRUE\nDesk\nRDP\nTRUE\nTRUE\nTRUE\n"
         "FALSE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n"
         "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n"
         "TRUE\nWeb1\nRDP\nFALSE\nTRUE\nFALSE\n",
         "Desk/RDP primary A P Q 0 Not Connected\n  Mail/RDP 0 Not Connected\n"
         "  Spare/RDP 0 Not Connected\nWeb1/RDP primary P 0 Not Connected\n"},
        // A first row without a primary is promoted.
        {"Version 1.000\nFALSE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n", "Desk/RDP primary 0 Not Connected\n"},
        // A deleted primary: its first secondary leads, the second follows it.
        {"Version 1.000\nTRUE\nGone\nRDP\nTRUE\nFALSE\nFALSE\nFALSE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n"
         "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n",
         "Mail/RDP primary 0 Not Connected\n  Spare/RDP 0 Not Connected\n"},
        // A deleted secondary: the next secondary of the same primary becomes a primary.
        {"Version 1.000\nTRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\nFALSE\nGone\nRDP\nFALSE\nFALSE\nFALSE\n"
         "FALSE\nSpare\nRDP\nFALSE\nFALSE\nFALSE\n",
         "Desk/RDP primary 0 Not Connected\nSpare/RDP primary 0 Not Connected\n"},
        {"Version 1.000\nTRUE\nDesk\nICA\nFALSE\nFALSE\nFALSE\n", ""},  // same name, other type
        // Older files have no prompt line.
        {"TRUE\nDesk\nRDP\nTRUE\nTRUE\nFALSE\nMail\nRDP\nFALSE\nFALSE\n",
         "Desk/RDP primary A P 0 Not Connected\n  Mail/RDP 0 Not Connected\n"},
        // Names are text; flags other than "TRUE" are false.
        {"Version 1.000\nTRUE\nTRUE\nRDP\nyes\nTRUE\n1\n", "TRUE/RDP primary P 0 Not Connected\n"},
        {"", ""},
        // Cut short after the name: the type comes from the buffer, one character shorter.
        {"Version 1.000\nTRUE\nDesk\n", ""},
    };
    for (const auto& [file, expected] : cases) {
        write_file(root / "kestrel.inf", file);
        GtkTreeStore* tree = create_user_tree_store();
        make_connection_tree(tree, (root / "kestrel.inf").c_str(), 6);
        EXPECT_EQ(shape(tree), expected) << file;
        g_object_unref(tree);
    }
}

TEST_F(user_file_test, save_writes_the_selected_tree_and_reloads_the_current_one)
{
    // Each flag column differs from the others over the two rows: a swap shows in the file
    // and in the reloaded tree.
    const std::string home_file = root / "home/ann/kestrel.inf";
    write_file(home_file,
               "Version 1.000\nTRUE\nMail\nRDP\nFALSE\nTRUE\nTRUE\nFALSE\nSpare\nRDP\nTRUE\nFALSE\nTRUE\n");
    make_connection_tree(selected_user_connection_tree, home_file.c_str(), 6);
    locate_key key{"Desk", "RDP", {}, FALSE};
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 1);
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 0);
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nA connection with that name and type already exists.\n"});

    save_user_connections(nullptr, "ann");
    EXPECT_EQ(read_file_text(home_file), "Version 1.000\n"
                                         "TRUE\nMail\nRDP\nFALSE\nTRUE\nTRUE\n"
                                         "FALSE\nSpare\nRDP\nTRUE\nFALSE\nTRUE\n"
                                         "TRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
    EXPECT_EQ(shape(current_user_connection_tree), "Mail/RDP primary P Q 0 Not Connected\n"
                                                   "  Spare/RDP A Q 0 Not Connected\n"
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
    EXPECT_EQ(messages.shown, (std::vector<std::string>{"\nCouldn't open user connection tree for writing.\n",
                                                        "\nCouldn't open user connection tree for writing.\n",
                                                        "\nError writing user connection tree.\n"}));
}
}  // namespace
