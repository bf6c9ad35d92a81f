#include "platform/line_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

bool line_reader::fill_block()
{
    block_start_ = 0;
    block_end_ = std::fread(block_.data(), 1, block_.size(), file_);
    if (block_end_ == 0 && std::ferror(file_))
        read_failed_ = true;
    return block_end_ > 0;
}

size_t line_reader::take_line(char* to, size_t count)
{
    size_t taken = 0;
    while (taken < count && (block_start_ < block_end_ || fill_block())) {
        const char* from = block_.data() + block_start_;
        const size_t available = std::min(block_end_ - block_start_, count - taken);
        const void* line_end = std::memchr(from, '\n', available);
        const size_t piece = line_end ? static_cast<const char*>(line_end) - from + 1 : available;
        if (to)
            std::memcpy(to + taken, from, piece);
        taken += piece;
        block_start_ += piece;
        if (line_end) {
            ++next_line_;
            break;
        }
    }
    return taken;
}

bool line_reader::read()
{
    // A failed read must leave the buffer as it was, so read into a copy first. As with
    // fgets, nothing read or a read error means no line.
    read_failed_ = false;
    const int begins_on = next_line_;
    const size_t taken = take_line(spare_.data(), spare_.size() - 1);
    if (taken == 0 || read_failed_)
        return false;
    spare_[taken] = '\0';
    line_number_ = begins_on;
    buffer_.swap(spare_);
    length_ = std::strlen(buffer_.data());
    // Judged by the text up to a NUL, as the line would have been judged after fgets.
    bool complete = length_ > 0 && buffer_[length_ - 1] == '\n';
    if (!complete && length_ == buffer_.size() - 1)
        skip_rest_of_line();
    return true;
}

void line_reader::skip_rest_of_line()
{
    if (mode_ == long_line::pieces)
        return;
    if (mode_ == long_line::skip_once && last_skipped_ == '\n') {
        tell(read_note::line_run_on, line_number_, text());
        return;
    }
    tell(read_note::line_cut, line_number_, text());
    size_t skipped = take_line(nullptr, SIZE_MAX);
    // The last character skipped: the line end, or the end of the file.
    last_skipped_ = skipped > 0 && block_start_ > 0 && block_[block_start_ - 1] == '\n' ? '\n' : EOF;
}

void line_reader::rewind()
{
    std::rewind(file_);
    block_start_ = block_end_ = 0;
    next_line_ = 1;
}

void line_reader::drop_last_char()
{
    if (length_ > 0)
        buffer_[--length_] = '\0';
}

bool line_reader::read_chopped()
{
    bool got = read();
    drop_last_char();
    return got;
}
