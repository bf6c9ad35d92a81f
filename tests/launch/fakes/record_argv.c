/* Stands in for every program the launcher starts, linked under each name: it tells them
 * apart by the path it was started through. Driven by the environment:
 *   KEST_FAKE_STAMP     a file: the CLOCK_REALTIME time in nanoseconds is written there
 *                       first thing, then the program exits 0
 *   KEST_FAKE_LOG       a file: one line is appended, the name, then "|" and each argument
 *   KEST_FAKE_SLEEP_MS  milliseconds to wait before exiting */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    const char* stamp = getenv("KEST_FAKE_STAMP");
    if (stamp) {
        struct timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        FILE* out = fopen(stamp, "we");
        if (out)
            fprintf(out, "%lld\n", (long long)now.tv_sec * 1000000000LL + now.tv_nsec), fclose(out);
        return 0;
    }
    const char* path = (const char*)getauxval(AT_EXECFN);
    const char* name = !path ? "?" : strrchr(path, '/') ? strrchr(path, '/') + 1 : path;
    const char* log = getenv("KEST_FAKE_LOG");
    if (log) {  /* one write, so that lines of programs started together do not mix */
        char* line = NULL;
        size_t size = 0;
        FILE* text = open_memstream(&line, &size);
        fputs(name, text);
        for (int i = 0; i < argc; ++i)
            fprintf(text, "|%s", argv[i]);
        fputs("\n", text);
        fclose(text);
        int fd = open(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        if (fd >= 0)
            (void)!write(fd, line, size), close(fd);
        free(line);
    }
    if (getenv("KEST_FAKE_SLEEP_MS"))
        usleep((useconds_t)atoi(getenv("KEST_FAKE_SLEEP_MS")) * 1000);
    return 0;
}
