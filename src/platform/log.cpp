#include "platform/log.h"

#include "platform/paths.h"

#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>

FILE* logfile = nullptr;

bool log_open()
{
    // Close-on-exec, so that session programs do not inherit the log.
    logfile = std::fopen(root_path("/tmp/zarvoca.log").c_str(), "ae");
    if (!logfile)
        return false;
    fchmod(fileno(logfile), 0666);
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
