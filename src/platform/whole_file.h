#pragma once
// Replacing a file whole: the new content goes to a temporary name beside the file,
// reaches the disk, and is renamed over the file, so that a kill or a power cut at any
// instant leaves either the old file or the new one, never a file cut short.
#include "platform/file.h"

#include <optional>
#include <string>
#include <sys/types.h>

struct file_owner {
    uid_t uid;
    gid_t gid;
};

class file_replacement {
public:
    // Starts replacing path, or the file a link at path names. Anything but a regular
    // file there (a folder, a device, a FIFO) counts as a file that cannot be opened.
    explicit file_replacement(const std::string& path);
    // Starts replacing name inside the folder dir_fd (kept open by the caller), so that
    // nothing on the way to the folder can change while the file is replaced; a link at
    // name is not followed and counts as a file that cannot be opened. A file made new
    // there gets new_owner (when given; else the running user's).
    file_replacement(int dir_fd, const std::string& name, std::optional<file_owner> new_owner = {});
    ~file_replacement();
    file_replacement(const file_replacement&) = delete;
    file_replacement& operator=(const file_replacement&) = delete;

    // The stream of the new content; null when the temporary file could not be made.
    FILE* stream() const { return out_.get(); }
    // Puts the new content in place. False, with the old file untouched and the
    // temporary removed, when any write, the flush to disk or the rename failed.
    bool commit();
    // Drops the new content; the old file stays as it was.
    void discard();

private:
    void start(const std::string& name);
    bool set_owner(int fd) const;

    int dir_fd_ = -1;
    bool own_dir_ = false;
    std::string name_;
    std::string temp_name_;
    std::optional<file_owner> owner_;  // given to the new file before it takes the name
    unique_file out_;
};

// Replaces path with text whole. False when it could not (the old file is untouched).
bool replace_file(const std::string& path, const std::string& text);
// The whole content of a regular file (a FIFO, device or directory is refused without
// blocking); false when it cannot be read.
bool read_whole_file(const std::string& path, std::string* text);
