#include "store/save.h"

#include "store/master_file.h"
#include "store_fixture.h"

namespace {

class save_test : public store_test {
protected:
    std::string master_file() { return read_file_text(root / "etc/.kestrel/kestrel.master"); }
    void save() { save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings()); }
};

// The records' own lines: the appsrv.ini test, which saves a stored list again.
TEST_F(save_test, the_header_follows_the_settings_and_an_existing_file_is_backed_up)
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
TEST_F(save_test, failures_restore_the_backup_where_they_can)
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
TEST_F(save_test, an_appsrv_write_error_keeps_the_whole_new_master_file)
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
