// The user tree reader and writer: any file loads without harm, and what the writer
// makes of it reads back to the same file. The master list holds a few connections
// for the tree to name.
#include "fuzz_support.h"
#include "store/models.h"
#include "store/record.h"
#include "store/user_file.h"

namespace {

std::string load_and_write(const std::string& path)
{
    GtkTreeStore* tree = create_user_tree_store();
    make_connection_tree(tree, path.c_str(), user_lines_per_row);
    std::string text = fuzz_written([&](FILE* out) {
        std::fputs("Version 1.000\n", out);
        gtk_tree_model_foreach(GTK_TREE_MODEL(tree), file_user_connection, out);
    });
    g_object_unref(tree);
    return text;
}

}  // namespace

void fuzz_setup()
{
    master_connection_list = create_master_store();
    const char* const rows[][2] = {{"Office Desktop", "RDP"}, {"Citrix Apps", "ICA"}, {"Intranet", "Web"},
                                   {"Lab Display", "XDM"},   {"Marrow", "DAS"},       {"Tools", "Other"}};
    for (const auto& [name, type] : rows) {
        connection_record record;
        record[MC_NAME] = name;
        record[MC_TYPE] = type;
        insert_master_row(master_connection_list, -1, record);
    }
}

void fuzz_one(const std::string& input)
{
    const std::string path = fuzz_scratch() + "/kestrel.inf";
    fuzz_write_file(path, input);
    const std::string first = load_and_write(path);
    fuzz_write_file(path, first);
    if (load_and_write(path) != first)
        fuzz_fail("a written user tree reads back differently", first, load_and_write(path));
}
