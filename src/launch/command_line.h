#pragma once
// The argument vector of each connection type's session program, built from its
// Connection record. Pure functions: the child of a launch runs what they return.
#include "store/record.h"

#include <string>
#include <vector>

using argument_vector = std::vector<std::string>;

// RDP: "rdesktop" and its options; run as one command line, see rdp_command_line.
argument_vector rdp_arguments(const connection_record& record);
// The RDP vector joined with one blank before every element, unquoted.
std::string rdp_command_line(const argument_vector& arguments);
argument_vector ica_arguments(const connection_record& record);
// XDM needs the keyboard map; keymap_command receives the xkbcomp command to run, if any.
argument_vector xdm_arguments(const connection_record& record, std::string* keymap_command);
argument_vector web_arguments(const connection_record& record);

// The reachability check a launch makes before the session starts.
struct reachability_check {
    enum class method { none, icmp, tcp } how = method::none;
    std::string host;     // host for tcp; the ping command line for icmp
    std::string port;
    std::string command;  // icmp: the shell command to run
};
reachability_check plan_reachability(const connection_record& record);
