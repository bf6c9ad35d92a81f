#pragma once
// The reading rule of the thin client's shell options file, "/etc/zarvooptions": what
// one line sets. Start-up applies it; the fleet checker shows where it surprises.
#include <string>

inline constexpr const char* options_file = "/etc/zarvooptions";

// Each setting a line names: -1 when the line does not name it, else its new value.
struct options_line_effect {
    int shell_mode = -1;
    int show_taskbar = -1;
    int kiosk_mode = -1;
};
// Every test is a substring test on the line in lower case, so a key counts wherever
// it stands on the line, in a comment too, and so does "true".
options_line_effect read_options_line(const std::string& line);
std::string lower_case(std::string text);
