// Saves meeting real faults: disks that fill up half-way (small tmpfs mounts in a mount
// namespace of the test's own) and kills at random instants. The list is never lost.
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
#include "store/user_file.h"
#include "support/test_support.h"

#include <chrono>
#include <random>
#include <set>
#include <sys/mount.h>
#include <sys/statvfs.h>

namespace {

// A master list and a user tree of rows of every type (ICA rows fill appsrv.ini).
struct connections {
    GtkListStore* list = create_master_store();
    GtkTreeStore* tree = create_user_tree_store();
    connections(const std::string& variant, int rows)
    {
        const char* types[] = {"RDP", "ICA", "Web"};
        for (int i = 0; i < rows; ++i) {
            connection_record record;
            record.col = {variant + std::to_string(i), types[i % 3], "", "3389", "1", "server" + std::to_string(i)};
            record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
            insert_master_row(list, -1, record);
            GtkTreeIter row;
            gtk_tree_store_insert_with_values(tree, &row, nullptr, -1, TC_PRIMARY, TRUE, TC_NAME, record[MC_NAME].c_str(),
                                              TC_TYPE, types[i % 3], -1);
        }
    }
    void save() const
    {
        save_master_connections(GTK_TREE_MODEL(list), current_master_settings());
        save_user_connections(GTK_TREE_MODEL(tree), "ann");
    }
};

class full_disk_test : public rooted_test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            GTEST_SKIP() << "mounting small file systems needs root and a private mount namespace";
        set_ica_dir(root / "etc/.kestrel");
        tmp_dir = root / "tmp/.kestrel";
    }
    // Fresh file systems of the given KiB at the root's /etc and /tmp (none for 0), till TearDown.
    void mount_small(int etc_kib, int tmp_kib)
    {
        TearDown();
        for (const auto& [dir, kib] : {std::pair{root / "etc", etc_kib}, {root / "tmp", tmp_kib}}) {
            make_dirs(dir);
            if (kib > 0 && mount("tmpfs", dir.c_str(), "tmpfs", 0, ("size=" + std::to_string(kib) + "k").c_str()) == 0)
                mounted.push_back(dir);
        }
        make_dirs(ica_dir);
        make_dirs(tmp_dir);
    }
    void TearDown() override
    {
        for (; !mounted.empty(); mounted.pop_back())
            umount(mounted.back().c_str());
    }
    std::string shown() const { return std::accumulate(messages.shown.begin(), messages.shown.end(), std::string()); }
    std::vector<std::string> mounted;
};

// Every save either writes the new list without a word, or keeps the list that was on
// disk before it and says which. appsrv.ini is not rolled back and says so on its own.
TEST_F(full_disk_test, master_saves_never_lose_the_list)
{
    const std::string restored = "\nError writing master connection list.\n\nBackup file has been restored.\n";
    const std::string not_backed_up = "\nError backing up master connection list.\n\nChanges have not been saved.\n";
    const std::string appsrv_not_written =
        "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n";
    const connections lists[] = {{"Site", 30}, {"Site", 300}};
    std::string texts[2];  // the old list and the new one, saved where there is room
    for (int i : {0, 1}) {
        mount_small(0, 0);
        save_master_connections(GTK_TREE_MODEL(lists[i].list), current_master_settings());
        texts[i] = read_file_text(ica_dir + "/kestrel.master");
    }
    int restores = 0;
    // From 8 KiB: the old master file and appsrv.ini take a page each.
    for (int etc_kib : {8, 12, 16, 20, 24, 28, 32, 36, 40, 48})
        for (int tmp_kib : {4, 8, 64}) {
            mount_small(etc_kib, tmp_kib);
            write_file(ica_dir + "/kestrel.master", texts[0]);
            for (int save = 1; save <= 2; ++save) {
                const std::string before = read_file_text(ica_dir + "/kestrel.master");
                messages.shown.clear();
                save_master_connections(GTK_TREE_MODEL(lists[1].list), current_master_settings());
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
            mount_small(48, 64);
            const std::string path = size ? root / "etc/zarvooptions" : wfclient_file;
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
    mount_small(64, 4);
    write_file(root / "etc/zarvooptions", "ZARVOSHELL=kestrelle\n" + std::string(5000, '#') + "\n");
    messages.shown.clear();
    write_zarvooptions();
    EXPECT_EQ(shown(), "\nError writing Zarvo options temporary configuration file, changes not saved.\n");
}

// Adding a connection needs more than 4 free blocks where the master list lives.
TEST_F(full_disk_test, adding_needs_more_than_four_free_blocks)
{
    mount_small(64, 0);
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

// Every file a killed save writes is afterwards byte for byte the one before or the one
// after, never cut.
using killed_save = rooted_test;

TEST_F(killed_save, every_file_is_whole_before_or_after)
{
    const int runs = getenv("KESTRELLE_KILLS") ? atoi(getenv("KESTRELLE_KILLS")) : 150;
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd", "ann:x:1000:1000::/home/ann:/bin/sh\n");
    ica_dir = root / "etc/.kestrel";
    current_user_filename = root / "home/ann/kestrel.inf";  // a save of ann's tree reloads it
    current_user_connection_tree = create_user_tree_store();
    // The master list, its backup, appsrv.ini and the user's tree.
    const auto on_disk = [&] {
        std::vector<std::string> files;
        for (const char* file : {"etc/.kestrel/kestrel.master", "tmp/.kestrel/kestrel.bak", "etc/.kestrel/appsrv.ini",
                                 "home/ann/kestrel.inf"})
            files.push_back(read_file_text(root / file));
        return files;
    };
    const connections lists[] = {{"Alpha", 1000}, {"Beta", 1200}};
    lists[1].save();
    const auto start = std::chrono::steady_clock::now();
    lists[0].save();
    const auto save_us = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    const std::vector<std::string> a = on_disk();
    lists[1].save();
    const std::vector<std::string> b = on_disk();

    std::mt19937 random(42);
    std::uniform_int_distribution<long> delay(0, save_us.count() * 6 / 5);
    int inside = 0;
    for (int run = 0; run < runs; ++run) {
        const connections& next = on_disk()[0] == b[0] ? lists[0] : lists[1];
        const pid_t child = fork();
        if (child == 0) {
            next.save();
            _exit(0);
        }
        usleep(static_cast<useconds_t>(delay(random)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        inside += WIFSIGNALED(status);
        const std::vector<std::string> now = on_disk();
        for (size_t i = 0; i < now.size(); ++i) {
            const size_t as = i == 1 ? 0 : i;  // the backup is a master list
            EXPECT_TRUE(now[i] == a[as] || now[i] == b[as]) << "kill " << run << " left file " << i << " cut";
        }
    }
    std::printf("%d kills, %d inside a save\n", runs, inside);
    EXPECT_GT(inside, runs / 4) << "the kills missed the saves";
}

}  // namespace
