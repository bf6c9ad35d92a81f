#include "platform/paths.h"

#include <cstdlib>
#include <sys/stat.h>

std::string root_prefix()
{
    const char* root = std::getenv("KESTRELLE_ROOT");
    return root ? root : "";
}

std::string root_path(std::string_view absolute)
{
    if (absolute.starts_with("/dev/"))
        return std::string(absolute);
    return root_prefix() + std::string(absolute);
}

bool path_exists(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

bool is_regular_file(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool is_directory(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}
