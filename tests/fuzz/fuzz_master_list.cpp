// The master list reader and writer: any file loads without harm, the names read on
// their own are the list's, and what the writer makes of a file reads back to the same
// file (a second round changes nothing).
#include "fuzz_support.h"
#include "store/appsrv.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/password.h"

namespace {

// Start-up loads the user's tree with the names read on their own: they must be exactly
// the list's (name, type) pairs.
void check_names(GtkTreeModel* list, master_header header, const std::string& path)
{
    const master_names names = read_master_names(path.c_str(), master_lines_per_record);
    size_t rows = 0;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(list, &iter); more; more = gtk_tree_model_iter_next(list, &iter), ++rows)
        if (!names.contains(model_text(list, &iter, MC_NAME), model_text(list, &iter, MC_TYPE)))
            fuzz_fail("a row is missing from the names", "", model_text(list, &iter, MC_NAME));
    if (names.header != header || names.size() != rows)
        fuzz_fail("the names and the list differ in header or number", std::to_string(rows), std::to_string(names.size()));
}

std::string load_and_write(const std::string& path)
{
    GtkListStore* list = create_master_store();
    const master_header header = load_master_file(list, path.c_str(), master_lines_per_record);
    apply_master_header(header);
    check_names(GTK_TREE_MODEL(list), header, path);
    const std::string text = fuzz_written([&](FILE* master) {
        fuzz_written([&](FILE* appsrv) {
            master_save_files files{master, appsrv};
            write_master_header(master, current_master_settings());
            write_appsrv_header(appsrv, GTK_TREE_MODEL(list));
            gtk_tree_model_foreach(GTK_TREE_MODEL(list), file_master_connection, &files);
        });
    });
    g_object_unref(list);
    return text;
}

// Records are placed by their raw name line: a NUL byte, a line over 100 characters (line
// end included, read whole) or a last line without its line end makes that differ from
// the stored name, so the order may change once. Such files are only loaded and written.
bool settles(const std::string& input)
{
    size_t line = 0;
    for (char c : input)
        if (c == '\0' || ++line > 100)
            return false;
        else if (c == '\n')
            line = 0;
    return input.empty() || input.back() == '\n';
}

}  // namespace

void fuzz_setup() { fill_seedchars(); }

void fuzz_one(const std::string& input)
{
    const std::string path = fuzz_scratch() + "/kestrel.master";
    fuzz_write_file(path, input);
    const std::string first = load_and_write(path);
    if (!settles(input))
        return;
    fuzz_write_file(path, first);
    const std::string second = load_and_write(path);
    if (second != first)
        fuzz_fail("a written master list reads back differently", first, second);
}
