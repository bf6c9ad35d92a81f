#pragma once
// A private root, the globals of a started shell and its main window, for one user
// with a primary connection "Desk" and its secondary "Backup" (both "Other" commands).
#include "gui/gui_support.h"
#include "ica/paths.h"
#include "launch/command_line.h"
#include "shell/globals.h"
#include "store/models.h"
#include "shell/main_window.h"
#include "store/record.h"
#include "support/test_support.h"

// What every GUI test of a started shell sets up in its private root: the support
// folder, the log, the root's bin first in PATH, the widget slots and the running
// user's models. Going, it closes the main window and the shared dialogs and frees them.
class shell_state {
public:
    explicit shell_state(const temp_dir& root);
    ~shell_state();
    shell_state(const shell_state&) = delete;
    shell_state& operator=(const shell_state&) = delete;

private:
    std::string old_path_;
};

struct shell_setup { bool shell = false, admin = false, turnoff = false, reboot = false; };

class shell_window_test : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Builds and shows the window the way start-up does, for the given mode and rights.
    void open_main_window(shell_setup setup);
    GtkTreeView* view() const;
    GtkTreeIter row(const char* path) const;
    std::string cell(const char* path, int column) const;

    temp_dir root;
    scoped_root rooted{root.path()};
    shell_state state{root};
};
