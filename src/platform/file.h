#pragma once
// The one owner of an open stream: every file the program opens is closed by it, on
// every path.
#include <cstdio>
#include <memory>
#include <string>

struct file_closer {
    void operator()(FILE* file) const { std::fclose(file); }
};
using unique_file = std::unique_ptr<FILE, file_closer>;

// Opens path with an fopen mode; add "e" to the mode for close-on-exec.
inline unique_file open_file(const std::string& path, const char* mode)
{
    return unique_file(std::fopen(path.c_str(), mode));
}
