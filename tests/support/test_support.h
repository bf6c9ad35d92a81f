#pragma once
// Helpers shared by the tests: temporary folders, files, models as text, and a recorder for
// the error dialog's messages. It also brings GoogleTest, GTK and the common headers.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <numeric>
#include <string>
#include <sys/stat.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

// A fresh folder, removed with its contents when the object goes.
class temp_dir {
public:
    temp_dir();
    ~temp_dir();
    temp_dir(const temp_dir&) = delete;
    temp_dir& operator=(const temp_dir&) = delete;
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Sets KESTRELLE_ROOT for the life of the object (and restores the old value).
class scoped_root {
public:
    explicit scoped_root(const std::string& root);
    ~scoped_root();

private:
    std::string old_;
    bool had_old_;
};

// While it lives, writes to regular files fail past room bytes, as on a full disk.
class full_disk {
public:
    explicit full_disk(rlim_t room = 8);
    ~full_disk();

private:
    struct rlimit old_;
};

void write_file(const std::string& path, const std::string& contents);
std::string read_file_text(const std::string& path);
// The records of a data file: each record ends at a line "%%", its fields are parted by
// lines "--", and every line of a field keeps its line end.
std::vector<std::vector<std::string>> read_records(const std::string& path);
// The blocks of a data file: lines parted by blank lines (none is empty); lines starting
// with "#" are notes.
std::vector<std::vector<std::string>> read_blocks(const std::string& path);
void make_dirs(const std::string& path);

// A list or tree model as text, for every model the tests look at: a line a row, children
// indented by two spaces, the given columns joined by "|" (flags as TRUE or FALSE).
std::string dump_model(GtkTreeModel* model, std::initializer_list<int> columns);

// A master list as its file holds it: the header, then the records.
std::string master_text(const std::string& records, const std::string& gui = "Show GUI");
// A master record's 35 lines: name, type, the ping line, the port, then columns 4 to 34,
// "" unless given but 4 "1" and 33 and 34 "0", as an editor writes a new connection.
std::string master_record(const std::string& name, const std::string& type, bool ping, const std::string& port,
                          const std::map<int, std::string>& columns = {});

// Records every text shown through the error dialog while it lives.
class message_recorder {
public:
    message_recorder();
    ~message_recorder();
    std::vector<std::string> shown;  // texts shown (set and run), in order
    std::string label;               // the last text set, shown or not
    int prompts = 0;                 // reconnect prompts asked for
};

// A private root that KESTRELLE_ROOT points at, and the messages shown meanwhile.
class rooted_test : public ::testing::Test {
protected:
    temp_dir root;
    scoped_root rooted{root.path()};
    message_recorder messages;
};
