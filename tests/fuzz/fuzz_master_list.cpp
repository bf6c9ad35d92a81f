// The master list reader and writer: any file loads without harm, and what the writer
// makes of it reads back to the same file (a second round changes nothing).
#include "fuzz_support.h"
#include "launch/password.h"
#include "store/models.h"
#include "store/appsrv.h"
#include "store/master_file.h"

#include <cstdlib>

namespace {

constexpr int lines_per_record = 35;

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

std::string load_and_write(const std::string& path)
{
    GtkListStore* list = create_master_store();
    make_connection_list(list, path.c_str(), lines_per_record);
    std::string text = written(list);
    g_object_unref(list);
    return text;
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
    fuzz_write_file(path, first);
    if (load_and_write(path) != first)
        std::abort();
    return 0;
}
