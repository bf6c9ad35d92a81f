#include "store/user_file.h"

#include "platform/file.h"
#include "platform/log.h"
#include "platform/line_reader.h"
#include "platform/message.h"
#include "platform/tmp_files.h"
#include "platform/users.h"
#include "platform/whole_file.h"
#include "store/master_index.h"
#include "store/models.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* true_text = "TRUE";
constexpr const char* false_text = "FALSE";

// A flag line: anything but "TRUE" (a hand-edited or truncated file) counts as FALSE,
// so that nobody's session is started or kept alive without having been flagged.
bool flag_line(const line_reader& reader)
{
    if (std::strcmp(reader.c_str(), true_text) == 0)
        return true;
    if (std::strcmp(reader.c_str(), false_text) != 0)
        reader.tell(read_note::not_a_flag, reader.line_number(), reader.text());
    return false;
}

tree_row read_row(line_reader& reader, int lines_per_row)
{
    tree_row row;
    row.primary = flag_line(reader);
    const int first_line = reader.line_number();
    bool cut_short = false;
    int last = std::min(lines_per_row, user_lines_per_row) - 1;
    for (int c = 1; c <= last; ++c) {
        // A row cut short by the end of the file keeps what the buffer held.
        if (!reader.read_chopped() && !cut_short) {
            cut_short = true;
            reader.tell(read_note::record_short, first_line, row.name);
        }
        switch (c) {
        case TC_NAME: row.name = reader.text(); break;  // always text: a name may be "TRUE"
        case TC_TYPE: row.type = reader.text(); break;
        case TC_AUTOMATIC: row.automatic = flag_line(reader); break;
        case TC_PERSISTENT: row.persistent = flag_line(reader); break;
        case TC_PROMPT: row.prompt = flag_line(reader); break;
        }
    }
    return row;
}

// A new row gets only the values that differ from an unset column's: a flag left unset
// reads as FALSE and the poll count as 0, and each value set costs a copy and a type check.
void insert_row(GtkTreeStore* tree, GtkTreeIter* parent, int position, const tree_row& row,
                GtkTreeIter* added)
{
    gint columns[TC_COUNT];
    GValue values[TC_COUNT] = {};
    int count = 0;
    auto add_flag = [&](int column, bool flag) {
        if (!flag)
            return;
        columns[count] = column;
        g_value_set_boolean(g_value_init(&values[count++], G_TYPE_BOOLEAN), TRUE);
    };
    auto add_text = [&](int column, const std::string& text) {
        columns[count] = column;
        g_value_set_static_string(g_value_init(&values[count++], G_TYPE_STRING), text.c_str());
    };
    add_flag(TC_PRIMARY, row.primary);
    add_text(TC_NAME, row.name);
    add_text(TC_TYPE, row.type);
    add_flag(TC_AUTOMATIC, row.automatic);
    add_flag(TC_PERSISTENT, row.persistent);
    add_flag(TC_PROMPT, row.prompt);
    add_text(TC_PID, row.pid);
    add_text(TC_STATUS, row.status);
    if (row.polls != 0) {
        columns[count] = TC_POLLS;
        g_value_set_int(g_value_init(&values[count++], G_TYPE_INT), row.polls);
    }
    gtk_tree_store_insert_with_valuesv(tree, added, parent, position, columns, values, count);
    for (int i = 0; i < count; ++i)
        g_value_unset(&values[i]);
}

// A tree store finds the place of every new row by counting its siblings from the first,
// so rows appended one by one make a long file slow to load. An empty tree is therefore
// filled from the end, each row going in first, where nothing has to be counted.
void add_groups(GtkTreeStore* tree, const std::vector<primary_group>& groups, group_added_fn group_added)
{
    const bool fill_from_end = !gtk_tree_model_iter_n_children(GTK_TREE_MODEL(tree), nullptr);
    const int position = fill_from_end ? 0 : -1;
    auto add_group = [&](const primary_group& group) {
        GtkTreeIter parent, child;
        insert_row(tree, nullptr, position, group.primary, &parent);
        if (fill_from_end)
            for (auto row = group.secondaries.rbegin(); row != group.secondaries.rend(); ++row)
                insert_row(tree, &parent, 0, *row, &child);
        else
            for (const tree_row& row : group.secondaries)
                insert_row(tree, &parent, -1, row, &child);
        if (group_added)
            group_added(tree, &parent);
    };
    if (fill_from_end)
        std::for_each(groups.rbegin(), groups.rend(), add_group);
    else
        std::for_each(groups.begin(), groups.end(), add_group);
}

// A row's columns as its file holds them: the process and status columns as a load
// leaves them.
tree_row file_columns(const tree_row& shown)
{
    tree_row row;
    row.primary = shown.primary;
    row.name = shown.name;
    row.type = shown.type;
    row.automatic = shown.automatic;
    row.persistent = shown.persistent;
    row.prompt = shown.prompt;
    return row;
}

void write_flag(FILE* stream, bool value)
{
    std::fputs(value ? true_text : false_text, stream);
    std::fputc('\n', stream);
}

void write_text(FILE* stream, const std::string& text)
{
    std::fputs(text.c_str(), stream);
    std::fputc('\n', stream);
}

}  // namespace

