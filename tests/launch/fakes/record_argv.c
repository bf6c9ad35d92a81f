/* Stands in for every program the launcher starts (rdesktop, wfica, X, xkbcomp, firefox,
 * ping, marrow): linked under each name, it tells them apart by the path it was started
 * through. Driven by the environment:
 *   KEST_FAKE_STAMP     a file: the CLOCK_REALTIME time in nanoseconds is written there
 *                       first thing, then the program exits 0
 *   KEST_FAKE_LOG       a file: one line is appended, the name, then "|" and each argument
 *   KEST_FAKE_FAIL      names, blank-separated, that exit with status 1
 *   KEST_FAKE_SLEEP_MS  milliseconds to wait before exiting
 *   KEST_FAKE_FDS       set: a second line is appended to KEST_FAKE_LOG, "fds", then "|"
 *                       and the target of each descriptor above 2 it was started with */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <time.h>
#include <unistd.h>

static void write_stamp(const char* path)
{
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    char text[32];
    int length = snprintf(text, sizeof text, "%lld\n",
                          (long long)now.tv_sec * 1000000000LL + now.tv_nsec);
    int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd >= 0) {
        (void)!write(fd, text, (size_t)length);
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
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd >= 0) {
        (void)!write(fd, line, strlen(line));
        close(fd);
    }
    free(line);
}

/* The descriptors inherited from whoever started us, as "fds|target|target...". */
static void append_inherited_fds(const char* path)
{
    char line[4096] = "fds";
    for (int fd = 3; fd < 256; ++fd) {
        char link[64];
        char target[256];
        snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
        ssize_t length = readlink(link, target, sizeof target - 1);
        if (length < 0)
            continue;
        target[length] = '\0';
        if (strlen(line) + (size_t)length + 2 < sizeof line) {
            strcat(line, "|");
            strcat(line, target);
        }
    }
    strcat(line, "\n");
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd >= 0) {
        (void)!write(fd, line, strlen(line));
        close(fd);
    }
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
        write_stamp(stamp);
        return 0;
    }
    const char* path = (const char*)getauxval(AT_EXECFN);
    const char* slash = path ? strrchr(path, '/') : NULL;
    const char* name = slash ? slash + 1 : path ? path : "?";
    const char* log = getenv("KEST_FAKE_LOG");
    if (log && getenv("KEST_FAKE_FDS"))
        append_inherited_fds(log);
    if (log)
        append_line(log, name, argc, argv);
    const char* sleep_ms = getenv("KEST_FAKE_SLEEP_MS");
    if (sleep_ms)
        usleep((useconds_t)atoi(sleep_ms) * 1000);
    const char* fail = getenv("KEST_FAKE_FAIL");
    return fail && listed(fail, name) ? 1 : 0;
}
