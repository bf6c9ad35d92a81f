// Fixed names in /tmp that another user may have taken first: they are made afresh, a
// leftover file of our own is replaced, and anything else is never written through.
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "support/test_support.h"

namespace {

TEST(planted_files, a_fixed_temporary_name_is_made_afresh_or_refused)
{
    temp_dir work;
    const std::string name = work / "fixed.tmp", target = work / "target";
    const std::pair<std::function<bool()>, bool> rows[] = {  // plant (false: needs root), made
        {[] { return true; }, true},
        {[&] { write_file(name, "our own leftover"); return true; }, true},
        {[&] { return symlink(target.c_str(), name.c_str()) == 0; }, false},
        {[&] { write_file(name, "theirs"); return geteuid() == 0 && chown(name.c_str(), 4242, 4242) == 0; }, false},
    };
    for (int i = 0; const auto& [plant, made] : rows) {
        std::filesystem::remove_all(name);
        write_file(target, "kept");
        if (!plant())
            continue;
        unique_file file = open_fresh_file(name);
        EXPECT_EQ(file != nullptr, made) << i;
        if (file) {
            std::fputs("new", file.get());
            file.reset();
            EXPECT_EQ(read_file_text(name), "new") << i;
        }
        EXPECT_EQ(read_file_text(target), "kept") << i++;
    }
}

using planted_in_root = rooted_test;

// The IceWM preferences copy: sed writes /tmp/preferences only once it is ours.
TEST_F(planted_in_root, a_link_at_the_preferences_copy_stops_the_taskbar_change)
{
    write_file(root / "etc/X11/icewm/preferences", "ShowTaskBar=0\n");
    write_file(root / "target", "kept");
    make_dirs(root / "tmp");
    debian = 1;
    ASSERT_EQ(symlink((root / "target").c_str(), (root / "tmp/preferences").c_str()), 0);
    set_icewm_taskbar(1);
    EXPECT_EQ(read_file_text(root / "target"), "kept");
    EXPECT_EQ(read_file_text(root / "etc/X11/icewm/preferences"), "ShowTaskBar=0\n");
    debian = 0;
}

}  // namespace
