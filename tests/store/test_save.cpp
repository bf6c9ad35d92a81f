#include "store/save.h"

#include "store/master_file.h"
#include "store_fixture.h"

#include <filesystem>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class save_test : public store_test {
protected:
    std::string master_text() { return read_file_text(root / "etc/.kestrel/kestrel.master"); }
    std::string backup_text() { return read_file_text(root / "tmp/.kestrel/kestrel.bak"); }
    void add_web(const std::string& name)
    {
        connection_record record;
        record[MC_NAME] = name;
        record[MC_TYPE] = "Web";
        record.ping_first = true;
        record[MC_PING_PORT] = "80";
        record[MC_PING_VALID] = "1";
        record[MC_SERVER] = "http://intranet/";
        record[MC_RDP_FLAGS] = "0";
        record[MC_ICA_MASK] = "0";
        insert_master_row(master_connection_list, -1, record);
    }
    const std::string web_record =
        "Web\nStandard echo\n80\n1\nhttp://intranet/\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n0\n0\n";
};

TEST_F(save_test, first_save_creates_the_file_without_a_backup)
{
    show_gui = 0;
    kiosk_mode = 1;
    save_master_connections();
    EXPECT_EQ(master_text(), "Version 1.000\nDon't show GUI\nDon't show taskbar\nKiosk\n");
    EXPECT_FALSE(std::filesystem::exists(root / "tmp/.kestrel/kestrel.bak"));
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"),
              "[WFClient]\nVersion=1\n\n[ApplicationServers]\n");
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(save_test, rows_are_written_35_lines_each_after_a_backup)
{
    save_master_connections();
    std::string before = master_text();
    add_web("Intranet");
    show_taskbar = 1;
    save_master_connections();
    EXPECT_EQ(master_text(), "Version 1.000\nShow GUI\nShow taskbar\nNot kiosk\nIntranet\n" + web_record);
    EXPECT_EQ(backup_text(), before);

    // What was saved loads back to the same rows.
    GtkListStore* saved = master_connection_list;
    master_connection_list = create_master_store();
    make_connection_list(master_connection_list, (root / "etc/.kestrel/kestrel.master").c_str(), 35);
    save_master_connections();
    EXPECT_EQ(master_text(), "Version 1.000\nShow GUI\nShow taskbar\nNot kiosk\nIntranet\n" + web_record);
    g_object_unref(saved);
}

TEST_F(save_test, a_failed_backup_changes_nothing)
{
    save_master_connections();
    std::string before = master_text();
    std::filesystem::remove_all(root / "tmp/.kestrel");
    add_web("Intranet");
    save_master_connections();
    EXPECT_EQ(messages.shown, std::vector<std::string>{
                                  "\nError backing up master connection list.\n\nChanges have not been saved.\n"});
    EXPECT_EQ(master_text(), before);
}

TEST_F(save_test, open_failures_restore_the_backup)
{
    save_master_connections();
    add_web("Intranet");
    save_master_connections();
    std::string before = master_text();

    ica_dir = root / "no-such-dir";
    save_master_connections();
    EXPECT_EQ(master_text(), before);
    ica_dir = root / "etc/.kestrel";
    save_master_connections();

    // Without its directory the master file can be neither written nor restored.
    std::filesystem::remove_all(root / "etc/.kestrel");
    save_master_connections();
    std::filesystem::remove(root / "tmp/.kestrel/kestrel.bak");
    save_master_connections();
    EXPECT_EQ(messages.shown,
              (std::vector<std::string>{
                  "\nError opening appsrv.ini for writing.\n\nBackup file has been restored.\n",
                  "\nError opening master connection list for writing.\n\nBackup file could not be restored.\n",
                  "\nError opening master connection list for writing.\n"}));
}

TEST_F(save_test, an_appsrv_write_error_keeps_the_new_master_file)
{
    ASSERT_EQ(symlink("/dev/full", (root / "etc/.kestrel/appsrv.ini").c_str()), 0);
    add_web("Intranet");
    save_master_connections();
    EXPECT_EQ(messages.shown, std::vector<std::string>{
                                  "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n"});
    EXPECT_EQ(master_text(), "Version 1.000\nShow GUI\nDon't show taskbar\nNot kiosk\nIntranet\n" + web_record);
}

// Runs body in a child process whose root folder is a small file system of its own,
// and returns what the child wrote to standard output. Needs the right to mount.
std::string in_small_file_system(const std::string& root, const std::string& size,
                                 const std::function<std::string()>& body)
{
    int channel[2];
    if (pipe(channel) != 0)
        return "no pipe";
    pid_t child = fork();
    if (child == 0) {
        close(channel[0]);
        std::string report = "no mount";
        if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            mount("tmpfs", root.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0)
            report = body();
        (void)!write(channel[1], report.data(), report.size());
        _exit(0);
    }
    close(channel[1]);
    std::string report;
    char buffer[4096];
    for (ssize_t n; (n = read(channel[0], buffer, sizeof buffer)) > 0;)
        report.append(buffer, n);
    close(channel[0]);
    waitpid(child, nullptr, 0);
    return report;
}

TEST_F(save_test, a_full_disk_restores_the_backup)
{
    for (int i = 0; i < 2000; ++i)
        add_web("Site" + std::to_string(i));
    std::string report = in_small_file_system(root.path(), "32k", [this] {
        make_dirs(root / "etc/.kestrel");
        make_dirs(root / "tmp/.kestrel");
        write_file(root / "etc/.kestrel/kestrel.master", header());
        save_master_connections();
        return messages.shown.empty() ? std::string("no message") : messages.shown[0] + "|" + master_text();
    });
    if (report == "no mount")
        GTEST_SKIP() << "mounting a small file system needs root";
    EXPECT_EQ(report, "\nError writing master connection list.\n\nBackup file has been restored.\n|" + header());
}
}  // namespace
