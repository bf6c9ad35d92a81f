#include "platform/shell_command.h"

#include <cstdio>
#include <cstdlib>

int run_shell_command(const std::string& command)
{
    // Output still buffered in our streams must not be written twice by the child.
    std::fflush(nullptr);
    return std::system(command.c_str());
}
