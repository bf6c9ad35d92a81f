#include "platform/line_reader.h"
#include "platform/log.h"
#include "platform/paths.h"
#include "platform/users.h"
#include "platform/whole_file.h"

#include "support/test_support.h"

namespace {

// Every read of a file as the texts a reader sees, "|" after each read, "<end>" when
// the read fails.
std::string reads(const std::string& contents, long_line mode, bool chop, int count, int capacity)
{
    temp_dir dir;
    write_file(dir / "f", contents);
    FILE* file = std::fopen((dir / "f").c_str(), "r");
    line_reader reader(file, mode, capacity);
    std::string seen;
    for (int i = 0; i < count; ++i) {
        bool got = chop ? reader.read_chopped() : reader.read();
        seen += (got ? "" : "<end>") + reader.text() + "|";
    }
    std::fclose(file);
    return seen;
}

TEST(line_reader, long_lines_line_ends_and_the_end_of_the_file)
{
    const std::string a(100, 'a'), b(100, 'b');
    const std::string file = a + "aaaaa\nshort\n" + b + "bbb\nlast\n";
    const struct { std::string contents; long_line mode; bool chop; int count; std::string expected; int size = 102; } cases[] = {
        // Master list and user tree: the first long line loses its rest, a later one does not.
        {file, long_line::skip_once, true, 5, a + "|short|" + b + "|bb|last|"},
        // A line of exactly 101 characters and its line end counts as long.
        {std::string(101, 'c') + "\nx\n" + b + "bb\n", long_line::skip_once, true, 4,
         std::string(100, 'c') + "|x|" + b + "|b|"},
        // wfclient.ini: every long line loses its rest.
        {file, long_line::skip_rest, false, 4, a + "a|short\n|" + b + "b|last\n|"},
        // Options and keymap files: long lines come in pieces.
        {file, long_line::pieces, false, 3, a + "a|aaaa\n|short\n|"},
        // A last line without a line end loses its last real character; a failed read keeps
        // the buffer, which loses one more character at each chop.
        {"one\ntwo", long_line::skip_once, true, 4, "one|tw|<end>t|<end>|"},
        // The buffer size is chosen per file.
        {std::string(250, 'h') + "\n", long_line::pieces, false, 3,
         std::string(199, 'h') + "|" + std::string(51, 'h') + "\n|<end>" + std::string(51, 'h') + "\n|", 200},
    };
    for (const auto& c : cases)
        EXPECT_EQ(reads(c.contents, c.mode, c.chop, c.count, c.size), c.expected) << c.contents;
}
// The file is read in blocks of 16 KiB: lines that cross from one block into the next,
// an over-long one among them, come out as any other.
TEST(line_reader, lines_across_the_reads_of_the_file_come_out_whole)
{
    std::string contents, expected;
    for (int i = 0; i < 330; ++i) {  // line 164 crosses the first block's end, line 328 the second's
        const std::string line = i == 164 ? std::string(150, 'L') : std::to_string(i) + std::string(96, '.');
        contents += line + "\n";
        expected += line.substr(0, 100) + "|";
    }
    EXPECT_EQ(reads(contents, long_line::skip_once, true, 330, 102), expected);
}

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
