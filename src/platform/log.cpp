#include "platform/log.h"

#include "platform/paths.h"
#include "platform/tmp_files.h"

#include <cstdarg>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

FILE* logfile = nullptr;

namespace {
constexpr const char* log_path = "/tmp/zarvoca.log";
}

bool log_open()
{
    // /tmp is shared: a link planted under the log's name is never followed, and only a
    // plain file of this user gets mode 0666, so no one can choose the file this program
    // appends to or opens up. Close-on-exec, so that session programs do not inherit it;
    // non-blocking for the open only, so that a planted FIFO cannot hang the start.
    const std::string path = root_path(log_path);
    const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0666);
    if (fd >= 0 && is_own_single_file(fd) && fcntl(fd, F_SETFL, O_APPEND) == 0 && fchmod(fd, 0666) == 0)
        logfile = fdopen(fd, "a");
    if (!logfile) {
        if (fd >= 0)
            close(fd);
        std::fprintf(stderr, "Running without a log: %s is not a file of this user that can be opened.\n",
                     path.c_str());
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
}

void log_close()
{
    if (logfile)
        std::fclose(logfile);
    logfile = nullptr;
}