void make_connection_tree(GtkTreeStore* tree, const char* path, int lines_per_row, group_added_fn group_added,
                          const connection_known_fn& known, const read_observer* observer)
{
    auto in_master_list = [&](const tree_row& row) {
        if (known)
            return known(row.name, row.type);
        return master_connection_list && find_master_row(master_connection_list, row.name, row.type, nullptr);
    };
    unique_file file = open_regular_file(path);
    if (!file)
        return;
    line_reader reader(file.get(), long_line::skip_once);
    reader.observe(observer);
    if (!reader.read())
        return;
    // A file without a version line is of the older format: no Prompt line per row.
    bool old_format = std::strstr(reader.c_str(), "Version") == nullptr;
    if (old_format) {
        --lines_per_row;
        reader.rewind();
    }

    bool needs_parent = true;
    std::vector<primary_group> groups;
    while (reader.read_chopped()) {
        const int first_line = reader.line_number();
        tree_row row = read_row(reader, lines_per_row);
        const bool starts_primary = row.primary;
        if (old_format)
            row.prompt = false;
        // A secondary row with no primary before it is promoted. A row naming no master
        // connection is dropped, and the row after it then has to start a new primary.
        if (needs_parent)
            row.primary = true;
        bool top_level = starts_primary || needs_parent;
        const bool promoted = needs_parent && !starts_primary;
        needs_parent = !in_master_list(row);
        if (needs_parent) {
            reader.tell(read_note::row_dropped, first_line, row.name + " (" + row.type + ")");
            continue;
        }
        if (promoted)
            reader.tell(read_note::row_promoted, first_line, row.name + " (" + row.type + ")");
        reader.tell(read_note::row_kept, first_line, row.name);
        if (top_level)
            groups.push_back({std::move(row), {}});
        else
            groups.back().secondaries.push_back(std::move(row));
    }
    file.reset();
    add_groups(tree, groups, group_added);
}

std::vector<primary_group> connection_groups(GtkTreeModel* tree)
{
    std::vector<primary_group> groups;
    GtkTreeIter primary, secondary;
    for (bool more = gtk_tree_model_get_iter_first(tree, &primary); more;
         more = gtk_tree_model_iter_next(tree, &primary)) {
        groups.push_back({read_tree_row(tree, &primary), {}});
        for (bool child = gtk_tree_model_iter_children(tree, &secondary, &primary); child;
             child = gtk_tree_model_iter_next(tree, &secondary))
            groups.back().secondaries.push_back(read_tree_row(tree, &secondary));
    }
    return groups;
}

void copy_connection_tree(GtkTreeModel* from, GtkTreeStore* to)
{
    std::vector<primary_group> groups = connection_groups(from);
    for (primary_group& group : groups) {
        group.primary = file_columns(group.primary);
        for (tree_row& row : group.secondaries)
            row = file_columns(row);
    }
    add_groups(to, groups, nullptr);
}

gboolean file_user_connection(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer stream)
{
    auto* file = static_cast<FILE*>(stream);
    tree_row row = read_tree_row(model, iter);
    write_flag(file, row.primary);
    write_text(file, row.name);
    write_text(file, row.type);
    write_flag(file, row.automatic);
    write_flag(file, row.persistent);
    write_flag(file, row.prompt);
    return std::ferror(file) ? TRUE : FALSE;
}

namespace {

constexpr const char* cannot_open_message = "\nCouldn't open user connection tree for writing.\n";

// The user's home may hold anything the user put there. Only a regular file with one
// name, of the user or made by root, is replaced: a link, FIFO, device or folder at
// the tree's name is left alone.
bool may_replace(int home, const char* name, const user_entry& user)
{
    struct stat st;
    if (fstatat(home, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    return S_ISREG(st.st_mode) && st.st_nlink == 1 && (st.st_uid == user.uid || st.st_uid == 0);
}

// Writes the tree into the open home; null when done, else the message to show after
// logging why.
const char* write_into_home(int home, const user_entry& user, GtkTreeModel* tree)
{
    const char* name = user_file_name + 1;
    const std::string path = user.home + user_file_name;
    if (!may_replace(home, name, user)) {
        log_printf("Not writing %s: it is not a regular file of its user\n", path.c_str());
        return cannot_open_message;
    }
    // A file made new belongs to the user, as one the user made would.
    file_replacement file(home, name, file_owner{user.uid, user.gid});
    if (!file.stream()) {
        log_printf("Not writing %s: no new file can be made beside it\n", path.c_str());
        return cannot_open_message;
    }
    std::fputs("Version 1.000\n", file.stream());
    gtk_tree_model_foreach(tree, file_user_connection, file.stream());
    return file.commit() ? nullptr : "\nError writing user connection tree.\n";
}

}  // namespace

void save_user_connections(GtkTreeModel* tree, const std::string& user_name)
{
    std::optional<user_entry> user = user_by_name(user_name);
    // The home is opened once and everything after works inside it, so that a link
    // swapped in on the way cannot send the write elsewhere.
    const int home = user ? open(user->home.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC) : -1;
    const char* failure = home < 0 ? cannot_open_message : write_into_home(home, *user, tree);
    if (home >= 0)
        close(home);
    if (failure) {
        show_error(failure);
        return;
    }
    gtk_tree_store_clear(current_user_connection_tree);
    make_connection_tree(current_user_connection_tree, current_user_filename.c_str(),
                         user_lines_per_row);
}
