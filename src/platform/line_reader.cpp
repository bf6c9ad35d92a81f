#include "platform/line_reader.h"

#include <cstring>

bool line_reader::read()
{
    // A failed read must leave the buffer as it was, so read into a copy first.
    if (!std::fgets(spare_.data(), static_cast<int>(spare_.size()), file_))
        return false;
    buffer_.swap(spare_);
    length_ = std::strlen(buffer_.data());
    bool complete = length_ > 0 && buffer_[length_ - 1] == '\n';
    if (!complete && length_ == buffer_.size() - 1)
        skip_rest_of_line();
    return true;
}

void line_reader::skip_rest_of_line()
{
    if (mode_ == long_line::pieces)
        return;
    if (mode_ == long_line::skip_once && last_skipped_ == '\n')
        return;
    int c;
    do
        c = std::fgetc(file_);
    while (c != '\n' && c != EOF);
    last_skipped_ = c;
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
