// Texts from the files and the root prefix reach shell commands only as quoted words:
// the programs get exactly the value, and shell syntax in a value runs nothing.
#include "keymaps/keymaps.h"
#include "launch/command_line.h"
#include "launch/reachability.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/record.h"
#include "store/save.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char* const values[] = {
    "intranet.example.lan", "10.0.0.1", "de_nodeadkeys", "x;touch P;#", "$(touch P)", "`touch P`",
    "a'b\"c", "two words", "*", "-",
};

class shell_words_test : public ::testing::Test {
protected:
    void SetUp() override
    {
        old_dir = std::filesystem::current_path();
        std::filesystem::current_path(work.path());
        make_dirs(work / "bin");
        // The fake writes each of its arguments on a line of its own.
        for (const char* name : {"ping", "xkbcomp"}) {
            write_file(work / ("bin/" + std::string(name)),
                       "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"" + work.path() + "/args\"\n");
            chmod((work / ("bin/" + std::string(name))).c_str(), 0755);
        }
        old_path = std::getenv("PATH");
        setenv("PATH", (work.path() + "/bin:" + old_path).c_str(), 1);
    }
    void TearDown() override
    {
        setenv("PATH", old_path.c_str(), 1);
        std::filesystem::current_path(old_dir);
    }
    bool planted_command_ran() const { return std::filesystem::exists(work / "P"); }
    std::string args() const { return read_file_text(work / "args"); }

    temp_dir work;
    std::filesystem::path old_dir;
    std::string old_path;
};

TEST_F(shell_words_test, hosts_and_map_names_reach_ping_and_xkbcomp_as_one_argument)
{
    x11_keymap = 1;
    for (const std::string value : values) {
        SCOPED_TRACE(value);
        connection_record record;
        record[MC_TYPE] = "XDM";
        record[MC_SERVER] = value;
        record[MC_PING_PORT] = "0";
        record[MC_KEYBOARD] = value;  // not in any map list: used as it stands
        record.ping_first = true;
        run_reachability_check(plan_reachability(record));
        EXPECT_EQ(args(), "-c\n1\n-q\n" + value + "\n");

        scoped_root rooted{work / "odd root; touch P #"};
        std::string keymap_command;
        xdm_arguments(record, &keymap_command);
        run_shell_command(keymap_command);
        EXPECT_EQ(args(), "-xkm\n-m\n" + value + "\n" + work.path() + "/odd root; touch P #/etc/X11/xkb/keymap/xfree86\n-o\n" +
                              work.path() + "/odd root; touch P #/tmp/tmp.xkm\n");
        EXPECT_FALSE(planted_command_ran());
    }
}

// Saving the master list and the options file under a root whose name is shell syntax.
TEST_F(shell_words_test, a_root_prefix_with_shell_syntax_still_backs_up_and_moves)
{
    const std::string root = work / "odd root; touch P #";
    scoped_root rooted{root};
    make_dirs(root + "/etc/.kestrel");
    make_dirs(root + "/tmp/.kestrel");
    ica_dir = root + "/etc/.kestrel";
    tmp_dir = root + "/tmp/.kestrel";
    master_connection_list = create_master_store();
    message_recorder messages;
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    EXPECT_TRUE(std::filesystem::exists(root + "/tmp/.kestrel/kestrel.bak")) << "the backup copy ran";
    write_file(root + "/etc/zarvooptions", "ZARVOSHELL=kestrelle\n");
    show_taskbar = kiosk_mode = 0;
    write_zarvooptions();
    EXPECT_EQ(read_file_text(root + "/etc/zarvooptions"), "ZARVOSHELL=kestrelle\nSHOW_TASKBAR=FALSE\nKIOSK_BROWSER=FALSE\n");
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_FALSE(planted_command_ran());
    g_object_unref(master_connection_list);
    master_connection_list = nullptr;
}

}  // namespace
