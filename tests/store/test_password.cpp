#include "store/password.h"

#include "support/test_support.h"

namespace {

std::string scramble(std::string text, const char* key)
{
    encrypt_password(text.data(), key);
    return text;
}

TEST(password, scrambling_is_symmetric_keyed_and_stops_at_position_22)
{
    fill_seedchars();
    EXPECT_EQ(scramble("secret", "Office"), "t`kber");
    EXPECT_EQ(scramble("t`kber", "Office"), "secret");
    const std::string text = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcd";
    for (const char* key : {"Office", "A much longer connection name"})
        EXPECT_EQ(scramble(text, key).substr(22), text.substr(22)) << key;
    // "Office" scrambles position 0 with 7: 0x07 becomes 0 and the rest is not touched.
    EXPECT_EQ(scramble(std::string("\x07" "abc", 4), "Office"), std::string("\0abc", 4));
}

// Short passwords are padded to 33 characters, the first and last telling the length;
// longer ones are stored as they are and cut back where their end characters point.
TEST(password, stored_forms_by_password_length)
{
    fill_seedchars();
    const std::string p = "Kestrel-Pass-0123456789abcdefgh";  // 31 characters
    const struct { std::string clear; size_t stored_length; std::string comes_back; } rows[] = {
        {"K", 33, "K"}, {p.substr(0, 22), 33, p.substr(0, 22)}, {p.substr(0, 23), 33, p.substr(0, 23)},
        {p, 33, p}, {"", 0, ""},
        // 'L' ^ 'P' = 28, 'L' ^ 'D' = 8; 'L' ^ 'i' points past the end: not cut.
        {p + "P", 32, "Kestrel-Pass-0123456789abcde"}, {p + "ijklmnopD", 40, "Kestrel-"}, {p + "i", 32, p + "i"},
    };
    for (const auto& r : rows) {
        const std::string stored = pad_password(r.clear, "Office");
        ASSERT_EQ(stored.size(), r.stored_length) << r.clear;
        EXPECT_EQ(unpad_password(stored, "Office"), r.comes_back) << r.clear;
    }
    EXPECT_EQ(pad_password("K", "Office"), "LABCD67892345./01QRSTMNOPIJKLEFGM");
    EXPECT_EQ(pad_password(p.substr(0, 22), "Office"), "L`{drch*Vqvw93 <:0'3=*AVtbqaihSsZ");
    // Stored by others: cut to nothing, cut, the length itself, past the end, negative.
    const std::pair<std::string, std::string> foreign[] = {
        {"a", ""}, {"aabc", "fd"}, {"aaae", "fdiu"}, {"a\x7f", "fz"}, {"a\xe1", "f\xe4"}};
    for (const auto& [stored, clear] : foreign)
        EXPECT_EQ(unpad_password(stored, "Office"), clear) << stored;
}

}  // namespace
