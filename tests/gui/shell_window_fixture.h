#pragma once
// A private root, the globals of a started shell and its main window, for one user
// with a primary connection "Desk" and its secondary "Backup" (both "Other" commands).
#include "gui/gui_support.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/record.h"
#include "support/test_support.h"

#include <gtest/gtest.h>
#include <string>

struct shell_setup {
    bool shell = false;
    bool admin = false;
    bool turnoff = false;
    bool reboot = false;
};

class shell_window_test : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Builds and shows the window the way start-up does, for the given mode and rights.
    void open_main_window(shell_setup setup);
    // The view's rows: name and status, depth first.
    std::string row_text(const char* path) const;
    GtkTreeIter row(const char* path) const;
    GtkTreeView* view() const;
    // Starts the fake program "name" in the root's PATH folder: a shell script body.
    void add_program(const std::string& name, const std::string& body);
    void send_delete_event(GtkWidget* window);

    temp_dir root;
    scoped_root rooted{root.path()};
    std::string old_path;
};
