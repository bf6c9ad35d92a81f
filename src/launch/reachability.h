#pragma once
// The reachability check made before a session starts: an ICMP echo through the
// system's ping command, or one TCP connection to the server's port, opened and closed.
#include "launch/command_line.h"

// Returns 0 when a TCP connection to host:port could be opened, else an error number
// (0 too after a failed name look-up, which the caller takes as a pass). Every failure
// is logged. A port that is not a number is port 0.
int smart_ping(const char* host, const char* port);

// Runs a planned check once: 0 when it passed (or there is none), else the ping
// command's status or smart_ping's error number.
int run_reachability_check(const reachability_check& check);
