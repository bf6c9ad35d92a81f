// The printcap reader of the RDP printer window: any file gives a list of names
// without harm, and no name holds a character that ends an entry.
#include "editors/rdp_rules.h"
#include "fuzz_support.h"

void fuzz_setup() {}

void fuzz_one(const std::string& input)
{
    FILE* printcap = fmemopen(const_cast<char*>(input.data()), input.size(), "r");
    if (!printcap)
        return;
    for (const std::string& name : printcap_names(printcap))
        if (name.find('\n') != std::string::npos)
            fuzz_fail("a printer name holds a line end", "", name);
    std::fclose(printcap);
}
