#include "shell/help_text.h"

#include <glib.h>

std::string displayable_help_line(const std::string& line)
{
    if (g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr))
        return line;
    gchar* converted = g_convert(line.data(), static_cast<gssize>(line.size()), "UTF-8", "ISO-8859-1",
                                 nullptr, nullptr, nullptr);
    if (!converted)
        // Not expected (Latin-1 maps every byte); repair rather than lose the line.
        converted = g_utf8_make_valid(line.data(), static_cast<gssize>(line.size()));
    std::string text = converted;
    g_free(converted);
    return text;
}
