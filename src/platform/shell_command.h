#pragma once
// External commands (mkdir, touch, cp, mv, rm, sed, ping, xkbcomp, reboot, poweroff)
// run through the shell; their status, as system() gives it, is the only error signal.
#include <string>

int run_shell_command(const std::string& command);
