#include "store/user_file.h"

#include "store_fixture.h"

#include <optional>

namespace {

class user_file_test : public store_test {
protected:
    void SetUp() override
    {
        store_test::SetUp();
        for (const char* name : {"Desk", "Mail", "Web1", "Spare", "TRUE"})
            add_master(name, "RDP");
    }
    static std::string shape(GtkTreeStore* tree)
    {
        return dump_model(GTK_TREE_MODEL(tree), {TC_PRIMARY, TC_NAME, TC_TYPE, TC_AUTOMATIC, TC_PERSISTENT,
                                                 TC_PROMPT, TC_PID, TC_STATUS});
    }
    GtkTreeStore* load(const std::string& text)
    {
        write_file(root / "kestrel.inf", text);
        GtkTreeStore* tree = create_user_tree_store();
        make_connection_tree(tree, (root / "kestrel.inf").c_str(), 6);
        return tree;
    }
};

// Each case: the file, and the tree it loads to. The administered user's tree starts as a
// copy of the running user's: the copy must hold what the load holds, not what sessions
// have since shown in the list.
TEST_F(user_file_test, loads_rows_promoting_or_dropping_them_by_the_master_list_and_copies_them)
{
    for (const auto& record : read_records(golden("user_files.txt"))) {
        GtkTreeStore* tree = load(record[1]);
        EXPECT_EQ(shape(tree), record[2]) << record[0];
        GtkTreeIter first;
        if (gtk_tree_model_get_iter_first(GTK_TREE_MODEL(tree), &first))
            gtk_tree_store_set(tree, &first, TC_PID, "4242", TC_STATUS, "Active", TC_POLLS, 3, -1);
        GtkTreeStore* copy = create_user_tree_store();
        copy_connection_tree(GTK_TREE_MODEL(tree), copy);
        EXPECT_EQ(shape(copy), record[2]) << record[0];
        EXPECT_EQ(dump_model(GTK_TREE_MODEL(copy), {TC_POLLS}).find('3'), std::string::npos) << record[0];
        g_object_unref(tree);
        g_object_unref(copy);
    }
}

TEST_F(user_file_test, save_writes_the_selected_tree_and_reloads_the_current_one)
{
    // Each flag column differs from the others over the two rows: a swap shows.
    const std::string home_file = root / "home/ann/kestrel.inf";
    const std::string rows = "TRUE\nMail\nRDP\nFALSE\nTRUE\nTRUE\nFALSE\nSpare\nRDP\nTRUE\nFALSE\nTRUE\n";
    write_file(home_file, "Version 1.000\n" + rows);
    make_connection_tree(selected_user_connection_tree, home_file.c_str(), 6);
    locate_key key{"Desk", "RDP", {}, FALSE};
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 1);
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 0);
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nA connection with that name and type already exists.\n"});

    save_user_connections(GTK_TREE_MODEL(selected_user_connection_tree), "ann");
    EXPECT_EQ(read_file_text(home_file), "Version 1.000\n" + rows + "TRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
    EXPECT_EQ(shape(current_user_connection_tree), "TRUE|Mail|RDP|FALSE|TRUE|TRUE|0|Not Connected\n"
                                                   "  FALSE|Spare|RDP|TRUE|FALSE|TRUE|0|Not Connected\n"
                                                   "TRUE|Desk|RDP|FALSE|FALSE|FALSE|0|Not Connected\n");
}

// Whatever a user puts at the file's name in a home, root never writes through it nor into
// it, and loading it neither blocks nor reads through a link; a new file belongs to the user.
TEST_F(user_file_test, saves_refuse_what_is_not_the_users_file_and_report_failures)
{
    const std::string file = root / "home/ann/kestrel.inf", target = root / "target";
    const std::string target_text = "Version 1.000\nTRUE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n";
    const std::string not_opened = "\nCouldn't open user connection tree for writing.\n";
    const struct {
        const char* what;
        std::function<void()> plant;
        std::string message;
        const char* user = "ann";
        int rows_loaded = 0;
    } rows[] = {
        {"a user not in the database", [] {}, not_opened, "nobody"},
        {"no home folder", [&] { std::filesystem::remove_all(root / "home/ann"); }, not_opened},
        {"a link", [&] { symlink(target.c_str(), file.c_str()); }, not_opened},
        {"a link to a device", [&] { symlink("/dev/zero", file.c_str()); }, not_opened},
        {"a FIFO", [&] { mkfifo(file.c_str(), 0644); }, not_opened},
        {"a folder", [&] { make_dirs(file); }, not_opened},
        {"a second name of another file", [&] { link(target.c_str(), file.c_str()); }, not_opened, "ann", 1},
        {"another user's file", [&] { write_file(file, "theirs\n"); chown(file.c_str(), 4242, 4242); }, not_opened},
        {"a full disk", [] {}, "\nError writing user connection tree.\n"},
        {"nothing there", [] {}, ""},
    };
    locate_key key{"Desk", "RDP", {}, FALSE};
    save_if_unique_connection(selected_user_connection_tree, &key);
    for (const auto& row : rows) {
        std::filesystem::remove_all(root / "home/ann");
        make_dirs(root / "home/ann");
        write_file(target, target_text);
        row.plant();
        GtkTreeStore* loaded = create_user_tree_store();
        make_connection_tree(loaded, file.c_str(), 6);
        EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(loaded), nullptr), row.rows_loaded) << row.what;
        g_object_unref(loaded);
        messages.shown.clear();
        {
            std::optional<full_disk> full;
            if (row.message == "\nError writing user connection tree.\n")
                full.emplace();
            save_user_connections(GTK_TREE_MODEL(selected_user_connection_tree), row.user);
        }
        EXPECT_EQ(messages.shown, (row.message.empty() ? std::vector<std::string>{} : std::vector{row.message}))
            << row.what;
        EXPECT_EQ(read_file_text(target), target_text) << row.what;
    }
    EXPECT_EQ(read_file_text(file), "Version 1.000\nTRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
    struct stat st;
    ASSERT_EQ(stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_uid, geteuid() == 0 ? 1000u : geteuid());
}
}  // namespace
