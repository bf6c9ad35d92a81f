// Saves on file systems that fill up half-way: small tmpfs mounts of many sizes. The
// test process takes a private mount namespace of its own, so nothing is seen outside.
#include "editors/connections.h"
#include "ica/wfclient.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/ica_paths.h"
#include "store/choices.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/record.h"
#include "store/save.h"
#include "support/test_support.h"

#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/statvfs.h>

namespace {

// A tmpfs of kib KiB at dir while it lives.
struct tmpfs {
    std::string dir;
    tmpfs(const std::string& at, int kib) : dir(at)
    {
        make_dirs(dir);
        EXPECT_EQ(mount("tmpfs", dir.c_str(), "tmpfs", 0, ("size=" + std::to_string(kib) + "k").c_str()), 0) << dir;
    }
    ~tmpfs() { umount(dir.c_str()); }
};

class full_disk : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            GTEST_SKIP() << "mounting small file systems needs root and a private mount namespace";
    }
    // Points the program's folders into a new folder of work, which it returns.
    std::string use_root(const std::string& name)
    {
        const std::string root = work / name;
        setenv("KESTRELLE_ROOT", root.c_str(), 1);
        set_ica_dir(root + "/etc/.kestrel");
        tmp_dir = root + "/tmp/.kestrel";
        return root;
    }
    std::string shown() const { return std::accumulate(messages.shown.begin(), messages.shown.end(), std::string()); }
    temp_dir work;
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
TEST_F(full_disk, master_saves_never_lose_the_list)
{
    const std::string restored = "\nError writing master connection list.\n\nBackup file has been restored.\n";
    const std::string not_backed_up = "\nError backing up master connection list.\n\nChanges have not been saved.\n";
    const std::string appsrv_not_written =
        "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n";
    GtkTreeModel* lists[] = {web_list(30), web_list(300)};
    std::string texts[2];  // the old list and the new one, saved where there is room
    for (int i : {0, 1}) {
        make_dirs(use_root("roomy") + "/tmp/.kestrel");
        make_dirs(ica_dir);
        save_master_connections(lists[i], current_master_settings());
        texts[i] = read_file_text(ica_dir + "/kestrel.master");
    }
    int restores = 0;
    // From 8 KiB: the old master file and appsrv.ini take a page each.
    for (int etc_kib : {8, 12, 16, 20, 24, 28, 32, 36, 40, 48})
        for (int tmp_kib : {4, 8, 64}) {
            const std::string root = use_root("case-" + std::to_string(etc_kib) + "-" + std::to_string(tmp_kib));
            tmpfs etc(ica_dir, etc_kib), tmp(tmp_dir, tmp_kib);
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

// Options files just under a page grow past it when a key is appended. With /etc filled
// to the brim (the filler takes what fits) the file is replaced whole or stays as it was.
TEST_F(full_disk, options_file_is_replaced_whole_or_left_unchanged)
{
    int replaced = 0;
    // A failed save says failure and leaves the file as it was.
    const auto save = [&](const std::string& options, const std::string& saved, const std::string& failure, size_t filler_kib) {
        const std::string path = std::string(getenv("KESTRELLE_ROOT")) + "/etc/zarvooptions";
        write_file(path, options);
        write_file(path + ".filler", std::string(filler_kib * 1024, 'f'));
        show_taskbar = 1;
        kiosk_mode = 0;
        messages.shown.clear();
        write_zarvooptions();
        const std::string after = read_file_text(path);
        replaced += after == saved;
        EXPECT_TRUE(messages.shown.empty() ? after == saved : shown() == failure && after == options) << path << shown();
    };
    for (size_t size : {4080, 12270, 20000})
        for (size_t filler_kib : {0, 8, 16, 24, 64}) {
            const std::string root = use_root("options-" + std::to_string(size) + "-" + std::to_string(filler_kib));
            tmpfs etc(root + "/etc", 32), tmp(root + "/tmp", 64);
            const std::string start = "ZARVOSHELL=kestrelle\n" + std::string(size - 41, '#') + "\n";
            save(start + "SHOW_TASKBAR=FALSE\n", start + "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n",
                 "\nError saving Zarvo options configuration file, changes not saved.\n", filler_kib);
        }
    EXPECT_GT(replaced, 0);
    EXPECT_LT(replaced, 15);
    // A /tmp too small for the copy.
    const std::string root = use_root("options-full-tmp");
    tmpfs etc(root + "/etc", 64), tmp(root + "/tmp", 4);
    save("ZARVOSHELL=kestrelle\n" + std::string(5000, '#') + "\n", "",
         "\nError writing Zarvo options temporary configuration file, changes not saved.\n", 0);
    EXPECT_EQ(shown(), "\nError writing Zarvo options temporary configuration file, changes not saved.\n");
}

// The copy back of wfclient.ini onto a filling /etc/.kestrel: the client's file is
// replaced whole or stays as it was, and the user hears nothing of it either way.
TEST_F(full_disk, wfclient_copy_back_is_whole_or_nothing)
{
    std::string old_text = "[WFClient]\nTcpBrowserAddress=old\n";
    for (int i = 0; old_text.size() < 16300; ++i)  // just under four pages: the new text needs a fifth
        old_text += "ClientSetting" + std::to_string(i) + "=kept by the client\n";
    const auto add_servers = [](const std::string& text) {
        return rewrite_server_locations(text, {{"https://a.example/", "https://b.example/"}, {}, ica_ssl_browser});
    };
    std::set<std::string> outcomes;
    for (int filler_kib : {0, 8, 16, 24, 32, 40}) {
        use_root("wfclient-" + std::to_string(filler_kib));
        tmpfs etc(ica_dir, 48), tmp(tmp_dir, 64);
        write_file(wfclient_file, old_text);
        write_file(ica_dir + "/filler", std::string(static_cast<size_t>(filler_kib) * 1024, 'f'));
        EXPECT_TRUE(rewrite_wfclient(add_servers));
        EXPECT_TRUE(messages.shown.empty());
        const std::string after = read_file_text(wfclient_file);
        EXPECT_TRUE(after == add_servers(old_text) || after == old_text) << filler_kib << "k";
        outcomes.insert(after == old_text ? "kept" : "new");
    }
    EXPECT_EQ(outcomes, (std::set<std::string>{"kept", "new"}));
}

// Adding a connection needs more than 4 free blocks where the master list lives.
TEST_F(full_disk, adding_needs_more_than_four_free_blocks)
{
    tmpfs etc(use_root("adding") + "/etc/.kestrel", 64);
    struct statvfs fs;
    statvfs(etc.dir.c_str(), &fs);
    std::string seen;
    for (unsigned long free_blocks : {4ul, 5ul}) {
        write_file(etc.dir + "/filler", std::string((fs.f_bfree - free_blocks) * fs.f_bsize, 'f'));
        struct statvfs now;
        statvfs(etc.dir.c_str(), &now);
        seen += std::to_string(now.f_bfree) + " free: " + (enough_disk_space() ? "let through\n" : "refused\n");
    }
    EXPECT_EQ(seen, "4 free: refused\n5 free: let through\n");
}

}  // namespace
