#pragma once
// The argument vector of each connection type's session program and the reachability
// check made before it starts, built from the connection's record. The child of a
// launch runs what these functions return.
#include "store/record.h"

#include <string>
#include <vector>

// The display manager's Xsetup (its keyboard map for "Use Local Settings"); "" when the
// machine has none. Start-up finds it.
extern std::string x_setup_file;
// Finds it on this machine (under the root prefix).
void find_x_files();

// Ends at its first empty element: a column left empty where an argument stands on its
// own ends the vector there, and what would follow is not passed.
using argument_vector = std::vector<std::string>;

// RDP: "rdesktop" and its options, the server last; run as one command line, see
// rdp_command_line.
argument_vector rdp_arguments(const connection_record& record);
// The vector joined with one blank before every element, unquoted, so that a value
// holding blanks (the additional options) becomes several arguments again.
std::string rdp_command_line(const argument_vector& arguments);

argument_vector ica_arguments(const connection_record& record);

// XDM: "X" and its options. When the keyboard map has to be compiled first,
// keymap_command receives the xkbcomp command to run before X starts; else it is
// left empty.
argument_vector xdm_arguments(const connection_record& record, std::string* keymap_command);
// Where xkbcomp writes the compiled map ("/tmp/tmp.xkm" under the root prefix).
std::string compiled_keymap_file();
// The map named on the first "xkbmap=" line of the display manager's setup file;
// "us_intl" when there is no such line or the file cannot be read.
std::string local_xkb_map(const std::string& setup_file);

argument_vector web_arguments(const connection_record& record);

// DAS: the maker's client program, run with an empty argument vector.
std::string das_program();
// Other: the stored command line, run as it stands.
std::string other_command_line(const connection_record& record);

// The reachability check a launch makes before the session starts.
struct reachability_check {
    enum class method { none, icmp, tcp } how = method::none;
    std::string command;  // icmp: the ping shell command
    std::string host;     // tcp: the host to connect to
    std::string port;     // tcp: the port, as decimal text
};
reachability_check plan_reachability(const connection_record& record);
