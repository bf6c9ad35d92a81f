#include "store/password.h"

#include "support/test_support.h"

namespace {

class password_test : public ::testing::Test {
protected:
    void SetUp() override { fill_seedchars(); }
};

std::string scramble(std::string text, const char* key)
{
    encrypt_password(text.data(), key);
    return text;
}

std::string encode(unsigned char seed, std::string data, uint16_t out_size = 512)
{
    std::vector<char> out(out_size, '#');
    const int count = encrypt_to_ascii_seeded(seed, reinterpret_cast<unsigned char*>(data.data()),
                                              static_cast<uint16_t>(data.size()), out.data(), out_size);
    EXPECT_EQ(out[count], count ? '\0' : '#');
    return std::string(out.data(), count);
}

TEST_F(password_test, scrambling_is_symmetric_keyed_and_stops_at_position_22)
{
    EXPECT_EQ(scramble("secret", "Office"), "t`kber");
    EXPECT_EQ(scramble("t`kber", "Office"), "secret");
    EXPECT_NE(scramble("secret", "Home"), "t`kber");
    const std::string text = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcd";
    for (const char* key : {"Office", "A much longer connection name"})
        EXPECT_EQ(scramble(text, key).substr(22), text.substr(22)) << key;
    // The key "Office" scrambles position 0 with 7: 0x07 becomes 0, the text ends there
    // and the rest is not touched.
    EXPECT_EQ(scramble(std::string("\x07" "abc", 4), "Office"), std::string("\0abc", 4));
}

// Short passwords are padded to 33 characters, the first and last telling the length;
// longer ones are stored as they are and cut back where their end characters point.
TEST_F(password_test, stored_forms_by_password_length)
{
    const std::string p = "Kestrel-Pass-0123456789abcdefgh";  // 31 characters
    const struct { std::string clear; size_t stored_length; std::string comes_back; } rows[] = {
        {"K", 33, "K"}, {p.substr(0, 22), 33, p.substr(0, 22)}, {p.substr(0, 23), 33, p.substr(0, 23)},
        {p, 33, p},
        // 'L' ^ 'P' = 28, 'L' ^ 'D' = 8.
        {p + "P", 32, "Kestrel-Pass-0123456789abcde"}, {p + "ijklmnopD", 40, "Kestrel-"},
        {p + "i", 32, p + "i"},  // they point past the end: not cut
        {"", 0, ""},
    };
    for (const auto& r : rows) {
        const std::string stored = pad_password(r.clear, "Office");
        ASSERT_EQ(stored.size(), r.stored_length) << r.clear;
        EXPECT_EQ(unpad_password(stored, "Office"), r.comes_back) << r.clear;
    }
    EXPECT_EQ(pad_password("K", "Office"), "LABCD67892345./01QRSTMNOPIJKLEFGM");
    EXPECT_EQ(pad_password(p.substr(0, 22), "Office"), "L`{drch*Vqvw93 <:0'3=*AVtbqaihSsZ");

    const std::pair<std::string, std::string> foreign[] = {
        {"a", ""},           // 'a' ^ 'a' = 0: cut to nothing
        {"aabc", "fd"},      // 'a' ^ 'c' = 2: cut
        {"aaae", "fdiu"},    // 4, the length itself: nothing to cut
        {"a\x7f", "fz"},     // 30, past the end: uncut
        {"a\xe1", "f\xe4"},  // negative: uncut
    };
    for (const auto& [stored, clear] : foreign)
        EXPECT_EQ(unpad_password(stored, "Office"), clear) << stored;
}

// "ab", seed 0x10: 0x61 ^ 0x53 = 0x32, then 0x62 ^ 0x10 ^ 0x32 = 0x40. The output and its
// NUL must fit whole.
TEST_F(password_test, encoding_with_a_fixed_seed_and_its_buffer_limit)
{
    EXPECT_EQ(encode(0x10, "ab"), "0003103240");
    EXPECT_EQ(encode(0xff, "secret"), "0007ff8c168a079d16");
    EXPECT_EQ(encode(0x10, "abc", 13), "000410324033");
    EXPECT_EQ(encode(0x10, "abc", 12), "");
    // Whole milliseconds count in milliseconds, anything else in microseconds.
    EXPECT_EQ(tick_count_from_microseconds(123000), 123u);
    EXPECT_EQ(tick_count_from_microseconds(123456), 123456u);
    // 'a' ^ 0xA5 = 0xC4 "ME"; 'b' ^ 0xA5 ^ 0xC4 = 0x03 "AD"; 'c' ^ 0xA5 ^ 0x03 = 0xC5 "MF".
    char out[7] = "zzzzzz";
    EXPECT_EQ(NFuseEncode(reinterpret_cast<const unsigned char*>("abc"), 3, out), 6);
    EXPECT_STREQ(out, "MEADMF");
}
}  // namespace
