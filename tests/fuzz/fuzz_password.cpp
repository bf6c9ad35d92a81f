// The password routines on any bytes: scrambling is its own inverse as long as no
// character becomes NUL, a typed password comes back from its padded form, and the
// encoders never write past the buffer they are given (each is exactly its size), the
// seeded one ending its text where its length says.
// Input: one byte for the key's length, the key, then the text.
#include "fuzz_support.h"
#include "store/password.h"

#include <algorithm>
#include <cstring>

namespace {

void check_scrambling(const std::string& text, const std::string& key)
{
    std::string twice = text;
    encrypt_password(twice.data(), key.c_str());
    if (std::strlen(twice.c_str()) != std::strlen(text.c_str()))
        return;  // a character became NUL and ended the text
    if (std::strcmp(encrypt_password(twice.data(), key.c_str()), text.c_str()) != 0)
        fuzz_fail("scrambling twice", text, twice);
}

void check_padding(const std::string& clear, const std::string& key)
{
    const std::string back = unpad_password(pad_password(clear, key), key);
    unpad_password(clear, key);  // a foreign stored text
    const bool typeable = std::ranges::all_of(clear, [](unsigned char c) { return c >= 0x20 && c <= 0x7e; });
    if (typeable && !key.empty() && clear.size() < 32 && back != clear)
        fuzz_fail("a padded password", clear, back);
}

void check_encoders(std::string data, uint16_t out_size)
{
    const auto length = static_cast<uint16_t>(data.size());
    auto* bytes = reinterpret_cast<unsigned char*>(data.data());
    std::vector<char> out(out_size);
    const int count = encrypt_to_ascii_seeded(static_cast<unsigned char>(out_size), bytes, length, out.data(), out_size);
    if (count != 0 && (count != 4 + 2 * (length + 1) || out[count] != '\0'))
        fuzz_fail("the seeded encoder's length", std::to_string(4 + 2 * (length + 1)), std::to_string(count));
    std::vector<char> nfuse(2 * size_t{length} + 1);
    NFuseEncode(bytes, length, nfuse.data());
}

}  // namespace

void fuzz_setup() { fill_seedchars(); }

void fuzz_one(const std::string& input)
{
    if (input.empty() || input.size() > 4000)
        return;
    const size_t key_length = std::min<size_t>(static_cast<unsigned char>(input[0]), input.size() - 1);
    const std::string key = input.substr(1, key_length);
    const std::string text = input.substr(1 + key_length);
    check_scrambling(text, key);
    check_padding(text, key);
    check_encoders(text, static_cast<uint16_t>(input.size() * 3 % 600));
}
