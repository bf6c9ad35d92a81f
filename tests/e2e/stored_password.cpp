// Prints the stored form of a known password, made by the program's own code, for the
// master lists the e2e tests write by hand. Usage: e2e_stored_password PASSWORD NAME
#include "store/password.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3 || argv[2][0] == '\0')
        return std::fprintf(stderr, "usage: %s PASSWORD CONNECTION_NAME\n", argv[0]), 2;
    fill_seedchars();
    std::printf("%s\n", pad_password(argv[1], argv[2]).c_str());
}
