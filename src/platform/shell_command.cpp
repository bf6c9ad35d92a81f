#include "platform/shell_command.h"

#include "platform/paths.h"

#include <cstdio>
#include <cstdlib>
#include <glib.h>

int run_shell_command(const std::string& command)
{
    // Output still buffered in our streams must not be written twice by the child.
    std::fflush(nullptr);
    return std::system(command.c_str());
}

std::string shell_quote(const std::string& text)
{
    gchar* quoted = g_shell_quote(text.c_str());
    std::string word = quoted;
    g_free(quoted);
    return word;
}

bool make_missing_directory(const std::string& dir)
{
    return is_directory(dir) || run_shell_command("mkdir " + shell_quote(dir)) == 0;
}
