// The user tree reader and writer: any file loads without harm, and what the writer
// makes of it reads back to the same file. The master list holds a few connections
// for the tree to name.
#include "fuzz_support.h"
#include "store/models.h"
#include "store/record.h"
#include "store/user_file.h"

#include <cstdlib>

namespace {

constexpr int lines_per_row = 6;

std::string written(GtkTreeStore* tree)
{
    char* text = nullptr;
    size_t size = 0;
    FILE* stream = open_memstream(&text, &size);
    std::fputs("Version 1.000\n", stream);
    gtk_tree_model_foreach(GTK_TREE_MODEL(tree), file_user_connection, stream);
    return fuzz_stream_text(stream, &text, &size);
}

std::string load_and_write(const std::string& path)
{
    GtkTreeStore* tree = create_user_tree_store();
    make_connection_tree(tree, path.c_str(), lines_per_row);
    std::string text = written(tree);
    g_object_unref(tree);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    master_connection_list = create_master_store();
    const char* const rows[][2] = {{"Office Desktop", "RDP"}, {"Citrix Apps", "ICA"}, {"Intranet", "Web"},
                                   {"Lab Display", "XDM"},   {"Marrow", "DAS"},       {"Tools", "Other"}};
    for (const auto& [name, type] : rows) {
        connection_record record;
        record[MC_NAME] = name;
        record[MC_TYPE] = type;
        insert_master_row(master_connection_list, -1, record);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = fuzz_scratch() + "/kestrel.inf";
    fuzz_write_file(path, data, size);
    const std::string first = load_and_write(path);
    fuzz_write_file(path, first);
    const std::string second = load_and_write(path);
    if (second != first)
        fuzz_fail("a written user tree reads back differently", first, second);
    return 0;
}
