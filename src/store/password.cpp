#include "store/password.h"

#include <sys/time.h>

#include <array>
#include <cstring>
#include <vector>

const char BINASCII[16] = {'0', '1', '2', '3', '4', '5', '6', '7',
                           '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
char seedchars[64] = {};  // filled by fill_seedchars before any password is handled

namespace {

// Only its length counts: the key buffer holds 22 characters and a NUL.
constexpr char seed_string[] = "$1$7uQzr4Wd$1$7uQzr4Wd";
constexpr size_t key_length = sizeof(seed_string) - 1;
constexpr char scramble_table[8] = {'u', 't', ' ', '4', '.', '6', '8', '2'};

// Stored passwords shorter than this are padded to padded_length + 1 characters.
constexpr size_t padded_length = 32;

using key_buffer = std::array<char, key_length + 1>;

// 22 characters of the crypt alphabet that depend only on the key material.
key_buffer make_key_buffer(const char* key)
{
    key_buffer buffer{};
    std::memcpy(buffer.data(), seed_string, sizeof(seed_string));
    const size_t m = std::strlen(key);
    for (size_t i = 0; i < key_length; ++i)
        buffer[i] = seedchars[(scramble_table[i % 8] ^ key[i % m]) & 63];
    return buffer;
}

std::vector<char> c_string_copy(const std::string& text)
{
    return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

}  // namespace

void fill_seedchars()
{
    for (int i = 0; i < 64; ++i)
        seedchars[i] = static_cast<char>(i < 12 ? i + 46 : i < 38 ? i + 53 : i + 59);
}

char* encrypt_password(char* text, const char* key)
{
    // The editors refuse an empty connection name, so this is never reached with an
    // empty key; leave the text alone rather than divide by its length.
    if (*key == '\0')
        return text;
    const key_buffer buffer = make_key_buffer(key);
    // Position 22 meets the key buffer's NUL and is left unchanged. Positions beyond
    // it have no key character at all: they are left unchanged too, which keeps the
    // scrambling symmetric and the same from run to run.
    for (size_t i = 0; i < key_length && text[i] != '\0'; ++i) {
        const int mix = static_cast<signed char>(buffer[i]) % static_cast<int>(key_length);
        text[i] = static_cast<char>(text[i] ^ mix);
        // The text's length is measured on every step: a character that became NUL
        // ends it.
        if (text[i] == '\0')
            break;
    }
    return text;
}

std::string pad_password(const std::string& clear, const std::string& connection_name)
{
    if (clear.empty())
        return "";
    std::vector<char> scrambled = c_string_copy(clear);
    encrypt_password(scrambled.data(), connection_name.c_str());
    const char* s = scrambled.data();
    const size_t length = std::strlen(s);
    // A first character that scrambles to NUL (a control character, never one that can
    // be typed) leaves nothing to pad or to measure the filler by: it is stored like an
    // empty password rather than divide by a length of zero.
    if (length == 0)
        return "";
    std::string stored(s);
    if (length >= padded_length)
        return stored;
    for (size_t i = 0; i < padded_length - length; ++i)
        stored += seedchars[(static_cast<signed char>(s[i % length]) ^ static_cast<int>(i)) & 63];
    stored += static_cast<char>(static_cast<int>(length) ^ s[0]);
    // A text column holds a C string: a length character of 0 ends the text early.
    return stored.c_str();
}

std::string unpad_password(const std::string& stored, const std::string& connection_name)
{
    if (stored.empty())
        return "";
    std::vector<char> text = c_string_copy(stored);
    const size_t n = std::strlen(text.data());
    if (n == 0)
        return "";
    const int cut = static_cast<signed char>(text[0] ^ text[n - 1]);
    // Only texts this system did not write (or unpadded passwords of 32+ characters)
    // can point at or past their own end, or before their start; such a text is left
    // uncut so that nothing is written outside it. Passwords of 32+ characters are
    // still cut wherever their end characters point: kept for compatibility with
    // existing files.
    if (cut >= 0 && static_cast<size_t>(cut) < n)
        text[cut] = '\0';
    encrypt_password(text.data(), connection_name.c_str());
    return text.data();
}

uint32_t tick_count_from_microseconds(long microseconds)
{
    const auto u = static_cast<uint32_t>(microseconds);
    return u % 1000 != 0 ? u : u / 1000;
}

uint32_t GetTickCount()
{
    // Only a low byte that varies from call to call is wanted: the seconds are ignored.
    timeval now{};
    gettimeofday(&now, nullptr);
    return tick_count_from_microseconds(now.tv_usec);
}

int RunEncodeBuffer(unsigned char* seed, unsigned char* data, uint16_t length)
{
    if (length == 0)
        return 0;
    if (*seed == 0) {
        *seed = static_cast<unsigned char>(GetTickCount() & 0xff);
        if (*seed == 0)
            *seed = '*';
    }
    data[0] ^= *seed | 0x43;
    for (size_t i = 1; i < length; ++i)
        data[i] ^= *seed ^ data[i - 1];
    return 0;
}

namespace {

char* write_hex(char* out, const unsigned char* bytes, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        *out++ = BINASCII[bytes[i] >> 4];
        *out++ = BINASCII[bytes[i] & 15];
    }
    return out;
}

}  // namespace

int BinToAscii2(const unsigned char* head, uint16_t head_length, const unsigned char* body,
                uint16_t body_length, char* out, uint16_t out_size)
{
    const size_t total = size_t{head_length} + body_length;
    // Four length digits, two digits per byte and the terminating NUL must all fit.
    if (out_size < 2 * total + 5)
        return 0;
    const unsigned char count[2] = {static_cast<unsigned char>(total >> 8),
                                    static_cast<unsigned char>(total & 0xff)};
    char* end = write_hex(out, count, 2);
    end = write_hex(end, head, head_length);
    end = write_hex(end, body, body_length);
    *end = '\0';
    return static_cast<int>(end - out);
}

int encrypt_to_ascii_seeded(unsigned char seed, unsigned char* data, uint16_t data_length,
                            char* out, uint16_t out_size)
{
    RunEncodeBuffer(&seed, data, data_length);
    return BinToAscii2(&seed, 1, data, data_length, out, out_size);
}

int EncryptToAscii(unsigned char* data, uint16_t data_length, char* out, uint16_t out_size)
{
    return encrypt_to_ascii_seeded(0, data, data_length, out, out_size);
}

int NFuseEncode(const unsigned char* data, uint16_t length, char* out)
{
    if (length == 0)
        return 0;
    unsigned char previous = 0;  // the first byte has no encoded byte before it
    for (size_t i = 0; i < length; ++i) {
        const auto encoded = static_cast<unsigned char>(data[i] ^ 0xa5 ^ previous);
        out[2 * i] = static_cast<char>('A' + (encoded >> 4));
        out[2 * i + 1] = static_cast<char>('A' + (encoded & 15));
        previous = encoded;
    }
    out[2 * size_t{length}] = '\0';
    return 2 * length;
}

bool decode_ascii_password(const std::string& encoded, std::string* clear)
{
    auto nibble = [](char c) { return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1; };
    std::vector<int> bytes;
    for (size_t i = 0; i + 1 < encoded.size(); i += 2) {
        const int high = nibble(encoded[i]), low = nibble(encoded[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes.push_back(high << 4 | low);
    }
    // Two bytes of length, the seed, then the data: length counts the seed and the data.
    if (encoded.size() % 2 != 0 || bytes.size() < 3 || (bytes[0] << 8 | bytes[1]) != static_cast<int>(bytes.size()) - 2)
        return false;
    const int seed = bytes[2];
    clear->clear();
    for (size_t i = 3; i < bytes.size(); ++i)
        clear->push_back(static_cast<char>(bytes[i] ^ (i == 3 ? seed | 0x43 : seed ^ bytes[i - 1])));
    return true;
}
