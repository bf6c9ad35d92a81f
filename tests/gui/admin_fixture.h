#pragma once
// A terminal being administered: a private root with a password database, a master
// list and the administrator's tree on disk, the models loaded from them as start-up
// loads them, and the main window built.
#include "gui/gui_support.h"
#include "store/record.h"
#include "support/test_support.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>

class admin_test : public ::testing::Test {
public:
    // The 35 lines of a master record; columns not given are "" (4 is "1", 33 and 34 "0").
    static std::string record(const std::string& name, const std::string& type, bool ping,
                              const std::string& port, const std::map<int, std::string>& columns = {});
    static std::string master(const std::string& records, const std::string& gui = "Show GUI");

protected:
    void SetUp() override;
    void TearDown() override;

    // Writes the master list and loads it, and the administrator's tree, into the models.
    void load(const std::string& master_text, const std::string& user_tree);

    // Opens the Advanced window from the main window; null when it did not open.
    GtkWidget* open_advanced();
    GtkWidget* named(GtkWidget* window, const char* name);
    // Selects the row at path in the named view of the window.
    void select(GtkWidget* window, const char* view, const char* path);
    void click(GtkWidget* window, const char* label);
    std::string master_file() const;
    std::string user_file(const std::string& user) const;

    temp_dir root;
    scoped_root rooted{root.path()};
    // Made after the main window, whose own handlers would show every message.
    std::unique_ptr<message_recorder> messages;
};
