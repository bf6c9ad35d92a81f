// The password routines on any bytes: scrambling is its own inverse as long as no
// character becomes NUL, a typed password comes back from its padded form, and the
// encoders never write past the buffer they are given (each is exactly its size).
#include "fuzz_support.h"
#include "store/password.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

bool typeable(const std::string& text)
{
    for (unsigned char c : text)
        if (c < 0x20 || c > 0x7e)
            return false;
    return true;
}

void check_scrambling(const std::string& text, const std::string& key)
{
    std::string once = text;
    encrypt_password(once.data(), key.c_str());
    const size_t length = std::strlen(text.c_str());
    if (std::strlen(once.c_str()) != length)
        return;  // a character became NUL and ended the text
    std::string twice = once;
    encrypt_password(twice.data(), key.c_str());
    if (std::strcmp(twice.c_str(), text.c_str()) != 0)
        std::abort();
}

void check_padding(const std::string& clear, const std::string& key)
{
    const std::string stored = pad_password(clear, key);
    const std::string back = unpad_password(stored, key);
    unpad_password(clear, key);  // a foreign stored text
    if (typeable(clear) && !key.empty() && clear.size() < 32 && back != clear)
        std::abort();
}

void check_encoders(std::string data, uint16_t out_size)
{
    const auto length = static_cast<uint16_t>(data.size());
    std::vector<char> out(out_size);
    const int count = encrypt_to_ascii_seeded(static_cast<unsigned char>(out_size), reinterpret_cast<unsigned char*>(data.data()),
                                              length, out.data(), out_size);
    if (count != 0 && (count != 4 + 2 * (length + 1) || out[count] != '\0'))
        std::abort();
    std::vector<char> nfuse(2 * size_t{length} + 1);
    if (NFuseEncode(reinterpret_cast<const unsigned char*>(data.data()), length, nfuse.data()) != 2 * length)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fill_seedchars();
    return 0;
}

// Input: one byte for the key's length, the key, then the text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || size > 4000)
        return 0;
    const size_t key_length = std::min<size_t>(data[0], size - 1);
    const std::string key(reinterpret_cast<const char*>(data + 1), key_length);
    const std::string text(reinterpret_cast<const char*>(data + 1 + key_length), size - 1 - key_length);
    check_scrambling(text, key);
    check_padding(text, key);
    check_encoders(text, static_cast<uint16_t>(size * 3 % 600));
    return 0;
}
