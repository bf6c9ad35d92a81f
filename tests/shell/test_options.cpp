#include "shell/options.h"

#include "shell/globals.h"
#include "support/test_support.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct flags {
    int shell, taskbar, kiosk;
    bool operator==(const flags&) const = default;
};

void set_flags(flags f)
{
    shell_mode = f.shell;
    show_taskbar = f.taskbar;
    kiosk_mode = f.kiosk;
}

flags current_flags() { return {shell_mode, show_taskbar, kiosk_mode}; }

class options_test : public ::testing::Test {
protected:
    options_test() : rooted(root.path()) { make_dirs(root / "tmp"); }
    std::string options_path() const { return root / "etc/zarvooptions"; }
    std::string temp_path() const { return root / "tmp/zarvooptions.tmp"; }

    temp_dir root;
    scoped_root rooted;
};

TEST_F(options_test, reading_tests_lower_case_substrings_and_the_last_match_wins)
{
    const std::string padding(101, 'x');
    struct example {
        const char* what;
        std::string file;
        flags expected;  // flags start at {1, 1, 1}
    } table[] = {
        {"written form",
         "ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=True\nKIOSK_BROWSER=FALSE\n", {1, 1, 0}},
        {"another shell, taskbar no", "zarvoshell=xfce4-session\nshow_taskbar=no\n", {0, 0, 1}},
        {"a comment counts", "# set Show_Taskbar to true to see it\n", {1, 1, 1}},
        {"a comment without true clears", "# show_taskbar is read at login\n", {1, 0, 1}},
        {"last line wins", "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=TRUE\nSHOW_TASKBAR=FALSE\n",
         {1, 0, 1}},
        {"one line, three keys", "zarvoshell=Kest show_taskbar=false kiosk_browser=no\n",
         {1, 0, 0}},
        {"the second piece of a long line", padding + "SHOW_TASKBAR=FALSE\n", {1, 0, 1}},
        {"a key cut by the piece limit", std::string(95, 'x') + "SHOW_TASKBAR=FALSE\n", {1, 1, 1}},
        {"no line end, no keys", "SOMETHING=else", {1, 1, 1}},
    };
    for (const example& e : table) {
        write_file(options_path(), e.file);
        set_flags({1, 1, 1});
        parse_zarvooptions();
        EXPECT_EQ(current_flags(), e.expected) << e.what;
    }
}

TEST_F(options_test, writing_replaces_key_lines_keeps_the_others_and_appends_missing_keys)
{
    const std::string long_line = std::string(120, 'a') + "\n";
    struct example {
        const char* what;
        std::string before;
        flags set;
        std::string after;
    } table[] = {
        {"both keys present",
         "ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=FALSE\nLANG=C\nKiosk_Browser=true\n",
         {1, 1, 0},
         "ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=TRUE\nLANG=C\nKiosk_Browser=FALSE\n"},
        {"no keys", "LANG=C\n# show_taskbar and kiosk_browser without a sign\n", {0, 0, 1},
         "LANG=C\n# show_taskbar and kiosk_browser without a sign\nSHOW_TASKBAR=FALSE\n"
         "KIOSK_BROWSER=TRUE\n"},
        {"empty file", "", {0, 1, 0}, "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
        {"the first 13 characters are kept", "export SHOW_TASKBAR=yes\n", {0, 0, 0},
         "export SHOW_TFALSE\nKIOSK_BROWSER=FALSE\n"},
        {"percent signs and long lines verbatim", "PS1='%s %d %n'\n" + long_line, {0, 1, 1},
         "PS1='%s %d %n'\n" + long_line + "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=TRUE\n"},
    };
    for (const example& e : table) {
        write_file(options_path(), e.before);
        set_flags(e.set);
        message_recorder messages;
        write_zarvooptions();
        EXPECT_EQ(read_file_text(options_path()), e.after) << e.what;
        EXPECT_TRUE(messages.shown.empty()) << e.what;
        EXPECT_FALSE(std::filesystem::exists(temp_path())) << e.what;
    }
}

TEST_F(options_test, failures_leave_the_file_and_say_why)
{
    const std::string original = "SHOW_TASKBAR=FALSE\n";
    const std::string fake_bin = root / "bin";
    write_file(fake_bin + "/mv", "#!/bin/sh\nexit 1\n");
    chmod((fake_bin + "/mv").c_str(), 0755);
    struct example {
        const char* what;
        void (*arrange)(const std::string& temp, const std::string& fake_bin);
        const char* message;  // nullptr: none
    } table[] = {
        {"a directory in place of the temporary file",
         [](const std::string& temp, const std::string&) { make_dirs(temp); }, nullptr},
        {"the temporary file cannot be written",
         [](const std::string& temp, const std::string&) { symlink("/dev/full", temp.c_str()); },
         "\nError writing Zarvo options temporary configuration file, changes not saved.\n"},
        {"the temporary file is not a regular file",
         [](const std::string& temp, const std::string&) { symlink("/dev/null", temp.c_str()); },
         "\nError opening Zarvo options temporary configuration file, changes not saved.\n"},
        {"the move fails",
         [](const std::string&, const std::string& bin) {
             setenv("PATH", (bin + ":" + std::getenv("PATH")).c_str(), 1);
         },
         "\nError saving Zarvo options configuration file, changes not saved.\n"},
    };
    const std::string path = std::getenv("PATH");
    for (const example& e : table) {
        std::filesystem::remove_all(temp_path());
        write_file(options_path(), original);
        e.arrange(temp_path(), fake_bin);
        set_flags({0, 1, 1});
        message_recorder messages;
        write_zarvooptions();
        setenv("PATH", path.c_str(), 1);
        EXPECT_EQ(read_file_text(options_path()), original) << e.what;
        if (e.message)
            EXPECT_EQ(messages.shown, std::vector<std::string>{e.message}) << e.what;
        else
            EXPECT_TRUE(messages.shown.empty()) << e.what;
        EXPECT_EQ(current_flags(), (flags{0, 1, 1})) << e.what;
    }
}

TEST_F(options_test, without_an_options_file_nothing_is_read_or_written)
{
    set_flags({0, 1, 0});
    parse_zarvooptions();
    EXPECT_EQ(current_flags(), (flags{0, 1, 0}));
    message_recorder messages;
    write_zarvooptions();
    make_dirs(options_path());  // a directory holds no settings either
    write_zarvooptions();
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_FALSE(std::filesystem::exists(temp_path()));
    EXPECT_TRUE(std::filesystem::is_empty(options_path()));
}

TEST_F(options_test, the_icewm_taskbar_line_follows_the_flag_on_debian_only)
{
    const std::string preferences = root / "etc/X11/icewm/preferences";
    const std::string before =
        "TaskBarClock=1\nShowTaskBar=0 # hidden\nTheme=\"x\"\n# ShowTaskBar\n";
    struct example {
        int debian_flag, show;
        const char* after;
    } table[] = {
        {1, 1, "TaskBarClock=1\nShowTaskBar=1\nTheme=\"x\"\nShowTaskBar=1\n"},
        {1, 0, "TaskBarClock=1\nShowTaskBar=0\nTheme=\"x\"\nShowTaskBar=0\n"},
        {0, 1, "TaskBarClock=1\nShowTaskBar=0 # hidden\nTheme=\"x\"\n# ShowTaskBar\n"},
    };
    for (const example& e : table) {
        write_file(preferences, before);
        debian = e.debian_flag;
        set_icewm_taskbar(e.show);
        EXPECT_EQ(read_file_text(preferences), e.after) << e.debian_flag << e.show;
    }
    debian = 0;
}

}  // namespace
