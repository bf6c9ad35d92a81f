// The master list reader and writer: any file loads without harm, and what the writer
// makes of it reads back to the same file (a second round changes nothing).
#include "fuzz_support.h"
#include "store/appsrv.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/password.h"

#include <cstdlib>

namespace {

constexpr int lines_per_record = 35;
constexpr size_t longest_line = 100;  // characters, line end included, read whole

std::string written(GtkListStore* list)
{
    char* master_text = nullptr;
    char* appsrv_text = nullptr;
    size_t master_size = 0;
    size_t appsrv_size = 0;
    master_save_files files{open_memstream(&master_text, &master_size), open_memstream(&appsrv_text, &appsrv_size)};
    write_master_header(files.master);
    write_appsrv_header(files.appsrv, GTK_TREE_MODEL(list));
    gtk_tree_model_foreach(GTK_TREE_MODEL(list), file_master_connection, &files);
    fuzz_stream_text(files.appsrv, &appsrv_text, &appsrv_size);
    return fuzz_stream_text(files.master, &master_text, &master_size);
}

// Start-up loads the user's tree with the names read on their own: they must be exactly
// the list's (name, type) pairs.
void check_names(GtkListStore* list, master_header header, const std::string& path)
{
    const master_names names = read_master_names(path.c_str(), lines_per_record);
    if (names.header != header)
        fuzz_fail("the names were read with another header", "", "");
    GtkTreeModel* model = GTK_TREE_MODEL(list);
    GtkTreeIter iter;
    size_t rows = 0;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more; more = gtk_tree_model_iter_next(model, &iter)) {
        ++rows;
        const std::string name = model_text(model, &iter, MC_NAME);
        const std::string type = model_text(model, &iter, MC_TYPE);
        if (!names.contains(name, type))
            fuzz_fail("a row is missing from the names", "", name + "\n" + type);
    }
    if (names.size() != rows)
        fuzz_fail("the names and the list differ in number", std::to_string(rows), std::to_string(names.size()));
}

std::string load_and_write(const std::string& path)
{
    GtkListStore* list = create_master_store();
    const master_header header = load_master_file(list, path.c_str(), lines_per_record);
    apply_master_header(header);
    check_names(list, header, path);
    std::string text = written(list);
    g_object_unref(list);
    return text;
}

bool has_nul_or_long_line(const uint8_t* data, size_t size)
{
    size_t line = 0;
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\0' || ++line > longest_line)
            return true;
        if (data[i] == '\n')
            line = 0;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_quiet_messages();
    fill_seedchars();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = fuzz_scratch() + "/kestrel.master";
    fuzz_write_file(path, data, size);
    const std::string first = load_and_write(path);
    // Records are placed by their raw name line: a NUL byte, an over-long line or a last
    // line without its line end makes that differ from the stored name, so the order
    // may change once. Such files are only loaded and written.
    if (has_nul_or_long_line(data, size) || (size > 0 && data[size - 1] != '\n'))
        return 0;
    fuzz_write_file(path, first);
    const std::string second = load_and_write(path);
    if (second != first)
        fuzz_fail("a written master list reads back differently", first, second);
    return 0;
}
