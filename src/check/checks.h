#pragma once
// The checks kestrelle-check makes, each over one of the program's files, all through
// the program's own readers. The root prefix is already in force (KESTRELLE_ROOT).
#include "check/report.h"
#include "platform/line_reader.h"

#include <gtk/gtk.h>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

// Where a check's file comes from: the root's own, or a candidate named on the command
// line in its place (a roll-out validates a file before it replaces the old one).
struct file_choice {
    std::map<std::string, std::string> instead;  // path inside the root -> file to read
    std::string read_path(const std::string& inside_root) const;
};

// An observer that turns what a reader noticed into findings of file.
read_observer findings_observer(check_report& report, const std::string& file);

// The master list as the program holds it: its records in list order, and whether it
// holds a (name, type) pair.
struct master_view {
    std::vector<connection_record> records;
    std::unordered_set<std::string> pairs;  // name, line end, type
    bool contains(const std::string& name, const std::string& type) const
    {
        return pairs.count(name + '\n' + type) > 0;
    }
};

// Reads the master list, reports its quirks and every connection's launch.
master_view check_master_list(check_report& report, const file_choice& files);
// One user's tree as the main window shows it, with its quirks. file is the path as
// reported; path the one read.
void check_user_tree(check_report& report, const master_view& master, const std::string& user,
                     const std::string& file, const std::string& path);
// appsrv.ini against what the master list writes.
void check_appsrv(check_report& report, const master_view& master, const file_choice& files);
// wfclient.ini: hotkeys beyond the fifteen, lines cut, no "[WFClient]" line.
void check_wfclient(check_report& report, const file_choice& files);
void check_options(check_report& report, const file_choice& files);
