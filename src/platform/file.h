#pragma once
// The one owner of an open stream: every file the program opens is closed by it, on
// every path.
#include <cstdio>
#include <memory>
#include <string>
#include <sys/stat.h>

struct file_closer {
    void operator()(FILE* file) const { std::fclose(file); }
};
using unique_file = std::unique_ptr<FILE, file_closer>;

// Opens path with an fopen mode; add "e" to the mode for close-on-exec.
inline unique_file open_file(const std::string& path, const char* mode)
{
    return unique_file(std::fopen(path.c_str(), mode));
}

// Opens a file to read its lines. A directory opens for reading but holds no lines; it
// counts as no file at all, so that a reader falls back as it would for a missing file
// and a save cannot replace what it holds by defaults.
inline unique_file open_text_file(const std::string& path)
{
    unique_file file = open_file(path, "re");
    struct stat st;
    if (file && (fstat(fileno(file.get()), &st) != 0 || S_ISDIR(st.st_mode)))
        file.reset();
    return file;
}
