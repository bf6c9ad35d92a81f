#include "platform/log.h"
#include "platform/paths.h"
#include "platform/users.h"
#include "platform/whole_file.h"

#include "support/test_support.h"

namespace {

using platform_test = rooted_test;

TEST_F(platform_test, users_and_paths_come_from_under_the_root_but_devices)
{
    write_file(root / "etc/passwd", "root:x:0:0:root:/root:/bin/sh\nann:x:1000:1000:Ann:/home/ann:/bin/sh\n"
                                    "bob:x:1001:0::/home/bob:/bin/sh\n");
    write_file(root / "etc/group", "root:x:0:bob\nshutdown:x:70:ann,carl\nreboot:x:71:\nann:x:1000:\n");
    ASSERT_TRUE(user_by_uid(1000));
    EXPECT_EQ(user_by_uid(1000)->name + " " + user_by_uid(1000)->home, "ann " + root.path() + "/home/ann");
    EXPECT_EQ(root_path("/dev/null"), "/dev/null");
    EXPECT_EQ(user_by_name("bob")->gid, 0u);
    EXPECT_FALSE(user_by_name("carl"));
    EXPECT_EQ(all_users().size(), 3u);
    EXPECT_FALSE(group_lists_member("ann", "ann")) << "membership through the primary group does not count";
    EXPECT_FALSE(group_lists_member("turnoff", "ann")) << "a missing group has no members";
}

// Lines reach the file at once. Past its limit the log moves aside once and starts afresh.
// A link planted at the older copy's name is replaced, not written through; when the log's
// own name was swapped for a link, the file in hand is emptied and the target left alone.
TEST_F(platform_test, log_is_flushed_and_moves_aside_past_its_limit_without_following_links)
{
    const std::string log = root / "tmp/zarvoca.log", older = log + ".old", target = root / "target";
    const std::string line(1000, 'x');
    write_file(target, "precious\n");
    write_file(log, "old\n");
    ASSERT_TRUE(log_open());
    log_printf("Ping exit code %x\n", 256);
    EXPECT_EQ(read_file_text(log), "old\nPing exit code 100\n");
    log_close();
    for (const bool swapped : {false, true}) {
        std::filesystem::remove(log), std::filesystem::remove(older);
        ASSERT_EQ(symlink(target.c_str(), older.c_str()), 0);
        ASSERT_TRUE(log_open());
        if (swapped) {
            std::filesystem::remove(log);
            ASSERT_EQ(symlink(target.c_str(), log.c_str()), 0);
        }
        for (int i = 0; i < 1100; ++i)
            log_printf("%s\n", line.c_str());
        log_close();
        EXPECT_EQ(read_file_text(target), "precious\n");
        EXPECT_EQ(std::filesystem::is_symlink(older), swapped);
        if (!swapped) {
            EXPECT_EQ(std::filesystem::file_size(older), 1048u * 1001u);
            EXPECT_EQ(std::filesystem::file_size(log), 52u * 1001u);
        }
    }
}
// A replacement keeps the old file's owner and mode, replaces the file a link names (the
// link stays), clears what a kill left at the temporary name, and leaves nothing else.
TEST(whole_file, replacement_keeps_owner_mode_and_links_and_clears_leftovers)
{
    temp_dir dir;
    const std::string file = dir / "file", link = dir / "link", leftover = dir / ".file.new";
    write_file(file, "old");
    chmod(file.c_str(), 0640);
    const bool as_root = geteuid() == 0 && chown(file.c_str(), 4242, 4243) == 0;
    ASSERT_EQ(symlink((dir / "elsewhere").c_str(), leftover.c_str()), 0);
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    ASSERT_TRUE(replace_file(link, "new"));
    struct stat st;
    ASSERT_EQ(lstat(file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(std::to_string(st.st_uid) + ":" + std::to_string(st.st_gid),
              as_root ? "4242:4243" : std::to_string(geteuid()) + ":" + std::to_string(getegid()));
    EXPECT_EQ(read_file_text(file), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(link) && !std::filesystem::exists(dir / "elsewhere"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}

}  // namespace
