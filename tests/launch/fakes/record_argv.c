/* Stands in for every program the launcher starts (rdesktop, wfica, X, xkbcomp, firefox,
 * ping, marrow): linked under each name, it tells them apart by the path it was started
 * through. Driven by the environment:
 *   KEST_FAKE_STAMP     a file: the CLOCK_REALTIME time in nanoseconds is written there
 *                       first thing, then the program exits 0
 *   KEST_FAKE_LOG       a file: one line is appended, the name, then "|" and each argument
 *   KEST_FAKE_FAIL      names, blank-separated, that exit with status 1
 *   KEST_FAKE_SLEEP_MS  milliseconds to wait before exiting */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

static void write_text(const char* path, int flags, const char* text)
{
    int fd = open(path, O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0600);
    if (fd >= 0) {
        (void)!write(fd, text, strlen(text));
        close(fd);
    }
}

static void append_line(const char* path, const char* name, int argc, char** argv)
{
    size_t size = strlen(name) + 2;
    for (int i = 0; i < argc; ++i)
        size += strlen(argv[i]) + 1;
    char* line = malloc(size);
    if (!line)
        return;
    strcpy(line, name);
    for (int i = 0; i < argc; ++i) {
        strcat(line, "|");
        strcat(line, argv[i]);
    }
    strcat(line, "\n");
    write_text(path, O_APPEND, line);
    free(line);
}

static int listed(const char* names, const char* name)
{
    size_t length = strlen(name);
    for (const char* p = names; (p = strstr(p, name)) != NULL; p += length)
        if ((p == names || p[-1] == ' ') && (p[length] == ' ' || p[length] == '\0'))
            return 1;
    return 0;
}

int main(int argc, char** argv)
{
    const char* stamp = getenv("KEST_FAKE_STAMP");
    if (stamp) {
        struct timespec now;
        char text[32];
        clock_gettime(CLOCK_REALTIME, &now);
        snprintf(text, sizeof text, "%lld\n", (long long)now.tv_sec * 1000000000LL + now.tv_nsec);
        write_text(stamp, O_TRUNC, text);
        return 0;
    }
    const char* path = (const char*)getauxval(AT_EXECFN);
    const char* slash = path ? strrchr(path, '/') : NULL;
    const char* name = slash ? slash + 1 : path ? path : "?";
    const char* log = getenv("KEST_FAKE_LOG");
    if (log)
        append_line(log, name, argc, argv);
    const char* sleep_ms = getenv("KEST_FAKE_SLEEP_MS");
    if (sleep_ms)
        usleep((useconds_t)atoi(sleep_ms) * 1000);
    const char* fail = getenv("KEST_FAKE_FAIL");
    return fail && listed(fail, name) ? 1 : 0;
}
