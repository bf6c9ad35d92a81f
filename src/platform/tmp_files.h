#pragma once
// Files in /tmp or in a user's home, where another local user may have planted a link,
// a FIFO or a file of their own under a name this program uses. Nothing here follows a
// link.
#include "platform/file.h"

#include <string>

extern std::string tmp_dir;  // support directory, "/tmp/.kestrel"; start-up applies the root prefix

// Creates path afresh (O_CREAT | O_EXCL | O_NOFOLLOW) with mode 0666 less the umask, as
// fopen would. A regular file of the running user left by an earlier run is removed
// first; a link, another user's file or anything else there counts as "cannot be
// opened". Returns the descriptor (close-on-exec) or -1.
int create_fresh_file(const std::string& path);
// The same, as a stream open for writing; null when the file cannot be created.
unique_file open_fresh_file(const std::string& path);

// True when path is a directory (not a link to one) of the running user that no one
// else may write into.
bool is_private_directory(const std::string& path);
// Sets a directory that this program has just made to mode 0700 (without following a
// link). Returns false when it cannot.
bool make_directory_private(const std::string& path);

// True when the open descriptor is a regular file with one link, owned by the running
// user: only such a file may have its mode changed.
bool is_own_single_file(int fd);

// Opens path for reading only when it is a regular file and not a link: a FIFO or a
// device planted there is refused at once instead of blocking the program. Null
// otherwise.
unique_file open_regular_file(const std::string& path);
