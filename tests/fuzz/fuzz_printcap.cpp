// The printcap reader of the RDP printer window: any file gives a list of names
// without harm, and no name holds a character that ends an entry.
#include "editors/rdp_rules.h"
#include "fuzz_support.h"

#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FILE* printcap = fmemopen(const_cast<uint8_t*>(data), size, "r");
    if (!printcap)
        return 0;
    for (const std::string& name : printcap_names(printcap))
        if (name.find('\n') != std::string::npos)
            fuzz_fail("a printer name holds a line end", "", name);
    std::fclose(printcap);
    return 0;
}
