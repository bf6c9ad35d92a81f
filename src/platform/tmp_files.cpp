#include "platform/tmp_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

std::string tmp_dir = "/tmp/.kestrel";

int create_fresh_file(const std::string& path)
{
    struct stat st;
    if (lstat(path.c_str(), &st) == 0) {
        if (!S_ISREG(st.st_mode) || st.st_uid != geteuid())
            return -1;
        if (unlink(path.c_str()) != 0)
            return -1;
    }
    // O_EXCL: whatever appears between the removal and here makes the open fail.
    return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
}

unique_file open_fresh_file(const std::string& path)
{
    const int fd = create_fresh_file(path);
    if (fd < 0)
        return nullptr;
    unique_file file(fdopen(fd, "w"));
    if (!file)
        close(fd);
    return file;
}

bool is_private_directory(const std::string& path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == geteuid() &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool make_directory_private(const std::string& path)
{
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool done = fchmod(fd, 0700) == 0;
    close(fd);
    return done;
}

bool is_own_single_file(int fd)
{
    struct stat st;
    return fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_nlink == 1 && st.st_uid == geteuid();
}

unique_file open_regular_file(const std::string& path)
{
    // O_NONBLOCK: opening a FIFO for reading would otherwise wait for a writer.
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    struct stat st;
    unique_file file;
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && fcntl(fd, F_SETFL, 0) == 0)
        file.reset(fdopen(fd, "r"));
    if (!file)
        close(fd);
    return file;
}
