// The appsrv.ini writer: an ICA record with any column texts (one input line per
// column) gives its section and header line without harm.
#include "fuzz_support.h"
#include "store/appsrv.h"
#include "store/models.h"
#include "store/password.h"
#include "store/record.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    fill_seedchars();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<std::string> lines = fuzz_lines(data, size);
    connection_record record;
    for (size_t i = 0; i < lines.size() && i < record.col.size(); ++i)
        record.col[i] = lines[i];
    record[MC_TYPE] = "ICA";
    const std::string section = ica_section(record);
    if (section.empty())
        std::abort();
    GtkListStore* list = create_master_store();
    insert_master_row(list, -1, record);
    char* text = nullptr;
    size_t text_size = 0;
    FILE* stream = open_memstream(&text, &text_size);
    write_appsrv_header(stream, GTK_TREE_MODEL(list));
    fuzz_stream_text(stream, &text, &text_size);
    g_object_unref(list);
    return 0;
}
