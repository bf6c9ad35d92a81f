#include "store/master_file.h"

#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/message.h"
#include "store/appsrv.h"
#include "store/models.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr const char* version_line = "Version 1.000\n";
constexpr const char* show_gui_line = "Show GUI\n";
constexpr const char* ping_text = "Standard echo";
constexpr const char* no_ping_text = "Don't ping";

bool name_less(const std::string& row_name, const char* new_name)
{
    return g_ascii_strcasecmp(row_name.c_str(), new_name) < 0;
}

// Where each new record goes. A record is inserted before the first row whose name is
// not less than its own name, compared without regard to case and with the new name
// still carrying its line end, so that equal names keep their file order. The names
// are mirrored here so that a sorted list is searched by bisection; a list that is not
// sorted (a hand-edited file with control characters in names) is walked row by row,
// which gives the same places.
class insertion_order {
public:
    // existing null: a list that starts empty.
    explicit insertion_order(GtkTreeModel* existing)
    {
        GtkTreeIter iter;
        for (bool more = existing && gtk_tree_model_get_iter_first(existing, &iter); more;
             more = gtk_tree_model_iter_next(existing, &iter)) {
            sequence_.push_back(static_cast<int>(names_.size()));
            names_.push_back(model_text(existing, &iter, MC_NAME));
        }
        for (size_t i = 1; i < sequence_.size() && sorted_; ++i)
            sorted_ = !name_after(i - 1, i);
    }

    // The row number that the next new record, whose raw name line is key, takes in the
    // list at this moment.
    size_t place_of(const char* key) const { return sorted_ ? bisect(key) : walk(key); }

    // Takes in the next new record's stored name at its place.
    void insert(size_t at, std::string name)
    {
        // The sequence holds indexes, so that an insertion moves ints, not strings.
        sequence_.insert(sequence_.begin() + at, static_cast<int>(names_.size()));
        names_.push_back(std::move(name));
        if (sorted_)
            sorted_ = !(at > 0 && name_after(at - 1, at)) &&
                      !(at + 1 < sequence_.size() && name_after(at, at + 1));
    }

    // The new records' numbers (0 for the first), in list order; only for a list that was
    // empty before.
    const std::vector<int>& list_order() const { return sequence_; }

private:
    const std::string& name_at(size_t position) const { return names_[sequence_[position]]; }
    bool name_after(size_t a, size_t b) const
    {
        return g_ascii_strcasecmp(name_at(a).c_str(), name_at(b).c_str()) > 0;
    }
    size_t bisect(const char* key) const
    {
        // A list this program saved comes sorted, so a record mostly goes last.
        if (!sequence_.empty() && name_less(names_[sequence_.back()], key))
            return sequence_.size();
        auto it = std::partition_point(sequence_.begin(), sequence_.end(),
                                       [&](int index) { return name_less(names_[index], key); });
        return it - sequence_.begin();
    }
    size_t walk(const char* key) const
    {
        size_t at = 0;
        while (at < sequence_.size() && name_less(name_at(at), key))
            ++at;
        return at;
    }

    std::vector<std::string> names_;  // rows already in the store, then the new records
    std::vector<int> sequence_;       // indexes into names_, in list order
    bool sorted_ = true;
};

// Reads the rest of a record whose name line is in the reader; columns from kept_columns
// on are read past but not kept.
connection_record read_record(line_reader& reader, int lines_per_record, int kept_columns = master_file_columns)
{
    connection_record record;
    record.col[MC_NAME] = reader.text();
    const int first_line = reader.line_number();
    bool cut_short = false;
    int last = std::min(lines_per_record, master_file_columns) - 1;
    for (int c = 1; c <= last; ++c) {
        // A record cut short by the end of the file keeps what the buffer held.
        if (!reader.read_chopped() && !cut_short) {
            cut_short = true;
            reader.tell(read_note::record_short, first_line, record.col[MC_NAME]);
        }
        if (c >= kept_columns)
            continue;
        if (c == MC_PING) {
            record.ping_first = std::strcmp(reader.c_str(), ping_text) == 0;
            if (!record.ping_first && !cut_short && std::strcmp(reader.c_str(), no_ping_text) != 0)
                reader.tell(read_note::not_a_flag, reader.line_number(), reader.text());
        } else {
            record.col[c] = reader.text();
        }
    }
    record.from_file = true;
    return record;
}

std::vector<master_row_ref> in_list_order(std::vector<master_row_ref> rows, const std::vector<int>& order)
{
    std::vector<master_row_ref> sorted;
    sorted.reserve(rows.size());
    for (int number : order)
        sorted.push_back(std::move(rows[number]));
    return sorted;
}

// Reads the header of an open list; its records follow. A list of another version is
// read no further.
master_header read_header(line_reader& reader)
{
    if (reader.read() && std::strcmp(reader.c_str(), version_line) != 0)
        return master_header::wrong_version;
    master_header header = master_header::show_gui;
    if (reader.read() && std::strcmp(reader.c_str(), show_gui_line) != 0)
        header = master_header::hide_gui;
    reader.read();  // taskbar and kiosk lines: the options file is the authority for those
    reader.read();
    return header;
}

std::string name_type_key(const std::string& name, const std::string& type)
{
    // A line holds no line end, so the pair is told apart by one.
    return name + '\n' + type;
}

}  // namespace

