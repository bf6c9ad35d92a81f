#include "platform/log.h"

#include "platform/paths.h"
#include "platform/tmp_files.h"

#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

FILE* logfile = nullptr;

namespace {
constexpr const char* log_path = "/tmp/zarvoca.log";
constexpr const char* older_suffix = ".old";

// The process that opened the log. A launch's child writes its lines through the same
// file before it execs; were it to move the log aside as well, two processes would
// move and empty each other's files.
pid_t log_owner = 0;

std::string log_file_path() { return root_path(log_path); }

// /tmp is shared: a link planted under the log's name is never followed, and only a
// plain file of this user gets mode 0666, so no one can choose the file this program
// appends to or opens up. Close-on-exec, so that session programs do not inherit it;
// non-blocking for the open only, so that a planted FIFO cannot hang the start.
FILE* open_log_file(const std::string& path)
{
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0666);
    if (fd < 0)
        return nullptr;
    FILE* file = nullptr;
    if (is_own_single_file(fd) && fcntl(fd, F_SETFL, O_APPEND) == 0 && fchmod(fd, 0666) == 0)
        file = fdopen(fd, "a");
    if (!file)
        close(fd);
    return file;
}

// True while the log's name still leads to the file this program writes (and not to a
// link or file someone put there since).
bool name_is_ours(const std::string& path)
{
    struct stat named {};
    struct stat ours {};
    return lstat(path.c_str(), &named) == 0 && fstat(fileno(logfile), &ours) == 0 &&
           S_ISREG(named.st_mode) && named.st_dev == ours.st_dev && named.st_ino == ours.st_ino;
}

// The log lives in memory on a terminal, so it is kept to two files of log_size_limit:
// the full one moves aside to the older copy (rename moves names, never through links)
// and a fresh one starts. When the name is no longer ours, or the fresh file cannot be
// made, the file in hand is emptied instead: older lines are lost, the bound is kept.
void start_afresh()
{
    const std::string path = log_file_path();
    FILE* fresh = nullptr;
    if (name_is_ours(path) && std::rename(path.c_str(), (path + older_suffix).c_str()) == 0)
        fresh = open_log_file(path);
    if (fresh) {
        std::fclose(logfile);
        logfile = fresh;
    } else if (ftruncate(fileno(logfile), 0) != 0) {
        log_close();  // a log that can neither move nor shrink would grow without end
    }
}

bool full(FILE* file)
{
    struct stat now {};
    return fstat(fileno(file), &now) == 0 && now.st_size >= log_size_limit;
}

}  // namespace

bool log_open()
{
    logfile = open_log_file(log_file_path());
    log_owner = getpid();
    if (!logfile) {
        std::fprintf(stderr, "Running without a log: %s is not a file of this user that can be opened.\n",
                     log_file_path().c_str());
        return false;
    }
    return true;
}

void log_printf(const char* format, ...)
{
    if (!logfile)
        return;
    va_list args;
    va_start(args, format);
    std::vfprintf(logfile, format, args);
    va_end(args);
    std::fflush(logfile);
    log_keep_bounded();
}

void log_keep_bounded()
{
    if (logfile && getpid() == log_owner && full(logfile))
        start_afresh();
}

void log_close()
{
    if (logfile)
        std::fclose(logfile);
    logfile = nullptr;
}
