#include "store/user_file.h"

#include "store_fixture.h"

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
                                                 TC_PROMPT, TC_PID, TC_STATUS, TC_POLLS});
    }
};

// Each case: the file, and the tree it loads to. The administered user's tree starts as a
// copy of the running user's: the copy must hold what the load holds, not what sessions
// have since shown in the list.
TEST_F(user_file_test, loads_rows_promoting_or_dropping_them_by_the_master_list_and_copies_them)
{
    GtkTreeStore *loaded = current_user_connection_tree, *copy = selected_user_connection_tree;
    for (const auto& record : read_records(golden("user_files.txt"))) {
        write_file(current_user_filename, record[1]);
        gtk_tree_store_clear(loaded);
        gtk_tree_store_clear(copy);
        make_connection_tree(loaded, current_user_filename.c_str(), 6);
        EXPECT_EQ(shape(loaded), record[2]) << record[0];
        GtkTreeIter first;
        if (gtk_tree_model_get_iter_first(GTK_TREE_MODEL(loaded), &first))
            gtk_tree_store_set(loaded, &first, TC_PID, "4242", TC_STATUS, "Active", TC_POLLS, 3, -1);
        copy_connection_tree(GTK_TREE_MODEL(loaded), copy);
        EXPECT_EQ(shape(copy), record[2]) << record[0];
    }
}

// Whatever a user puts at the file's name in a home, root never writes through it nor into
// it, and loading it neither blocks nor reads through a link. Where nothing is, the save
// writes the selected tree (each flag column differs from the others over its rows: a swap
// shows) to a new file of the user's, and reloads the running user's tree from it.
TEST_F(user_file_test, saves_write_only_the_users_own_file_and_report_failures)
{
    const std::string file = root / "home/ann/kestrel.inf", target = root / "target";
    const std::string target_text = "Version 1.000\nTRUE\nMail\nRDP\nFALSE\nFALSE\nFALSE\n";
    const std::string saved_rows = "TRUE\nMail\nRDP\nFALSE\nTRUE\nTRUE\nFALSE\nSpare\nRDP\nTRUE\nFALSE\nTRUE\n";
    const struct {
        const char* what;
        std::function<void()> plant;
        const char* user = "ann";
        int rows_loaded = 0;
        std::string message = "\nCouldn't open user connection tree for writing.\n";
    } rows[] = {
        {"a user not in the database", [] {}, "nobody"},
        {"no home folder", [&] { std::filesystem::remove_all(root / "home/ann"); }},
        {"a link", [&] { symlink(target.c_str(), file.c_str()); }},
        {"a link to a device", [&] { symlink("/dev/zero", file.c_str()); }},
        {"a FIFO", [&] { mkfifo(file.c_str(), 0644); }},
        {"a folder", [&] { make_dirs(file); }},
        {"a second name of another file", [&] { link(target.c_str(), file.c_str()); }, "ann", 1},
        {"another user's file", [&] { write_file(file, "theirs\n"); chown(file.c_str(), 4242, 4242); }},
        {"a full disk", [] {}, "ann", 0, "\nError writing user connection tree.\n"},
        {"nothing there", [] {}, "ann", 0, ""},
    };
    write_file(file, "Version 1.000\n" + saved_rows);
    make_connection_tree(selected_user_connection_tree, file.c_str(), 6);
    locate_key key{"Desk", "RDP", {}, FALSE};
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 1);
    ASSERT_EQ(save_if_unique_connection(selected_user_connection_tree, &key), 0);
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nA connection with that name and type already exists.\n"});
    for (const auto& row : rows) {
        std::filesystem::remove_all(root / "home/ann");
        make_dirs(root / "home/ann");
        write_file(target, target_text);
        row.plant();
        gtk_tree_store_clear(current_user_connection_tree);
        make_connection_tree(current_user_connection_tree, file.c_str(), 6);
        EXPECT_EQ(gtk_tree_model_iter_n_children(GTK_TREE_MODEL(current_user_connection_tree), nullptr), row.rows_loaded)
            << row.what;
        messages.shown.clear();
        {
            const full_disk full(row.message.starts_with("\nError writing") ? 8 : RLIM_INFINITY);
            save_user_connections(GTK_TREE_MODEL(selected_user_connection_tree), row.user);
        }
        EXPECT_EQ(messages.shown, (row.message.empty() ? std::vector<std::string>{} : std::vector{row.message}))
            << row.what;
        EXPECT_EQ(read_file_text(target), target_text) << row.what;
    }
    EXPECT_EQ(read_file_text(file), "Version 1.000\n" + saved_rows + "TRUE\nDesk\nRDP\nFALSE\nFALSE\nFALSE\n");
    EXPECT_EQ(shape(current_user_connection_tree), "TRUE|Mail|RDP|FALSE|TRUE|TRUE|0|Not Connected|0\n"
                                                   "  FALSE|Spare|RDP|TRUE|FALSE|TRUE|0|Not Connected|0\n"
                                                   "TRUE|Desk|RDP|FALSE|FALSE|FALSE|0|Not Connected|0\n");
    struct stat st;
    ASSERT_EQ(stat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_uid, geteuid() == 0 ? 1000u : geteuid());
}
}  // namespace
