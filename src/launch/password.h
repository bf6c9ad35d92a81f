#pragma once
// Password scrambling (keyed by the connection name; the same call scrambles and
// unscrambles), the padded form kept in the password column, and the encoding of
// the ICA password written to appsrv.ini.
#include <cstdint>
#include <string>

// Fills seedchars with the crypt(3) alphabet: '.', '/', '0'..'9', 'A'..'Z', 'a'..'z'.
void fill_seedchars();

// Scrambles or unscrambles text in place, keyed by key (never empty). Returns text.
char* encrypt_password(char* text, const char* key);

// The stored form of a typed password: "" for "", else scrambled and, below 32
// characters, padded to 33 characters with a length character at the end.
std::string pad_password(const std::string& clear, const std::string& connection_name);
// The clear password from its stored form: cut where the first and last characters
// point, then unscrambled.
std::string unpad_password(const std::string& stored, const std::string& connection_name);

uint32_t GetTickCount();
int RunEncodeBuffer(unsigned char* seed, unsigned char* data, uint16_t length);
int BinToAscii2(const unsigned char* head, uint16_t head_length, const unsigned char* body,
                uint16_t body_length, char* out, uint16_t out_size);
int EncryptToAscii(unsigned char* data, uint16_t data_length, char* out, uint16_t out_size);
int NFuseEncode(const unsigned char* data, uint16_t length, char* out);
