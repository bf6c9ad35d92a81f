#include "platform/line_reader.h"

#include "support/test_support.h"

namespace {

// Every read of a file as the texts a reader sees, "|" after each read, "<end>" when
// the read fails.
std::string reads(const std::string& contents, long_line mode, bool chop, int count, int capacity = 102)
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
    const struct { std::string contents; long_line mode; bool chop; int count; std::string expected; } cases[] = {
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
    };
    for (const auto& c : cases)
        EXPECT_EQ(reads(c.contents, c.mode, c.chop, c.count), c.expected) << c.contents;
    // The buffer size is chosen per file.
    EXPECT_EQ(reads(std::string(250, 'h') + "\n", long_line::pieces, false, 3, 200),
              std::string(199, 'h') + "|" + std::string(51, 'h') + "\n|<end>" + std::string(51, 'h') + "\n|");
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
    EXPECT_EQ(reads(contents, long_line::skip_once, true, 330), expected);
}
}  // namespace
