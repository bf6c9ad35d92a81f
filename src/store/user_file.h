#pragma once
// The user connection tree file, kestrel.inf in each user's home directory.
#include "platform/line_reader.h"
#include "store/record.h"

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

inline constexpr const char* user_file_name = "/kestrel.inf";
inline constexpr int user_lines_per_row = 6;  // lines of one row in the file

// Appends the rows of the file at path to tree, keeping only rows that name a
// connection of the master list. Only a regular file is read, never through a link, so
// that nothing a user plants in a home blocks or misleads the load. When given, group_added is called with the tree and
// each primary row once the primary's group is in, and known tells which (name, type)
// pairs the master list holds in place of the list itself.
using group_added_fn = void (*)(GtkTreeStore* tree, GtkTreeIter* primary);
using connection_known_fn = std::function<bool(const std::string& name, const std::string& type)>;
// The observer, when given, hears of every line the load reads differently from its text
// and of every row dropped or promoted.
void make_connection_tree(GtkTreeStore* tree, const char* path, int lines_per_row,
                          group_added_fn group_added = nullptr, const connection_known_fn& known = nullptr,
                          const read_observer* observer = nullptr);
// A primary row and its secondary rows, in tree order.
struct primary_group {
    tree_row primary;
    std::vector<tree_row> secondaries;
};
// The rows of tree, group by group, as read_tree_row gives them.
std::vector<primary_group> connection_groups(GtkTreeModel* tree);
// Appends the rows of from to to as a load of from's file would have made them.
void copy_connection_tree(GtkTreeModel* from, GtkTreeStore* to);
// Writes tree to the named user's file, whole, then reloads
// current_user_connection_tree from the running user's own file. A link, FIFO or
// anything but a regular file of the user (or of root) at the file's name is refused
// with a message and logged.
void save_user_connections(GtkTreeModel* tree, const std::string& user_name);
gboolean file_user_connection(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                              gpointer stream);
