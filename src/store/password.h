#pragma once
// Password scrambling (keyed by the connection name; the same call scrambles and
// unscrambles), the padded form kept in the password column, and the encoding of
// the ICA password written to appsrv.ini.
#include <cstdint>
#include <string>

// Lower-case hexadecimal digits of the appsrv.ini password encoding.
extern const char BINASCII[16];
// The crypt(3) alphabet that scrambling draws from; filled at start-up.
extern char seedchars[64];

// Fills seedchars with the crypt(3) alphabet: '.', '/', '0'..'9', 'A'..'Z', 'a'..'z'.
void fill_seedchars();

// Scrambles or unscrambles text in place, keyed by key (never empty). Returns text.
char* encrypt_password(char* text, const char* key);

// The stored form of a typed password: "" for "", else scrambled and, below 32
// characters, padded to 33 characters with a length character at the end. A password
// whose first character scrambles to NUL is stored as "" too.
std::string pad_password(const std::string& clear, const std::string& connection_name);
// The clear password from its stored form: cut where the first and last characters
// point, then unscrambled.
std::string unpad_password(const std::string& stored, const std::string& connection_name);

// A value from the clock whose low byte changes from call to call.
uint32_t GetTickCount();
// GetTickCount's rule for a microseconds field u (0..999999).
uint32_t tick_count_from_microseconds(long microseconds);

// Encodes data in place, chaining each byte to the one before; a seed byte of 0 is
// replaced by one from the clock. Returns 0.
int RunEncodeBuffer(unsigned char* seed, unsigned char* data, uint16_t length);
// Four hex digits of head_length + body_length, then head and body in hex, and a NUL.
// Returns the number of digits, or 0 (nothing written) when out_size is too small.
int BinToAscii2(const unsigned char* head, uint16_t head_length, const unsigned char* body,
                uint16_t body_length, char* out, uint16_t out_size);
// The appsrv.ini form of a password: seed from the clock. Returns the number of
// characters written to out, or 0 when out_size is too small.
int EncryptToAscii(unsigned char* data, uint16_t data_length, char* out, uint16_t out_size);
// EncryptToAscii with a given seed byte (0 takes one from the clock).
int encrypt_to_ascii_seeded(unsigned char seed, unsigned char* data, uint16_t data_length,
                            char* out, uint16_t out_size);
// The clear password of an EncryptToAscii encoding, whatever its seed; false when the
// text is no such encoding.
bool decode_ascii_password(const std::string& encoded, std::string* clear);
// Two capital letters A..P per byte; out holds 2 * length + 1. Returns 2 * length.
int NFuseEncode(const unsigned char* data, uint16_t length, char* out);
