#include "store_fixture.h"

namespace {

class master_file_test : public store_test {
protected:
    void load(const std::string& text)
    {
        write_file(root / "master", text);
        make_connection_list(master_connection_list, (root / "master").c_str(), 35);
    }
    std::string rows(std::initializer_list<int> columns = {MC_NAME, MC_TYPE})
    {
        return dump_model(GTK_TREE_MODEL(master_connection_list), columns);
    }
};

// Every column's line and the records saved: the appsrv.ini test saves a stored list again.
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
    EXPECT_EQ(rows({MC_PING}), "FALSE\n") << "the ping line is compared exactly";
    make_connection_list(master_connection_list, (root / "none").c_str(), 35);
    EXPECT_EQ(rows(), "A|Web\n") << "a missing file changes nothing";
}

// The ping ports number the records in file order; rows already in the list have type
// "old" and no port. Look-ups by exact name and type find the first row in list order.
TEST_F(master_file_test, orders_by_name_without_case_and_finds_the_first_row_of_a_name_and_type)
{
    const struct { std::vector<std::string> present, file; std::string expected; } cases[] = {
        // "a\t" sorts before "a\n" but after "a": the list is no longer sorted, and each
        // name still goes before the first row that is not less than it.
        {{}, {"a\t", "a", "a!", "a"}, "a\t|0\na|1\na|3\na!|2\n"},
        {{"b", "d"}, {"c", "a", "e"}, "a|1\nb|\nc|0\nd|\ne|2\n"},
        {{"Desk"}, {"beta", "Alpha", "alpha", "Desk", "Desk"}, "Alpha|1\nalpha|2\nbeta|0\nDesk|\nDesk|3\nDesk|4\n"},
    };
    for (const auto& c : cases) {
        gtk_list_store_clear(master_connection_list);
        for (const std::string& name : c.present)
            add_master(name, "old");
        std::string text = master_text("");
        for (size_t i = 0; i < c.file.size(); ++i)
            text += master_record(c.file[i], "RDP", false, std::to_string(i));
        load(text);
        EXPECT_EQ(rows({MC_NAME, MC_PING_PORT}), c.expected);
    }
    const struct { const char *name, *type, *port; } finds[] = {
        {"Desk", "RDP", "3"}, {"Desk", "old", ""}, {"alpha", "RDP", "2"}, {"desk", "RDP", "none"},
        {"Desk ", "RDP", "none"}, {"beta", "ICA", "none"},
    };
    for (const auto& f : finds) {
        GtkTreeIter iter;
        const bool found = find_master_row(master_connection_list, f.name, f.type, &iter);
        EXPECT_EQ(found ? read_master_row(GTK_TREE_MODEL(master_connection_list), &iter)[MC_PING_PORT] : "none", f.port)
            << f.name << "/" << f.type;
    }
}

TEST_F(master_file_test, over_long_lines_and_a_cut_last_record)
{
    // Column 8's rest becomes column 9 (a second long line is not skipped), and the record
    // shifts: its last line ("0") is left over and becomes a record of its own.
    load(master_text(master_record("A", "RDP", false, "", {{5, std::string(150, 'x')}, {8, std::string(110, 'y')}})));
    EXPECT_EQ(rows({MC_NAME, MC_TYPE, MC_SERVER, MC_PROGRAM, MC_WORKDIR, MC_USERNAME}),
              "0|||||\nA|RDP|" + std::string(100, 'x') + "|" + std::string(100, 'y') + "|yyyyyyyyy|\n");
    // A file cut after the type line still gives its record.
    gtk_list_store_clear(master_connection_list);
    load(master_text("Cut\nRDPX"));
    EXPECT_EQ(rows(), "Cut|RDP\n");
}

TEST_F(store_test, the_header_follows_the_settings_and_an_existing_file_is_backed_up)
{
    show_gui = 0;
    kiosk_mode = 1;
    save();
    const std::string first = "Version 1.000\nDon't show GUI\nDon't show taskbar\nKiosk\n";
    EXPECT_EQ(master_file(), first);
    EXPECT_FALSE(std::filesystem::exists(root / "tmp/.kestrel/kestrel.bak")) << "nothing to back up";
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"), "[WFClient]\nVersion=1\n\n[ApplicationServers]\n");
    show_gui = show_taskbar = 1;
    kiosk_mode = 0;
    save();
    EXPECT_EQ(master_file(), "Version 1.000\nShow GUI\nShow taskbar\nNot kiosk\n");
    EXPECT_EQ(read_file_text(root / "tmp/.kestrel/kestrel.bak"), first);
    EXPECT_TRUE(messages.shown.empty());
}

// Each failure leaves the last good master file in place where it can.
TEST_F(store_test, failures_restore_the_backup_where_they_can)
{
    add_master("Intranet", "Web");
    save();
    const std::string saved = master_file();
    std::filesystem::remove_all(root / "tmp/.kestrel");
    save();
    EXPECT_EQ(master_file(), saved);
    make_dirs(root / "tmp/.kestrel");
    save();
    // Without its folder the master file can be neither written nor restored.
    std::filesystem::remove_all(root / "etc/.kestrel");
    save();
    std::filesystem::remove(root / "tmp/.kestrel/kestrel.bak");
    save();
    EXPECT_EQ(messages.shown,
              (std::vector<std::string>{
                  "\nError backing up master connection list.\n\nChanges have not been saved.\n",
                  "\nError opening master connection list for writing.\n\nBackup file could not be restored.\n",
                  "\nError opening master connection list for writing.\n"}));
}

// appsrv.ini outgrows the room before the master file does: its error stops the walk,
// and the master file must still get every connection.
TEST_F(store_test, an_appsrv_write_error_keeps_the_whole_new_master_file)
{
    for (int i = 0; i < 40; ++i)
        add_master("Desk" + std::to_string(i), "ICA", {{MC_SERVER, "citrix.example"}});
    save();
    const std::string whole = master_file(), appsrv = read_file_text(root / "etc/.kestrel/appsrv.ini");
    ASSERT_LT(whole.size() + 1024, appsrv.size());
    {
        full_disk full(whole.size() + 512);
        save();
    }
    EXPECT_EQ(messages.shown, std::vector<std::string>{
                                  "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n"});
    EXPECT_EQ(master_file(), whole);
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"), appsrv);
}

}  // namespace
