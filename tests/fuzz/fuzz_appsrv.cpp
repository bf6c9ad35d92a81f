// The appsrv.ini writer: an ICA record with any column texts (one input line per
// column) gives its section and header line without harm.
#include "fuzz_support.h"
#include "store/appsrv.h"
#include "store/models.h"
#include "store/password.h"
#include "store/record.h"

void fuzz_setup() { fill_seedchars(); }

void fuzz_one(const std::string& input)
{
    const std::vector<std::string> lines = fuzz_lines(input);
    connection_record record;
    for (size_t i = 0; i < lines.size() && i < record.col.size(); ++i)
        record.col[i] = lines[i];
    record[MC_TYPE] = "ICA";
    if (ica_section(record).empty())
        fuzz_fail("an ICA record without a section");
    GtkListStore* list = create_master_store();
    insert_master_row(list, -1, record);
    fuzz_written([&](FILE* out) { write_appsrv_header(out, GTK_TREE_MODEL(list)); });
    g_object_unref(list);
}
