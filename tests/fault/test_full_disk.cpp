// Saves on file systems that fill up half-way: small tmpfs mounts of many sizes, in a
// mount namespace of the test's own, so nothing is seen outside.
#include "editors/connections.h"
#include "ica/wfclient.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/choices.h"
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/save.h"
#include "support/test_support.h"

#include <set>
#include <sys/mount.h>
#include <sys/statvfs.h>

namespace {

class full_disk_test : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            GTEST_SKIP() << "mounting small file systems needs root and a private mount namespace";
    }
    // Points the program's folders into a new folder of work, with a tmpfs of the given
    // KiB at its /etc and one at its /tmp (none for 0), till TearDown.
    void use_root(const std::string& name, int etc_kib, int tmp_kib)
    {
        TearDown();
        root = work / name;
        setenv("KESTRELLE_ROOT", root.c_str(), 1);
        for (const auto& [dir, kib] : {std::pair{root + "/etc", etc_kib}, {root + "/tmp", tmp_kib}}) {
            make_dirs(dir);
            const std::string size = "size=" + std::to_string(kib) + "k";
            if (kib > 0 && mount("tmpfs", dir.c_str(), "tmpfs", 0, size.c_str()) == 0)
                mounted.push_back(dir);
        }
        set_ica_dir(root + "/etc/.kestrel");
        tmp_dir = root + "/tmp/.kestrel";
        make_dirs(ica_dir);
        make_dirs(tmp_dir);
    }
    void TearDown() override
    {
        for (; !mounted.empty(); mounted.pop_back())
            umount(mounted.back().c_str());
    }
    std::string shown() const { return std::accumulate(messages.shown.begin(), messages.shown.end(), std::string()); }
    temp_dir work;
    std::string root;
    std::vector<std::string> mounted;
    message_recorder messages;
};

GtkTreeModel* web_list(int rows)
{
    GtkListStore* list = create_master_store();
    for (int i = 0; i < rows; ++i) {
        connection_record record;
        record.col = {"Site" + std::to_string(1000 + i), "Web", "", "80", "1", "http://intranet.example/"};
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        insert_master_row(list, -1, record);
    }
    return GTK_TREE_MODEL(list);
}

// Every save either writes the new list without a word, or keeps the list that was on
// disk before it and says which. appsrv.ini is not rolled back and says so on its own.
TEST_F(full_disk_test, master_saves_never_lose_the_list)
{
    const std::string restored = "\nError writing master connection list.\n\nBackup file has been restored.\n";
    const std::string not_backed_up = "\nError backing up master connection list.\n\nChanges have not been saved.\n";
    const std::string appsrv_not_written =
        "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n";
    GtkTreeModel* lists[] = {web_list(30), web_list(300)};
    std::string texts[2];  // the old list and the new one, saved where there is room
    for (int i : {0, 1}) {
        use_root("roomy", 0, 0);
        save_master_connections(lists[i], current_master_settings());
        texts[i] = read_file_text(ica_dir + "/kestrel.master");
    }
    int restores = 0;
    // From 8 KiB: the old master file and appsrv.ini take a page each.
    for (int etc_kib : {8, 12, 16, 20, 24, 28, 32, 36, 40, 48})
        for (int tmp_kib : {4, 8, 64}) {
            use_root("case-" + std::to_string(etc_kib) + "-" + std::to_string(tmp_kib), etc_kib, tmp_kib);
            write_file(ica_dir + "/kestrel.master", texts[0]);
            for (int save = 1; save <= 2; ++save) {
                const std::string before = read_file_text(ica_dir + "/kestrel.master");
                messages.shown.clear();
                save_master_connections(lists[1], current_master_settings());
                const std::string after = read_file_text(ica_dir + "/kestrel.master");
                std::string said = shown();
                if (said.ends_with(appsrv_not_written))
                    said.resize(said.size() - appsrv_not_written.size());
                restores += said == restored;
                EXPECT_TRUE(said.empty() ? after == texts[1] : (said == restored || said == not_backed_up) && after == before)
                    << etc_kib << "k/" << tmp_kib << "k save " << save << ": " << said;
            }
        }
    EXPECT_GT(restores, 0) << "no save needed its backup";
}

// Files just under a page grow past it when rewritten, onto a folder filled to the brim
// (the filler takes what fits): each is replaced whole or stays as it was, and only the
// options file tells of a failure. Over the fillers both outcomes are seen.
TEST_F(full_disk_test, rewritten_files_are_whole_or_unchanged)
{
    const std::string options_failed = "\nError saving Zarvo options configuration file, changes not saved.\n";
    std::string wfclient = "[WFClient]\nTcpBrowserAddress=old\n";
    for (int i = 0; wfclient.size() < 16300; ++i)  // just under four pages: the new text needs a fifth
        wfclient += "ClientSetting" + std::to_string(i) + "=kept by the client\n";
    const auto add_servers = [](const std::string& text) {
        return rewrite_server_locations(text, {{"https://a.example/", "https://b.example/"}, {}, ica_ssl_browser});
    };
    for (size_t size : {4080, 12270, 20000, 0}) {
        const std::string options = "ZARVOSHELL=kestrelle\n" + std::string(size ? size - 41 : 0, '#') + "\n";
        const std::string old = size ? options + "SHOW_TASKBAR=FALSE\n" : wfclient;
        const std::string now = size ? options + "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n" : add_servers(wfclient);
        std::set<bool> replaced;
        for (int filler_kib : {0, 8, 16, 24, 32, 40}) {
            use_root("rewrite-" + std::to_string(size) + "-" + std::to_string(filler_kib), 48, 64);
            const std::string path = size ? root + "/etc/zarvooptions" : wfclient_file;
            write_file(path, old);
            write_file(ica_dir + "/filler", std::string(filler_kib * 1024, 'f'));
            show_taskbar = 1;
            kiosk_mode = 0;
            messages.shown.clear();
            if (size)
                write_zarvooptions();
            else
                EXPECT_TRUE(rewrite_wfclient(add_servers));
            const std::string after = read_file_text(path);
            replaced.insert(after == now);
            EXPECT_TRUE(after == now ? shown().empty() : after == old && shown() == (size ? options_failed : ""))
                << size << " " << filler_kib << "k: " << shown();
        }
        EXPECT_EQ(replaced.size(), 2u) << size;
    }
    use_root("full-tmp", 64, 4);
    write_file(root + "/etc/zarvooptions", "ZARVOSHELL=kestrelle\n" + std::string(5000, '#') + "\n");
    messages.shown.clear();
    write_zarvooptions();
    EXPECT_EQ(shown(), "\nError writing Zarvo options temporary configuration file, changes not saved.\n");
}

// Adding a connection needs more than 4 free blocks where the master list lives.
TEST_F(full_disk_test, adding_needs_more_than_four_free_blocks)
{
    use_root("adding", 64, 0);
    struct statvfs fs;
    statvfs(ica_dir.c_str(), &fs);
    std::string seen;
    for (unsigned long free_blocks : {4ul, 5ul}) {
        write_file(ica_dir + "/filler", std::string((fs.f_bfree - free_blocks) * fs.f_bsize, 'f'));
        struct statvfs now;
        statvfs(ica_dir.c_str(), &now);
        seen += std::to_string(now.f_bfree) + " free: " + (enough_disk_space() ? "let through\n" : "refused\n");
    }
    EXPECT_EQ(seen, "4 free: refused\n5 free: let through\n");
}

}  // namespace
