#pragma once
// The one line reader of every text file the program reads. Lines come in through a
// buffer of 102 bytes (at most 101 characters); what happens to the rest of a longer
// line depends on the file.
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

inline constexpr int line_buffer_size = 102;

enum class long_line {
    // Master list and user tree: the rest of an over-long line is thrown away, but only
    // once per load; after that, the rest of a later long line comes in as the next line.
    skip_once,
    // wfclient.ini: the rest of every over-long line is thrown away.
    skip_rest,
    // Options and keymap files: a long line comes in as several pieces.
    pieces,
};

// What a reader of the store's files noticed that the text itself does not show. The
// fleet checker listens for these, so that it reports what the program really reads
// instead of reading the file a second time with rules of its own.
enum class read_note {
    line_cut,      // an over-long line: the rest of it was thrown away
    line_run_on,   // an over-long line after the first: its rest comes in as the next line
    record_short,  // the file ended inside a record: its last columns repeat the buffer
    not_a_flag,    // a flag line that is neither of its two words: it counts as FALSE
    row_dropped,   // a user tree row naming no connection of the master list
    row_promoted,  // a secondary row that had to become a primary row
    row_kept,      // a user tree row that the load keeps (told for every one, in file order)
    number_ignored,  // a numbered key beyond the slots the program has: ignored
};
struct read_event {
    read_note note;
    int line;          // 1-based, of the line (or the record's first line)
    std::string text;  // the line as read, or the row's name and type
};
using read_observer = std::function<void(const read_event&)>;

class line_reader {
public:
    // capacity is the buffer size: a line comes in as at most capacity - 1 characters.
    line_reader(FILE* file, long_line mode, int capacity = line_buffer_size)
        : file_(file), mode_(mode), buffer_(capacity, '\0'), spare_(capacity, '\0'), block_(block_size)
    {
    }

    // Reads the next line into the buffer, line end included when it fits. At the end
    // of the file it returns false and the buffer keeps what it held before.
    bool read();
    // Removes the last character of the buffer, whatever it is (the master list and
    // user tree rule: a line loses its line end, an over-long line its 101st
    // character, a last line without line end its last real character).
    void drop_last_char();
    // read() followed by drop_last_char(), the way the store reads every line.
    bool read_chopped();

    // Starts again at the beginning of the file.
    void rewind();

    // The 1-based number of the file line on which the last read began.
    int line_number() const { return line_number_; }
    // Tells observer (when not null) of every over-long line from now on.
    void observe(const read_observer* observer) { observer_ = observer; }
    void tell(read_note note, int line, const std::string& text) const
    {
        if (observer_)
            (*observer_)({note, line, text});
    }

    const char* c_str() const { return buffer_.data(); }
    std::string text() const { return std::string(buffer_.data(), length_); }

private:
    // The file is read in blocks and cut into lines here, which costs a fraction of a
    // library call per line; lines come out as fgets would give them.
    static constexpr size_t block_size = 16 * 1024;
    bool fill_block();
    // Up to count bytes of the current line (through its '\n') out of the blocks, into
    // to when given. The number taken; 0 at the end of the file.
    size_t take_line(char* to, size_t count);
    void skip_rest_of_line();

    FILE* file_;
    long_line mode_;
    std::vector<char> buffer_;
    std::vector<char> spare_;  // the next read goes here first
    size_t length_ = 0;     // of the text in buffer_, up to its first NUL
    int last_skipped_ = 0;  // last character read by a skip; '\n' disables later skips
    std::vector<char> block_;
    size_t block_start_ = 0;  // the unread bytes of block_
    size_t block_end_ = 0;
    bool read_failed_ = false;  // a read error since the line began
    int line_number_ = 0;
    int next_line_ = 1;  // the line the next read begins on
    const read_observer* observer_ = nullptr;
};
