// Texts from the files and the root prefix reach shell commands only as quoted words:
// the programs get exactly the value, and shell syntax in a value runs nothing.
#include "keymaps/keymaps.h"
#include "launch/command_line.h"
#include "launch/reachability.h"
#include "platform/shell_command.h"
#include "shell/globals.h"
#include "store/record.h"
#include "support/test_support.h"

namespace {

TEST(shell_words, hosts_and_map_names_reach_ping_and_xkbcomp_as_one_argument)
{
    temp_dir work;
    const std::string odd_root = work / "odd root; touch P #", old_path = std::getenv("PATH");
    const std::filesystem::path old_dir = std::filesystem::current_path();
    std::filesystem::current_path(work.path());  // where an unquoted "touch P" would land
    for (const char* name : {"bin/ping", "bin/xkbcomp"}) {  // each argument on a line of its own
        write_file(work / name, "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"" + work.path() + "/args\"\n");
        chmod((work / name).c_str(), 0755);
    }
    setenv("PATH", (work.path() + "/bin:" + old_path).c_str(), 1);
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
    setenv("PATH", old_path.c_str(), 1);
    std::filesystem::current_path(old_dir);
    EXPECT_FALSE(std::filesystem::exists(work / "P"));
}

}  // namespace
