#include "platform/text.h"

#include <glib.h>

std::string shown_text(std::string_view bytes)
{
    if (g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr))
        return std::string(bytes);
    std::string shown;
    shown.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            shown += c;
        } else {
            shown += static_cast<char>(0xC0 | (byte >> 6));
            shown += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return shown;
}
