#pragma once
// The master connection list file: a four-line header, then 35 lines per connection.
#include "store/record.h"

#include <cstdio>
#include <string>

inline constexpr const char* master_file_path = "/etc/.kestrel/kestrel.master";

// Loads the file at path into store, keeping the rows sorted by name without regard
// to case, and sets show_gui by its header or tells of a wrong version (nothing is
// loaded then). Callers pass 35 lines per record.
void make_connection_list(GtkListStore* store, const char* path, int lines_per_record);

// The two halves of make_connection_list. The first touches nothing but store (so that
// a new list may be loaded in a thread of its own) and says what the header held.
enum class master_header { missing, wrong_version, show_gui, hide_gui };
master_header load_master_file(GtkListStore* store, const char* path, int lines_per_record);
void apply_master_header(master_header header);

// Where a connection added by an editor goes: before the first row whose name is not
// less than name, compared without regard to case; -1 (the end) when there is none.
int master_insert_position(GtkTreeModel* list, const std::string& name);

// The pair of open files a save writes: the master file, then appsrv.ini.
struct master_save_files {
    FILE* master;
    FILE* appsrv;
};
// Writes one row's 35 lines (and an ICA row's appsrv.ini section); stops the walk on
// a stream error.
gboolean file_master_connection(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                                gpointer files);
void write_master_header(FILE* file);
