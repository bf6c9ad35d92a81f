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
#include <sys/stat.h>

namespace {

class shell_words_test : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::current_path(work.path());  // where an unquoted "touch P" would land
        for (const char* name : {"bin/ping", "bin/xkbcomp"}) {  // each argument on a line of its own
            write_file(work / name, "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"" + work.path() + "/args\"\n");
            chmod((work / name).c_str(), 0755);
        }
        setenv("PATH", (work.path() + "/bin:" + old_path).c_str(), 1);
    }
    void TearDown() override
    {
        setenv("PATH", old_path.c_str(), 1);
        std::filesystem::current_path(old_dir);
        EXPECT_FALSE(std::filesystem::exists(work / "P"));
    }
    temp_dir work;
    const std::string odd_root = work / "odd root; touch P #";
    const std::filesystem::path old_dir = std::filesystem::current_path();
    const std::string old_path = std::getenv("PATH");
};

TEST_F(shell_words_test, hosts_and_map_names_reach_ping_and_xkbcomp_as_one_argument)
{
    x11_keymap = 1;
    scoped_root rooted{odd_root};
    for (const std::string value : {"10.0.0.1", "x;touch P;#", "$(touch P)", "`touch P`", "a'b\"c", "two words", "*", "-"}) {
        connection_record record;
        record[MC_TYPE] = "XDM";
        record[MC_SERVER] = record[MC_KEYBOARD] = value;  // a map in no list is used as it stands
        record[MC_PING_PORT] = "0";
        record.ping_first = true;
        run_reachability_check(plan_reachability(record));
        EXPECT_EQ(read_file_text(work / "args"), "-c\n1\n-q\n" + value + "\n");
        std::string keymap_command;
        xdm_arguments(record, &keymap_command);
        run_shell_command(keymap_command);
        EXPECT_EQ(read_file_text(work / "args"),
                  "-xkm\n-m\n" + value + "\n" + odd_root + "/etc/X11/xkb/keymap/xfree86\n-o\n" + odd_root + "/tmp/tmp.xkm\n");
    }
}

// Saving the master list (its backup copy) and the options file under such a root.
TEST_F(shell_words_test, a_root_prefix_with_shell_syntax_still_backs_up_and_moves)
{
    scoped_root rooted{odd_root};
    make_dirs(odd_root + "/etc/.kestrel");
    make_dirs(odd_root + "/tmp/.kestrel");
    ica_dir = odd_root + "/etc/.kestrel";
    tmp_dir = odd_root + "/tmp/.kestrel";
    master_connection_list = create_master_store();
    message_recorder messages;
    for (int i = 0; i < 2; ++i)
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
    EXPECT_TRUE(std::filesystem::exists(odd_root + "/tmp/.kestrel/kestrel.bak"));
    write_file(odd_root + "/etc/zarvooptions", "ZARVOSHELL=kestrelle\n");
    show_taskbar = kiosk_mode = 0;
    write_zarvooptions();
    EXPECT_EQ(read_file_text(odd_root + "/etc/zarvooptions"), "ZARVOSHELL=kestrelle\nSHOW_TASKBAR=FALSE\nKIOSK_BROWSER=FALSE\n");
    EXPECT_TRUE(messages.shown.empty());
    g_object_unref(master_connection_list);
    master_connection_list = nullptr;
}

}  // namespace
