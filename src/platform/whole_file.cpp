#include "platform/whole_file.h"

#include "platform/log.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// One fixed name per file, beginning with a dot and ending in ".new": no reader opens it
// in place of the file, and the next replacement of the same file removes whatever a
// kill left there before it makes its own.
std::string temporary_name(const std::string& name) { return "." + name + ".new"; }

}  // namespace

// A link that the administrator put in the program's own folders is followed, so that
// the file it names is the one replaced (beside itself) and the link stays.
file_replacement::file_replacement(const std::string& path)
{
    std::string target = path;
    if (char* real = realpath(path.c_str(), nullptr)) {
        target = real;
        std::free(real);
    }
    const size_t slash = target.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : target.substr(0, slash);
    dir_fd_ = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    own_dir_ = true;
    if (dir_fd_ >= 0)
        start(slash == std::string::npos ? target : target.substr(slash + 1));
}

file_replacement::file_replacement(int dir_fd, const std::string& name, std::optional<file_owner> new_owner)
    : dir_fd_(dir_fd), owner_(new_owner)
{
    start(name);
}

file_replacement::~file_replacement()
{
    discard();
    if (own_dir_ && dir_fd_ >= 0)
        close(dir_fd_);
}

void file_replacement::start(const std::string& name)
{
    name_ = name;
    temp_name_ = temporary_name(name);
    struct stat old;
    const bool exists = fstatat(dir_fd_, name.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    // Only a regular file is replaced: a folder, device or FIFO in its place counts as
    // a file that cannot be opened.
    if (exists && !S_ISREG(old.st_mode))
        return;
    // A link or FIFO at the temporary name is removed, never followed.
    unlinkat(dir_fd_, temp_name_.c_str(), 0);
    const int fd = openat(dir_fd_, temp_name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0)
        return;
    // The new content is never readable by more people than the old file allowed.
    if (exists) {
        (void)!fchmod(fd, old.st_mode & 07777);
        owner_ = file_owner{old.st_uid, old.st_gid};
    }
    out_.reset(fdopen(fd, "w"));
    if (!out_) {
        close(fd);
        unlinkat(dir_fd_, temp_name_.c_str(), 0);
    }
}

// A file that cannot be given its owner is still put in place: it holds what the
// owner asked for, and only its ownership is logged as wrong.
bool file_replacement::set_owner(int fd) const
{
    if (!owner_)
        return true;
    struct stat st;
    if (fstat(fd, &st) == 0 && st.st_uid == owner_->uid && st.st_gid == owner_->gid)
        return true;
    if (fchown(fd, owner_->uid, owner_->gid) == 0)
        return true;
    log_printf("Could not give %s to user %u: %s\n", name_.c_str(), static_cast<unsigned>(owner_->uid),
               std::strerror(errno));
    return false;
}

bool file_replacement::commit()
{
    if (!out_)
        return false;
    const int fd = fileno(out_.get());
    bool written = std::fflush(out_.get()) == 0 && !std::ferror(out_.get());
    set_owner(fd);
    written = written && fsync(fd) == 0;
    written = std::fclose(out_.release()) == 0 && written;
    if (!written || renameat(dir_fd_, temp_name_.c_str(), dir_fd_, name_.c_str()) != 0) {
        unlinkat(dir_fd_, temp_name_.c_str(), 0);
        return false;
    }
    // The rename itself reaches the disk only with its folder.
    if (fsync(dir_fd_) != 0)
        log_printf("Could not flush the folder of %s: %s\n", name_.c_str(), std::strerror(errno));
    return true;
}

void file_replacement::discard()
{
    if (!out_)
        return;
    out_.reset();
    unlinkat(dir_fd_, temp_name_.c_str(), 0);
}

bool replace_file(const std::string& path, const std::string& text)
{
    file_replacement file(path);
    if (!file.stream())
        return false;
    std::fwrite(text.data(), 1, text.size(), file.stream());
    return file.commit();
}

bool read_whole_file(const std::string& path, std::string* text)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st;
    bool read_all = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    text->clear();
    char chunk[65536];
    ssize_t got = 0;
    while (read_all && (got = read(fd, chunk, sizeof chunk)) > 0)
        text->append(chunk, static_cast<size_t>(got));
    close(fd);
    return read_all && got == 0;
}
