#pragma once
// The master connection list file: a four-line header, then 35 lines per connection.
#include "platform/line_reader.h"
#include "store/master_index.h"
#include "store/record.h"

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

inline constexpr const char* master_file_path = "/etc/.kestrel/kestrel.master";
inline constexpr int master_lines_per_record = 35;  // lines of one connection in the file

// Loads the file at path into store, keeping the rows sorted by name without regard
// to case, and sets show_gui by its header or tells of a wrong version (nothing is
// loaded then). Callers pass master_lines_per_record.
void make_connection_list(GtkListStore* store, const char* path, int lines_per_record);

// The two halves of make_connection_list. The first touches nothing but store (so that
// a new list may be loaded in a thread of its own) and says what the header held.
enum class master_header { missing, wrong_version, show_gui, hide_gui };
master_header load_master_file(GtkListStore* store, const char* path, int lines_per_record);
void apply_master_header(master_header header);

// The name and type of every connection of a master list file and its header, read the
// way load_master_file reads them but without building rows: what a user tree's load
// needs to know of the list, ready long before the list itself.
class master_names {
public:
    master_header header = master_header::missing;
    void add(const std::string& name, const std::string& type);
    // Once every pair is in: makes them searchable.
    void sort();
    bool contains(const std::string& name, const std::string& type) const;
    size_t size() const { return spans_.size(); }

private:
    // The pairs lie end to end in one text and are found by bisection, so that they cost
    // a few allocations however long the list is.
    std::string_view key_at(const std::pair<size_t, size_t>& span) const;
    std::string text_;
    std::vector<std::pair<size_t, size_t>> spans_;  // offset and length of each pair in text_
};
master_names read_master_names(const char* path, int lines_per_record);

// Reads a master list file record by record, in file order, without a store: visit gets
// each record (columns from kept_columns on left empty) and the number of its first line.
// The observer, when given, hears of every line the load reads differently from its text.
// list_order, when given, receives the records' numbers (0 for the first in the file) in
// the order a load into an empty list puts them.
using master_record_visit = std::function<void(connection_record&& record, int first_line)>;
master_header read_master_records(const char* path, int lines_per_record, const master_record_visit& visit,
                                  const read_observer* observer = nullptr,
                                  int kept_columns = master_file_columns, std::vector<int>* list_order = nullptr);

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
// The three settings the header carries.
struct master_settings {
    int show_gui;
    int show_taskbar;
    int kiosk_mode;
};
// The settings the program runs with now (the globals of the models).
master_settings current_master_settings();
void write_master_header(FILE* file, const master_settings& settings);
