#pragma once
// External commands (mkdir, touch, cp, mv, rm, sed, ping, xkbcomp, reboot, poweroff)
// run through the shell; their status, as system() gives it, is the only error signal.
#include <string>

int run_shell_command(const std::string& command);
// text as one word of a shell command (g_shell_quote): every path, host and map name put
// into a command goes through it, so that no value is ever read as shell syntax.
std::string shell_quote(const std::string& text);
// Makes a directory with the shell's mkdir when it is missing. False when it cannot.
bool make_missing_directory(const std::string& dir);
