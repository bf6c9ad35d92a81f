// Prints the form in which the master list keeps a password: the e2e tests write their
// master lists by hand and need the stored form of a known password, made by the
// program's own code rather than copied in as an opaque text.
// Usage: e2e_stored_password PASSWORD CONNECTION_NAME
#include "store/password.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3 || argv[2][0] == '\0') {
        std::fprintf(stderr, "usage: %s PASSWORD CONNECTION_NAME\n", argv[0]);
        return 2;
    }
    fill_seedchars();
    std::printf("%s\n", pad_password(argv[1], argv[2]).c_str());
    return 0;
}
