#include "store/save.h"

#include "store/master_file.h"
#include "store_fixture.h"

namespace {

class save_test : public store_test {
protected:
    std::string master_text() { return read_file_text(root / "etc/.kestrel/kestrel.master"); }
    void add_web(const std::string& name)
    {
        connection_record record;
        record.col = {name, "Web", "", "80", "1", "http://intranet/"};
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        record.ping_first = true;
        insert_master_row(master_connection_list, -1, record);
    }
    const std::string web_record =
        "Web\nStandard echo\n80\n1\nhttp://intranet/\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n0\n0\n";
};

TEST_F(save_test, writes_35_lines_a_row_after_backing_up_an_existing_file)
{
    show_gui = 0;
    kiosk_mode = 1;
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    const std::string first = "Version 1.000\nDon't show GUI\nDon't show taskbar\nKiosk\n";
    EXPECT_EQ(master_text(), first);
    EXPECT_FALSE(std::filesystem::exists(root / "tmp/.kestrel/kestrel.bak")) << "nothing to back up";
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"), "[WFClient]\nVersion=1\n\n[ApplicationServers]\n");

    add_web("Intranet");
    show_gui = show_taskbar = 1;
    kiosk_mode = 0;
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    EXPECT_EQ(master_text(), "Version 1.000\nShow GUI\nShow taskbar\nNot kiosk\nIntranet\n" + web_record);
    EXPECT_EQ(read_file_text(root / "tmp/.kestrel/kestrel.bak"), first);
    EXPECT_TRUE(messages.shown.empty());
}

// Each failure leaves the last good master file in place where it can.
TEST_F(save_test, failures_restore_the_backup_where_they_can)
{
    add_web("Intranet");
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    const std::string saved = master_text();

    ica_dir = root / "no-such-dir";
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());  // the backup is consumed by its restore
    EXPECT_EQ(master_text(), saved);
    ica_dir = root / "etc/.kestrel";

    std::filesystem::remove_all(root / "tmp/.kestrel");
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    EXPECT_EQ(master_text(), saved);
    make_dirs(root / "tmp/.kestrel");
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());

    // Without its folder the master file can be neither written nor restored.
    std::filesystem::remove_all(root / "etc/.kestrel");
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    std::filesystem::remove(root / "tmp/.kestrel/kestrel.bak");
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    EXPECT_EQ(messages.shown,
              (std::vector<std::string>{
                  "\nError opening appsrv.ini for writing.\n\nBackup file has been restored.\n",
                  "\nError backing up master connection list.\n\nChanges have not been saved.\n",
                  "\nError opening master connection list for writing.\n\nBackup file could not be restored.\n",
                  "\nError opening master connection list for writing.\n"}));
}

// appsrv.ini outgrows the room before the master file does: its error stops the walk,
// and the master file must still get every connection.
TEST_F(save_test, an_appsrv_write_error_keeps_the_whole_new_master_file)
{
    for (int i = 0; i < 40; ++i) {
        connection_record record;
        record.col = {"Desk" + std::to_string(i), "ICA", "", "", "1", "citrix.example", "Default", "Default"};
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        insert_master_row(master_connection_list, -1, record);
    }
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    const std::string whole = master_text(), appsrv = read_file_text(root / "etc/.kestrel/appsrv.ini");
    ASSERT_LT(whole.size() + 1024, appsrv.size());
    {
        full_disk full(whole.size() + 512);
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    }
    EXPECT_EQ(messages.shown, std::vector<std::string>{
                                  "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n"});
    EXPECT_EQ(master_text(), whole);
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"), appsrv);
}

}  // namespace
