#pragma once
// The TCP reachability check: one connection to the server's port, opened and closed.
#include <string>

// Returns 0 when a TCP connection could be opened, else an error number; every
// failure is logged.
int smart_ping(const char* host, const char* port);
