#include "store/options_text.h"

#include "platform/text.h"

#include <algorithm>
#include <cctype>

namespace {

// Keys as they are searched for in a lower-case copy of the line.
constexpr const char* shell_key = "zarvoshell";
constexpr const char* shell_is_ours = "kest";
constexpr const char* taskbar_key = "show_taskbar";
constexpr const char* kiosk_key = "kiosk_browser";
constexpr const char* true_word = "true";

}  // namespace

std::string lower_case(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

options_line_effect read_options_line(const std::string& line)
{
    const std::string lower = lower_case(line);
    options_line_effect effect;
    if (contains(lower, shell_key))
        effect.shell_mode = contains(lower, shell_is_ours);
    if (contains(lower, taskbar_key))
        effect.show_taskbar = contains(lower, true_word);
    if (contains(lower, kiosk_key))
        effect.kiosk_mode = contains(lower, true_word);
    return effect;
}
