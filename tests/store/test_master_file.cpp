#include "store/master_file.h"

#include "store_fixture.h"

#include <algorithm>
#include <random>

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
};

TEST_F(master_file_test, loads_every_column_of_a_record)
{
    load(header("Don't show GUI") +
         "Desk\nRDP\nStandard echo\n3389\n1\nsrv01\n\n\nnotepad\nC:\\\nann\nPW\nCORP\n"
         "Full Screen\nTrue Color (24 bit)\nBring to this computer\n\n\n\n\nthin1\n\n\n\n\n\n"
         "Use Default\nLAN (10 Mbps or higher)\nhome\nlp\nlpt1\ncom1\n-r clipboard\n01024\n0\n");
    ASSERT_EQ(master_names_and_types(), std::vector<std::string>{"Desk/RDP"});
    connection_record desk = row(0);
    EXPECT_TRUE(desk.ping_first);
    EXPECT_TRUE(desk.from_file);
    EXPECT_EQ(desk[MC_PING_PORT], "3389");
    EXPECT_EQ(desk[MC_SERVER], "srv01");
    EXPECT_EQ(desk[MC_WORKDIR], "C:\\");
    EXPECT_EQ(desk[MC_RDP_CLIENT_HOST], "thin1");
    EXPECT_EQ(desk[MC_RDP_EXTRA_OPTIONS], "-r clipboard");
    EXPECT_EQ(desk[MC_RDP_FLAGS], "01024");
    EXPECT_EQ(desk[MC_ICA_MASK], "0");
    EXPECT_EQ(show_gui, 0);
}

TEST_F(master_file_test, header_rules)
{
    show_gui = 0;
    load("");
    EXPECT_EQ(show_gui, 1) << "an empty file still shows the window";
    EXPECT_TRUE(master_names_and_types().empty());
    EXPECT_TRUE(messages.shown.empty());

    show_gui = 0;
    load("Version 1.001\nShow GUI\nShow taskbar\nKiosk\n" + record_lines("A", "RDP"));
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nMaster connection list version miscompare.\n"});
    EXPECT_EQ(show_gui, 0) << "a wrong version touches no global";
    EXPECT_TRUE(master_names_and_types().empty());

    load(header("show gui") + record_lines("A", "Web", "standard echo"));
    EXPECT_EQ(show_gui, 0) << "the GUI line is compared exactly";
    EXPECT_FALSE(row(0).ping_first) << "the ping line is compared exactly";
}

TEST_F(master_file_test, a_missing_file_changes_nothing)
{
    add_master("Kept", "RDP");
    show_gui = 0;
    make_connection_list(master_connection_list, (root / "none").c_str(), 35);
    EXPECT_EQ(master_names_and_types(), std::vector<std::string>{"Kept/RDP"});
    EXPECT_EQ(show_gui, 0);
}

TEST_F(master_file_test, sorts_by_name_without_case_keeping_file_order_of_equal_names)
{
    load(header() + record_lines("beta", "RDP") + record_lines("Alpha", "RDP") +
         record_lines("alpha", "ICA") + record_lines("Desk", "RDP") + record_lines("Desk", "ICA"));
    EXPECT_EQ(master_names_and_types(),
              (std::vector<std::string>{"Alpha/RDP", "alpha/ICA", "beta/RDP", "Desk/RDP", "Desk/ICA"}));
}

TEST_F(master_file_test, names_below_the_line_end_keep_the_row_by_row_order)
{
    // "a\t" sorts before "a\n" but after "a": the list is no longer sorted, and each
    // name still goes before the first row that is not less than it.
    load(header() + record_lines("a\t", "RDP") + record_lines("a", "RDP") +
         record_lines("a!", "RDP") + record_lines("a", "ICA"));
    EXPECT_EQ(master_names_and_types(),
              (std::vector<std::string>{"a\t/RDP", "a/RDP", "a/ICA", "a!/RDP"}));
}

TEST_F(master_file_test, new_rows_join_a_list_that_is_not_empty)
{
    add_master("b", "RDP");
    add_master("d", "RDP");
    load(header() + record_lines("c", "RDP") + record_lines("a", "RDP") + record_lines("e", "RDP"));
    EXPECT_EQ(master_names_and_types(),
              (std::vector<std::string>{"a/RDP", "b/RDP", "c/RDP", "d/RDP", "e/RDP"}));
}

// The loader places rows by bisection; it must give exactly the order of the plain
// walk "insert before the first row not less than the name with its line end".
TEST_F(master_file_test, matches_the_row_by_row_walk_on_random_names)
{
    std::mt19937 random(7);
    const std::string letters = "aAbB\t!~";
    std::string text = header();
    std::vector<std::string> expected;
    for (int i = 0; i < 300; ++i) {
        std::string name;
        for (int n = 1 + random() % 3; n > 0; --n)
            name += letters[random() % letters.size()];
        std::string type = std::to_string(i);
        text += record_lines(name, type);
        auto at = std::find_if(expected.begin(), expected.end(), [&](const std::string& row) {
            return g_ascii_strcasecmp(row.substr(0, row.find('/')).c_str(), (name + "\n").c_str()) >= 0;
        });
        expected.insert(at, name + "/" + type);
    }
    load(text);
    EXPECT_EQ(master_names_and_types(), expected);
}

TEST_F(master_file_test, over_long_lines_are_skipped_once_per_load)
{
    std::string first(150, 'x');
    std::string second(110, 'y');
    std::vector<std::string> rest(32);
    rest[2] = first;   // column 5
    rest[5] = second;  // column 8: its rest becomes column 9, and the record shifts
    load(header() + record_lines("A", "RDP", "Don't ping", rest));
    // The shifted record leaves its last line over: it becomes a record of its own.
    ASSERT_EQ(master_names_and_types(), (std::vector<std::string>{"/", "A/RDP"}));
    connection_record a = row(1);
    EXPECT_EQ(a[MC_SERVER], std::string(100, 'x'));
    EXPECT_EQ(a[MC_PROGRAM], std::string(100, 'y'));
    EXPECT_EQ(a[MC_WORKDIR], std::string(9, 'y')) << "the second long line is not skipped";
    EXPECT_EQ(a[MC_USERNAME], "");
}

TEST_F(master_file_test, truncated_records_reuse_the_buffer)
{
    // The file ends after the type line without its line end: the type loses its last
    // character, and every further column takes the buffer again, one character shorter.
    load(header() + "Cut\nRDPX");
    ASSERT_EQ(master_names_and_types(), std::vector<std::string>{"Cut/RDP"});
    connection_record cut = row(0);
    EXPECT_FALSE(cut.ping_first);
    EXPECT_EQ(cut[MC_PING_PORT], "R");
    EXPECT_EQ(cut[MC_PING_VALID], "");
    EXPECT_EQ(cut[MC_ICA_MASK], "");
}
}  // namespace
