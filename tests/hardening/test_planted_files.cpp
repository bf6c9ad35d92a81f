// Fixed names in /tmp that another user may have taken first: they are made afresh, a
// leftover file of our own is replaced, and anything else is never written through.
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t other_user = 4242;

TEST(planted_files, a_fixed_temporary_name_is_made_afresh_or_refused)
{
    temp_dir work;
    const std::string name = work / "fixed.tmp";
    const std::string target = work / "target";
    const struct {
        const char* what;
        std::function<bool()> plant;  // false: cannot be planted here
        bool made;
    } rows[] = {
        {"nothing there", [] { return true; }, true},
        {"our own leftover", [&] { write_file(name, "left over"); return true; }, true},
        {"a link", [&] { return symlink(target.c_str(), name.c_str()) == 0; }, false},
        {"a dangling link", [&] { return symlink((work / "none").c_str(), name.c_str()) == 0; }, false},
        {"a directory", [&] { return mkdir(name.c_str(), 0700) == 0; }, false},
        {"another user's file",
         [&] { write_file(name, "theirs"); return geteuid() == 0 && chown(name.c_str(), other_user, other_user) == 0; },
         false},
    };
    for (const auto& r : rows) {
        std::filesystem::remove_all(name);
        std::filesystem::remove(work / "none");
        write_file(target, "kept");
        if (!r.plant()) {
            std::printf("SKIPPED: %s (needs root)\n", r.what);
            continue;
        }
        unique_file file = open_fresh_file(name);
        EXPECT_EQ(file != nullptr, r.made) << r.what;
        if (file) {
            std::fputs("new", file.get());
            file.reset();
            EXPECT_EQ(read_file_text(name), "new") << r.what;
        }
        EXPECT_EQ(read_file_text(target), "kept") << r.what;
        EXPECT_FALSE(std::filesystem::exists(work / "none")) << r.what;
    }
}

// The IceWM preferences copy: sed writes /tmp/preferences only once it is ours.
TEST(planted_files, a_link_at_the_preferences_copy_stops_the_taskbar_change)
{
    temp_dir root;
    scoped_root rooted{root.path()};
    write_file(root / "etc/X11/icewm/preferences", "ShowTaskBar=0\n");
    write_file(root / "target", "kept");
    make_dirs(root / "tmp");
    debian = 1;
    ASSERT_EQ(symlink((root / "target").c_str(), (root / "tmp/preferences").c_str()), 0);
    set_icewm_taskbar(1);
    EXPECT_EQ(read_file_text(root / "target"), "kept");
    EXPECT_EQ(read_file_text(root / "etc/X11/icewm/preferences"), "ShowTaskBar=0\n");

    std::filesystem::remove(root / "tmp/preferences");
    write_file(root / "tmp/preferences", "left over by an earlier run\n");
    set_icewm_taskbar(1);
    EXPECT_EQ(read_file_text(root / "etc/X11/icewm/preferences"), "ShowTaskBar=1\n");
    debian = 0;
}

}  // namespace
