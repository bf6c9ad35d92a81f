// Saves on file systems that fill up half-way. /etc/.kestrel and /tmp/.kestrel (or /etc
// and /tmp for the options file) are small tmpfs mounts of many sizes, in a private
// mount namespace of a child process; the child reports each outcome on a pipe.
#include "editors/connections.h"
#include "ica/wfclient.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/choices.h"
#include "store/record.h"
#include "store/save.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::string restored =
    "\nError writing master connection list.\n\nBackup file has been restored.\n";
const std::string not_backed_up =
    "\nError backing up master connection list.\n\nChanges have not been saved.\n";
const std::string appsrv_not_written =
    "\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n";
const std::string options_not_written =
    "\nError writing Zarvo options temporary configuration file, changes not saved.\n";
const std::string options_not_saved =
    "\nError saving Zarvo options configuration file, changes not saved.\n";

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += text;
    return all;
}

bool mount_tmpfs(const std::string& dir, int kib)
{
    make_dirs(dir);
    const std::string options = "size=" + std::to_string(kib) + "k";
    return mount("tmpfs", dir.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

// Runs body in a child with a private mount namespace; the child's lines come back.
// Returns false, with the reason in report, when the namespace or a mount is not allowed.
bool in_private_mounts(const std::function<void(std::ostream&)>& body, std::string* report)
{
    if (geteuid() != 0) {
        *report = "mounting small file systems needs root";
        return false;
    }
    int out[2];
    if (pipe(out) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        close(out[0]);
        std::ostringstream lines;
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            _exit(2);
        body(lines);
        const std::string text = lines.str();
        (void)!write(out[1], text.data(), text.size());
        _exit(0);
    }
    close(out[1]);
    char buffer[4096];
    for (ssize_t n; (n = read(out[0], buffer, sizeof buffer)) > 0;)
        report->append(buffer, static_cast<size_t>(n));
    close(out[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 2) {
        *report = "no private mount namespace (unshare -m) or tmpfs mount allowed here";
        return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The run could not start for want of rights: the test is skipped with the reason.
bool not_allowed(const std::string& report)
{
    return report.find("needs root") != std::string::npos || report.find("not allowed") != std::string::npos;
}

GtkListStore* web_list(int rows)
{
    GtkListStore* list = create_master_store();
    for (int i = 0; i < rows; ++i) {
        connection_record record;
        record.col = {"Site" + std::to_string(1000 + i), "Web", "", "80", "1", "http://intranet.example/"};
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        insert_master_row(list, -1, record);
    }
    return list;
}

struct save_root {
    std::string path;
    std::string master() const { return path + "/etc/.kestrel/kestrel.master"; }
    void point_globals_here() const
    {
        setenv("KESTRELLE_ROOT", path.c_str(), 1);
        ica_dir = path + "/etc/.kestrel";
        tmp_dir = path + "/tmp/.kestrel";
    }
};

// The master file a save of list writes, made on a file system with room.
std::string saved_text(GtkListStore* list, const std::string& scratch)
{
    save_root root{scratch};
    make_dirs(root.path + "/etc/.kestrel");
    make_dirs(root.path + "/tmp/.kestrel");
    root.point_globals_here();
    master_connection_list = list;
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    return read_file_text(root.master());
}

std::string escaped(const std::string& text)
{
    gchar* escaped_text = g_strescape(text.c_str(), nullptr);
    std::string result = escaped_text;
    g_free(escaped_text);
    return result;
}

// Silence means the new list was written; a restore or a refused backup means the list
// on disk before the save is still there. appsrv.ini is not rolled back and says so on
// its own, whatever happened to the master file.
bool as_promised(std::string said, const std::string& after, const std::string& before,
                 const std::string& new_text)
{
    if (said.ends_with(appsrv_not_written))
        said.resize(said.size() - appsrv_not_written.size());
    if (said.empty())
        return after == new_text;
    return (said == restored || said == not_backed_up) && after == before;
}

// Every save either writes the new list without a word, or keeps the list that was on
// disk before it and says which. Anything else, a master file holding neither, is a
// lost list.
TEST(full_disk, master_saves_on_two_small_file_systems_never_lose_the_list)
{
    temp_dir work;
    int cases = 0;
    std::string report;
    const bool ran = in_private_mounts([&](std::ostream& out) {
        message_recorder messages;
        GtkListStore* old_list = web_list(30);
        GtkListStore* new_list = web_list(300);
        const std::string old_text = saved_text(old_list, work / "roomy-old");
        const std::string new_text = saved_text(new_list, work / "roomy-new");
        // From 8 KiB: the old master file and appsrv.ini take a page each.
        for (int etc_kib : {8, 12, 16, 20, 24, 28, 32, 36, 40, 48})
            for (int tmp_kib : {4, 8, 64}) {
                save_root root{work / ("case-" + std::to_string(etc_kib) + "-" + std::to_string(tmp_kib))};
                if (!mount_tmpfs(root.path + "/etc/.kestrel", etc_kib) ||
                    !mount_tmpfs(root.path + "/tmp/.kestrel", tmp_kib))
                    _exit(2);
                root.point_globals_here();
                write_file(root.master(), old_text);
                master_connection_list = new_list;
                std::string before = old_text;
                for (int save = 1; save <= 2; ++save) {
                    messages.shown.clear();
                    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
                    const std::string after = read_file_text(root.master());
                    const std::string said = joined(messages.shown);
                    const char* state = after == new_text ? "new" : after == before ? "kept" : "LOST";
                    out << etc_kib << "k/" << tmp_kib << "k save " << save << ": " << state << " "
                        << (as_promised(said, after, before, new_text) ? "ok" : "BROKEN") << " "
                        << escaped(said) << "\n";
                    before = after;
                }
                umount((root.path + "/etc/.kestrel").c_str());
                umount((root.path + "/tmp/.kestrel").c_str());
            }
    }, &report);
    if (!ran && not_allowed(report))
        GTEST_SKIP() << report;
    ASSERT_TRUE(ran) << report;
    std::istringstream lines(report);
    std::map<std::string, int> outcomes;
    for (std::string line; std::getline(lines, line); ++cases) {
        EXPECT_EQ(line.find("LOST"), std::string::npos) << line;
        EXPECT_EQ(line.find("BROKEN"), std::string::npos) << line;
        outcomes[line.substr(line.find(':') + 2)]++;
    }
    EXPECT_EQ(cases, 60);
    for (const auto& [outcome, count] : outcomes)
        std::printf("%3d x %s\n", count, outcome.c_str());
}

// Options files just under a page grow past it when a key is appended. With /etc filled
// up to the brim the move cannot write the copy whole: the file must then stay as it was.
TEST(full_disk, options_file_is_replaced_whole_or_left_unchanged)
{
    temp_dir work;
    std::string report;
    const bool ran = in_private_mounts([&](std::ostream& out) {
        message_recorder messages;
        for (size_t size : {4080, 12270, 20000})
            for (int filler_kib : {0, 8, 16, 24, 64}) {
                const std::string taskbar_line = "SHOW_TASKBAR=FALSE\n";
                std::string options = "ZARVOSHELL=kestrelle\n";
                while (options.size() + taskbar_line.size() < size)
                    options += "#";
                options.back() = '\n';
                const std::string saved = options + "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n";
                options += taskbar_line;
                const std::string root = work / ("options-" + std::to_string(size) + "-" + std::to_string(filler_kib));
                if (!mount_tmpfs(root + "/etc", 32) || !mount_tmpfs(root + "/tmp", 64))
                    _exit(2);
                setenv("KESTRELLE_ROOT", root.c_str(), 1);
                write_file(root + "/etc/zarvooptions", options);
                // As much of the filler as fits.
                write_file(root + "/etc/filler", std::string(static_cast<size_t>(filler_kib) * 1024, 'f'));
                show_taskbar = 1;
                kiosk_mode = 0;
                messages.shown.clear();
                write_zarvooptions();
                const std::string after = read_file_text(root + "/etc/zarvooptions");
                const std::string said = joined(messages.shown);
                const bool replaced = after == saved;
                const bool ok = said.empty() ? replaced : said == options_not_saved && after == options;
                out << size << " bytes, filler " << filler_kib << "k: "
                    << (replaced ? "replaced" : after == options ? "unchanged" : "CUT") << " "
                    << (ok ? "ok" : "BROKEN") << "\n";
                umount((root + "/etc").c_str());
                umount((root + "/tmp").c_str());
            }
        // A /tmp too small for the copy: the write error, and the file as it was.
        const std::string root = work / "options-full-tmp";
        if (!mount_tmpfs(root + "/etc", 64) || !mount_tmpfs(root + "/tmp", 4))
            _exit(2);
        setenv("KESTRELLE_ROOT", root.c_str(), 1);
        const std::string options = "ZARVOSHELL=kestrelle\n" + std::string(5000, '#') + "\n";
        write_file(root + "/etc/zarvooptions", options);
        messages.shown.clear();
        write_zarvooptions();
        const bool ok = joined(messages.shown) == options_not_written &&
                        read_file_text(root + "/etc/zarvooptions") == options;
        out << "full /tmp: " << (ok ? "unchanged ok" : "BROKEN") << "\n";
        umount((root + "/etc").c_str());
        umount((root + "/tmp").c_str());
    }, &report);
    if (!ran && not_allowed(report))
        GTEST_SKIP() << report;
    ASSERT_TRUE(ran) << report;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(line.find("BROKEN"), std::string::npos) << line;
        std::printf("%s\n", line.c_str());
    }
}

// The copy back of wfclient.ini onto a filling /etc/.kestrel (the filler takes as much
// as fits): the client's file is replaced whole or stays as it was, and the user hears
// nothing of it either way.
TEST(full_disk, wfclient_copy_back_is_whole_or_nothing)
{
    temp_dir work;
    std::string report;
    const bool ran = in_private_mounts([&](std::ostream& out) {
        message_recorder messages;
        std::string old_text = "[WFClient]\nTcpBrowserAddress=old\n";
        // Just under four pages: the new text needs a fifth.
        for (int i = 0; old_text.size() < 16300; ++i)
            old_text += "ClientSetting" + std::to_string(i) + "=kept by the client\n";
        const auto add_servers = [](const std::string& text) {
            return rewrite_server_locations(text, {{"https://a.example/", "https://b.example/"}, {}, ica_ssl_browser});
        };
        const std::string new_text = add_servers(old_text);
        for (int filler_kib : {0, 8, 16, 24, 32, 40}) {
            const std::string root = work / ("wfclient-" + std::to_string(filler_kib));
            if (!mount_tmpfs(root + "/etc/.kestrel", 48) || !mount_tmpfs(root + "/tmp/.kestrel", 64))
                _exit(2);
            save_root{root}.point_globals_here();
            wfclient_file = ica_dir + "/wfclient.ini";
            write_file(wfclient_file, old_text);
            write_file(root + "/etc/.kestrel/filler", std::string(static_cast<size_t>(filler_kib) * 1024, 'f'));
            messages.shown.clear();
            const bool done = rewrite_wfclient(add_servers);
            const std::string after = read_file_text(wfclient_file);
            const bool ok = done && messages.shown.empty() && (after == new_text || after == old_text);
            out << "filler " << filler_kib << "k: " << (after == new_text ? "new" : after == old_text ? "kept" : "CUT")
                << " " << (ok ? "ok" : "BROKEN") << "\n";
            umount((root + "/etc/.kestrel").c_str());
            umount((root + "/tmp/.kestrel").c_str());
        }
    }, &report);
    if (!ran && not_allowed(report))
        GTEST_SKIP() << report;
    ASSERT_TRUE(ran) << report;
    EXPECT_NE(report.find("new ok"), std::string::npos) << report;
    EXPECT_NE(report.find("kept ok"), std::string::npos) << report;
    EXPECT_EQ(report.find("BROKEN"), std::string::npos) << report;
}

// Adding a connection needs more than 4 free blocks where the master list lives:
// exactly 4 is refused, 5 let through.
TEST(full_disk, adding_needs_more_than_four_free_blocks)
{
    temp_dir work;
    std::string report;
    const bool ran = in_private_mounts([&](std::ostream& out) {
        const std::string dir = work / "etc/.kestrel";
        if (!mount_tmpfs(dir, 64))
            _exit(2);
        setenv("KESTRELLE_ROOT", work.path().c_str(), 1);
        struct statvfs fs;
        statvfs(dir.c_str(), &fs);
        const std::string filler = dir + "/filler";
        for (unsigned long free_blocks : {4ul, 5ul}) {
            write_file(filler, std::string((fs.f_bfree - free_blocks) * fs.f_bsize, 'f'));
            struct statvfs now;
            statvfs(dir.c_str(), &now);
            out << now.f_bfree << " free: " << (enough_disk_space() ? "let through" : "refused") << "\n";
        }
        umount(dir.c_str());
    }, &report);
    if (!ran && not_allowed(report))
        GTEST_SKIP() << report;
    ASSERT_TRUE(ran) << report;
    EXPECT_EQ(report, "4 free: refused\n5 free: let through\n");
}

}  // namespace
