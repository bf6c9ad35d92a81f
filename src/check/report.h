#pragma once
// What kestrelle-check finds on a root: each connection as a launch would start it,
// each user's tree as the main window would show it, and every place where the
// program reads a file differently from what the file seems to say.
#include "launch/command_line.h"
#include "store/record.h"
#include "store/user_file.h"

#include <optional>
#include <string>
#include <vector>

struct finding {
    std::string file;  // as the program names it, without the root prefix
    int line = 0;      // 1-based; 0 for the file as a whole
    bool error = false;
    std::string message;
};

struct connection_view {
    std::string name;
    std::string type;
    reachability_check reachability;
    std::optional<std::string> program;                // null for a type that starts nothing
    std::optional<std::string> command;                // RDP and Other: the line as built
    std::optional<std::vector<std::string>> argv;      // null when the line does not parse
    std::string xkbcomp;                               // XDM: the map compiled first, if any
};

struct user_view {
    std::string user;
    std::string file;
    std::vector<primary_group> rows;
};

struct check_report {
    std::vector<connection_view> connections;
    std::vector<user_view> users;
    std::vector<finding> findings;

    void warn(const std::string& file, int line, const std::string& message)
    {
        findings.push_back({file, line, false, message});
    }
    void fail(const std::string& file, int line, const std::string& message)
    {
        findings.push_back({file, line, true, message});
    }
    // 0 clean, 1 warnings only, 2 errors.
    int exit_status() const;
};

// A text in double quotes for the human report.
std::string quoted(const std::string& text);
void print_report(const check_report& report, FILE* out);
void print_json(const check_report& report, FILE* out);
