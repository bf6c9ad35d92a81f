// wfclient.ini: the server locations, the global settings and pnabrowse's list are read
// from any text, and the text rewritten with what was read, without harm. Keys are found
// by substring anywhere on a line, so a value that names another key (a drive path
// holding "ComPort") is read twice over by design: a rewrite need not be stable, and
// only crashes and sanitizer reports count here.
#include "fuzz_support.h"
#include "ica/wfclient.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    read_published_names(text);
    rewrite_server_locations(text, read_server_locations(text));
    global_settings settings = default_global_settings();
    read_global_settings(text, settings);
    rewrite_global_settings(text, settings);
    return 0;
}
