#pragma once
// The program's log, /tmp/zarvoca.log: free-form lines, each flushed at once. Past
// log_size_limit bytes it moves aside to /tmp/zarvoca.log.old (replacing the one
// before) and starts afresh, so a storm of restarts cannot fill a terminal's memory.
#include <cstdio>

inline constexpr long log_size_limit = 1024 * 1024;

extern FILE* logfile;  // open from start-up until exit; null when it could not be opened

// Opens the log for appending with mode 0666. Returns false, and says so on standard
// error, when it cannot be opened or is not a plain file of the running user (a link,
// another user's file): the program then runs without a log.
bool log_open();
void log_printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Moves the log aside when it has passed log_size_limit. Only the process that opened the
// log does so (log_printf in a child that has not yet exec'd leaves it), so a launch calls
// it before each fork as well.
void log_keep_bounded();
void log_close();