void master_names::add(const std::string& name, const std::string& type)
{
    const std::string key = name_type_key(name, type);
    spans_.emplace_back(text_.size(), key.size());
    text_ += key;
}

std::string_view master_names::key_at(const std::pair<size_t, size_t>& span) const
{
    return std::string_view(text_).substr(span.first, span.second);
}

void master_names::sort()
{
    std::sort(spans_.begin(), spans_.end(), [&](const auto& a, const auto& b) { return key_at(a) < key_at(b); });
}

bool master_names::contains(const std::string& name, const std::string& type) const
{
    const std::string key = name_type_key(name, type);
    auto at = std::lower_bound(spans_.begin(), spans_.end(), key,
                               [&](const auto& span, const std::string& k) { return key_at(span) < k; });
    return at != spans_.end() && key_at(*at) == key;
}

master_header read_master_records(const char* path, int lines_per_record, const master_record_visit& visit,
                                  const read_observer* observer, int kept_columns, std::vector<int>* list_order)
{
    unique_file file = open_file(path, "re");
    if (!file)
        return master_header::missing;
    line_reader reader(file.get(), long_line::skip_once);
    reader.observe(observer);
    const master_header header = read_header(reader);
    if (header == master_header::wrong_version)
        return header;
    insertion_order places(nullptr);
    while (reader.read()) {
        const size_t at = list_order ? places.place_of(reader.c_str()) : 0;
        const int first_line = reader.line_number();
        reader.drop_last_char();
        connection_record record = read_record(reader, lines_per_record, kept_columns);
        if (list_order)
            places.insert(at, record[MC_NAME]);
        visit(std::move(record), first_line);
    }
    if (list_order)
        *list_order = places.list_order();
    return header;
}

master_names read_master_names(const char* path, int lines_per_record)
{
    master_names names;
    names.header = read_master_records(
        path, lines_per_record,
        [&](connection_record&& record, int) { names.add(record[MC_NAME], record[MC_TYPE]); }, nullptr,
        MC_TYPE + 1);
    names.sort();
    return names;
}

master_header load_master_file(GtkListStore* store, const char* path, int lines_per_record)
{
    unique_file file = open_file(path, "re");
    if (!file)
        return master_header::missing;
    line_reader reader(file.get(), long_line::skip_once);
    const master_header header = read_header(reader);
    if (header == master_header::wrong_version)
        return header;

    insertion_order places(GTK_TREE_MODEL(store));
    // A list filled from empty gives its index every row, so that the first look-up
    // need not read the whole list back.
    const bool was_empty = places.list_order().empty();
    std::vector<master_row_ref> rows;
    while (reader.read()) {
        const size_t at = places.place_of(reader.c_str());
        reader.drop_last_char();
        connection_record record = read_record(reader, lines_per_record);
        places.insert(at, record[MC_NAME]);
        const GtkTreeIter iter = insert_master_row(store, static_cast<int>(at), record);
        if (was_empty)
            rows.push_back({std::move(record.col[MC_NAME]), std::move(record.col[MC_TYPE]), iter});
    }
    if (was_empty)
        index_filled_list(store, in_list_order(std::move(rows), places.list_order()));
    return header;
}

void apply_master_header(master_header header)
{
    if (header == master_header::wrong_version)
        show_error("\nMaster connection list version miscompare.\n");
    else if (header != master_header::missing)
        show_gui = header == master_header::show_gui;
}

void make_connection_list(GtkListStore* store, const char* path, int lines_per_record)
{
    apply_master_header(load_master_file(store, path, lines_per_record));
}

int master_insert_position(GtkTreeModel* list, const std::string& name)
{
    GtkTreeIter iter;
    int position = 0;
    for (bool more = gtk_tree_model_get_iter_first(list, &iter); more;
         more = gtk_tree_model_iter_next(list, &iter), ++position)
        if (!name_less(model_text(list, &iter, MC_NAME), name.c_str()))
            return position;
    return -1;
}

master_settings current_master_settings() { return {show_gui, show_taskbar, kiosk_mode}; }

void write_master_header(FILE* file, const master_settings& settings)
{
    std::fputs(version_line, file);
    std::fputs(settings.show_gui ? "Show GUI\n" : "Don't show GUI\n", file);
    std::fputs(settings.show_taskbar ? "Show taskbar\n" : "Don't show taskbar\n", file);
    std::fputs(settings.kiosk_mode ? "Kiosk\n" : "Not kiosk\n", file);
}

gboolean file_master_connection(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter,
                                gpointer files)
{
    auto* streams = static_cast<master_save_files*>(files);
    connection_record record = read_master_row(model, iter);
    for (int c = 0; c < master_file_columns; ++c) {
        const char* text = c == MC_PING ? (record.ping_first ? ping_text : no_ping_text)
                                         : record.col[c].c_str();
        std::fputs(text, streams->master);
        std::fputc('\n', streams->master);
    }
    if (std::ferror(streams->master))
        return TRUE;
    if (parse_connection_type(record[MC_TYPE]) != connection_type::ica)
        return FALSE;
    std::fputs(ica_section(record).c_str(), streams->appsrv);
    return std::ferror(streams->appsrv) ? TRUE : FALSE;
}
