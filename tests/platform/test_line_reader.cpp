#include "platform/line_reader.h"

#include "support/test_support.h"

#include <gtest/gtest.h>

namespace {

// Every read of a file as the texts a reader sees, "|" after each read, "<end>" when
// the read fails.
std::string reads(const std::string& contents, long_line mode, bool chop, int count)
{
    temp_dir dir;
    write_file(dir / "f", contents);
    FILE* file = std::fopen((dir / "f").c_str(), "r");
    line_reader reader(file, mode);
    std::string seen;
    for (int i = 0; i < count; ++i) {
        bool got = chop ? reader.read_chopped() : reader.read();
        seen += (got ? "" : "<end>") + reader.text() + "|";
    }
    std::fclose(file);
    return seen;
}

const std::string long_a(105, 'a');
const std::string long_b(103, 'b');

TEST(line_reader, long_lines_by_file_kind)
{
    std::string file = long_a + "\nshort\n" + long_b + "\nlast\n";
    // Master list and user tree: the first long line loses its rest, a later one does not.
    EXPECT_EQ(reads(file, long_line::skip_once, true, 5),
              std::string(100, 'a') + "|short|" + std::string(100, 'b') + "|bb|last|");
    // wfclient.ini: every long line loses its rest.
    EXPECT_EQ(reads(file, long_line::skip_rest, false, 4),
              std::string(101, 'a') + "|short\n|" + std::string(101, 'b') + "|last\n|");
    // Options and keymap files: long lines come in pieces.
    EXPECT_EQ(reads(file, long_line::pieces, false, 3),
              std::string(101, 'a') + "|aaaa\n|short\n|");
}

TEST(line_reader, the_end_of_the_file)
{
    // A last line without a line end loses its last real character; a failed read keeps
    // the buffer, which loses one more character at each chop.
    EXPECT_EQ(reads("one\ntwo", long_line::skip_once, true, 4), "one|tw|<end>t|<end>|");
    EXPECT_EQ(reads("", long_line::skip_once, true, 2), "<end>|<end>|");
    // A line of exactly 101 characters and its line end counts as long.
    EXPECT_EQ(reads(std::string(101, 'c') + "\nx\n" + std::string(102, 'd') + "\n",
                    long_line::skip_once, true, 4),
              std::string(100, 'c') + "|x|" + std::string(100, 'd') + "|d|");
}

TEST(line_reader, capacity_per_file)
{
    temp_dir dir;
    write_file(dir / "f", std::string(250, 'h') + "\n");
    FILE* file = std::fopen((dir / "f").c_str(), "r");
    line_reader reader(file, long_line::pieces, 200);
    ASSERT_TRUE(reader.read());
    EXPECT_EQ(reader.text(), std::string(199, 'h'));
    ASSERT_TRUE(reader.read());
    EXPECT_EQ(reader.line(), std::string(51, 'h'));
    EXPECT_FALSE(reader.read());
    std::fclose(file);
}
}  // namespace
