#include "store/master_file.h"

#include "store_fixture.h"

namespace {

class master_file_test : public store_test {
protected:
    void load(const std::string& text)
    {
        write_file(root / "master", text);
        make_connection_list(master_connection_list, (root / "master").c_str(), 35);
    }
    connection_record row(int index)
    {
        GtkTreeIter iter;
        gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(master_connection_list), &iter, nullptr, index);
        return read_master_row(GTK_TREE_MODEL(master_connection_list), &iter);
    }
    std::string rows() { return dump_model(GTK_TREE_MODEL(master_connection_list), {MC_NAME, MC_TYPE}); }
};

// Every column's line: the appsrv.ini test, which saves a stored list again.
TEST_F(master_file_test, header_and_ping_lines_are_compared_exactly)
{
    show_gui = 0;
    load("");
    EXPECT_EQ(show_gui, 1) << "an empty file still shows the window";
    show_gui = 0;
    load("Version 1.001\nShow GUI\nShow taskbar\nKiosk\n" + master_record("A", "RDP", false, ""));
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nMaster connection list version miscompare.\n"});
    EXPECT_EQ(show_gui, 0) << "a wrong version touches no global";
    EXPECT_EQ(rows(), "");

    show_gui = 1;
    load(master_text("A\nWeb\nstandard echo\n" + std::string(32, '\n'), "show gui"));
    EXPECT_EQ(show_gui, 0) << "the GUI line is compared exactly";
    EXPECT_FALSE(row(0).ping_first) << "the ping line is compared exactly";
    make_connection_list(master_connection_list, (root / "none").c_str(), 35);
    EXPECT_EQ(rows(), "A|Web\n") << "a missing file changes nothing";
}

// Types number the records in file order; rows already in the list have type "old".
TEST_F(master_file_test, orders_by_name_without_case_and_equal_names_in_file_order)
{
    const struct { std::vector<std::string> present, file; std::string expected; } cases[] = {
        {{}, {"beta", "Alpha", "alpha", "Desk", "Desk"}, "Alpha|1\nalpha|2\nbeta|0\nDesk|3\nDesk|4\n"},
        // "a\t" sorts before "a\n" but after "a": the list is no longer sorted, and each
        // name still goes before the first row that is not less than it.
        {{}, {"a\t", "a", "a!", "a"}, "a\t|0\na|1\na|3\na!|2\n"},
        {{"b", "d"}, {"c", "a", "e"}, "a|1\nb|old\nc|0\nd|old\ne|2\n"},
    };
    for (const auto& c : cases) {
        gtk_list_store_clear(master_connection_list);
        for (const std::string& name : c.present)
            add_master(name, "old");
        std::string text = master_text("");
        for (size_t i = 0; i < c.file.size(); ++i)
            text += master_record(c.file[i], std::to_string(i), false, "");
        load(text);
        EXPECT_EQ(rows(), c.expected);
    }
}

// Look-ups by exact name and type find the first row in list order, whatever the file
// order (later changes of the list: the spawn tests).
TEST_F(master_file_test, a_loaded_list_finds_the_first_row_of_each_name_and_type)
{
    const auto found = [](const char* name, const char* type) {
        GtkTreeIter iter;
        if (!find_master_row(master_connection_list, name, type, &iter))
            return std::string("none");
        return read_master_row(GTK_TREE_MODEL(master_connection_list), &iter)[MC_PING_PORT];
    };
    load(master_text(master_record("Mail", "RDP", false, "1") + master_record("Desk", "RDP", false, "2") +
                     master_record("Mail", "Web", false, "3") + master_record("Desk", "RDP", false, "4") +
                     master_record("desk", "RDP", false, "5") + master_record("Alpha", "ICA", false, "6")));
    const struct { const char *name, *type, *port; } cases[] = {
        {"Mail", "RDP", "1"}, {"Desk", "RDP", "2"}, {"Mail", "Web", "3"}, {"desk", "RDP", "5"},
        {"Alpha", "ICA", "6"}, {"Alpha", "RDP", "none"}, {"Desk ", "RDP", "none"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(found(c.name, c.type), c.port) << c.name << "/" << c.type;
}

TEST_F(master_file_test, over_long_lines_and_a_cut_last_record)
{
    // Column 8's rest becomes column 9, and the record shifts: its last line ("0") is left
    // over and becomes a record of its own.
    load(master_text(master_record("A", "RDP", false, "", {{5, std::string(150, 'x')}, {8, std::string(110, 'y')}})));
    ASSERT_EQ(rows(), "0|\nA|RDP\n");
    EXPECT_EQ(row(1)[MC_SERVER], std::string(100, 'x'));
    EXPECT_EQ(row(1)[MC_PROGRAM], std::string(100, 'y'));
    EXPECT_EQ(row(1)[MC_WORKDIR], std::string(9, 'y')) << "the second long line is not skipped";
    EXPECT_EQ(row(1)[MC_USERNAME], "");
    // A file cut after the type line still gives its record.
    gtk_list_store_clear(master_connection_list);
    load(master_text("Cut\nRDPX"));
    EXPECT_EQ(rows(), "Cut|RDP\n");
}
}  // namespace
