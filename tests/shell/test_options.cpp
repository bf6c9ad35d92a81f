#include "shell/options.h"

#include "shell/globals.h"
#include "store/models.h"
#include "support/test_support.h"

#include <array>
#include <tuple>

namespace {

using flags = std::array<int, 3>;  // shell_mode, show_taskbar, kiosk_mode

void set_flags(flags f) { std::tie(shell_mode, show_taskbar, kiosk_mode) = std::tuple_cat(f); }
flags current_flags() { return {shell_mode, show_taskbar, kiosk_mode}; }

class options_test : public rooted_test {
protected:
    options_test() { make_dirs(root / "tmp"); }
    const std::string options_path = root / "etc/zarvooptions";
    const std::string temp_path = root / "tmp/zarvooptions.tmp";
};

// Each file is read once with all flags set and once with all clear; -1: left as it was.
TEST_F(options_test, reading_tests_lower_case_substrings_and_the_last_match_wins)
{
    const std::pair<std::string, flags> table[] = {
        {"ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=True\nKIOSK_BROWSER=FALSE\n", {1, 1, 0}},
        {"zarvoshell=xfce4-session\nshow_taskbar=no", {0, 0, -1}},
        {"SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=TRUE\nSHOW_TASKBAR=FALSE\n", {-1, 0, 1}},
        // A key counts anywhere on a line, a comment too, and sees the "true" anywhere in it.
        {"zarvoshell=Kest show_taskbar=false kiosk_browser=true\n", {1, 1, 1}},
        // Lines are read in pieces of 100 characters: a key in the second piece counts,
        // a key cut in two does not.
        {std::string(101, 'x') + "SHOW_TASKBAR=TRUE\n", {-1, 1, -1}},
        {std::string(95, 'x') + "SHOW_TASKBAR=TRUE\n", {-1, -1, -1}},
    };
    for (const auto& [file, expected] : table) {
        write_file(options_path, file);
        for (int start : {0, 1}) {
            set_flags({start, start, start});
            parse_zarvooptions();
            flags want = expected;
            std::ranges::replace(want, -1, start);
            EXPECT_EQ(current_flags(), want) << file << " from " << start;
        }
    }
}

TEST_F(options_test, writing_replaces_key_lines_keeps_the_others_and_appends_missing_keys)
{
    const struct { std::string before; flags set; std::string after; } table[] = {
        {"ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=FALSE\nLANG=C\nKiosk_Browser=true\n",
         {1, 1, 0},
         "ZARVOSHELL=/usr/bin/kestrelle\nSHOW_TASKBAR=TRUE\nLANG=C\nKiosk_Browser=FALSE\n"},
        {"LANG=C\n# show_taskbar and kiosk_browser without a sign\n", {0, 0, 1},
         "LANG=C\n# show_taskbar and kiosk_browser without a sign\nSHOW_TASKBAR=FALSE\n"
         "KIOSK_BROWSER=TRUE\n"},
        // The first 13 characters are kept, whatever they are.
        {"export SHOW_TASKBAR=yes\n", {0, 0, 0}, "export SHOW_TFALSE\nKIOSK_BROWSER=FALSE\n"},
    };
    for (const auto& e : table) {
        write_file(options_path, e.before);
        set_flags(e.set);
        messages.shown.clear();
        write_zarvooptions();
        EXPECT_EQ(read_file_text(options_path), e.after);
        EXPECT_TRUE(messages.shown.empty() && !std::filesystem::exists(temp_path)) << e.before;
    }
}

// Nothing is written where nothing can be: the file stays as it was.
TEST_F(options_test, failures_leave_the_file_and_say_why)
{
    const std::string original = "SHOW_TASKBAR=FALSE\n", &temp = temp_path;
    const std::pair<std::function<void()>, std::vector<std::string>> table[] = {
        // A link planted at the temporary name is never followed. (A full /tmp is a fault test.)
        {[&] { symlink("/dev/full", temp.c_str()); }, {}},
        {[&] { make_dirs(root / "etc/.zarvooptions.new"); },
         {"\nError saving Zarvo options configuration file, changes not saved.\n"}},
        // No options file, or a directory in its place: no settings, and none are made.
        {[&] { std::filesystem::remove(options_path); }, {}},
        {[&] { std::filesystem::remove(options_path); make_dirs(options_path); }, {}},
    };
    for (const auto& [arrange, messages_shown] : table) {
        std::filesystem::remove_all(temp);
        std::filesystem::remove_all(options_path);
        write_file(options_path, original);
        arrange();
        const std::string before = std::filesystem::is_regular_file(options_path) ? original : "";
        set_flags({0, 1, 1});
        messages.shown.clear();
        parse_zarvooptions();
        write_zarvooptions();
        std::filesystem::remove_all(root / "etc/.zarvooptions.new");
        EXPECT_EQ(read_file_text(options_path), before);
        EXPECT_EQ(messages.shown, messages_shown);
        EXPECT_EQ(current_flags()[1], before.empty()) << "the taskbar flag read";
    }
    EXPECT_TRUE(std::filesystem::is_empty(options_path));
}

TEST_F(options_test, the_icewm_taskbar_line_follows_the_flag_on_debian_only)
{
    const std::string preferences = root / "etc/X11/icewm/preferences";
    const std::string before =
        "TaskBarClock=1\nShowTaskBar=0 # hidden\nTheme=\"x\"\n# ShowTaskBar\n";
    const struct { int debian_flag, show; const char* after; } table[] = {
        {1, 1, "TaskBarClock=1\nShowTaskBar=1\nTheme=\"x\"\nShowTaskBar=1\n"},
        {1, 0, "TaskBarClock=1\nShowTaskBar=0\nTheme=\"x\"\nShowTaskBar=0\n"},
        {0, 1, "TaskBarClock=1\nShowTaskBar=0 # hidden\nTheme=\"x\"\n# ShowTaskBar\n"},
    };
    for (const auto& e : table) {
        write_file(preferences, before);
        debian = e.debian_flag;
        set_icewm_taskbar(e.show);
        EXPECT_EQ(read_file_text(preferences), e.after) << e.debian_flag << e.show;
    }
    debian = 0;
}

}  // namespace
