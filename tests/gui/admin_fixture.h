#pragma once
// A terminal being administered, for every test of the administration windows and the
// editors: a private root with a password database, a master list and the user trees,
// the globals as start-up sets them, the main window and keyboard map lists.
#include "editors/form.h"
#include "gui/shell_window_fixture.h"
#include "store/models.h"
#include "store/record.h"
#include "support/test_support.h"

#include <map>
#include <memory>

using texts = std::vector<std::string>;
using editor_opener = void (*)(GtkWidget*, GtkTreeModel*, GtkTreePath*);
// The ICA editor behind the common opener shape.
void ica_opener(GtkWidget*, GtkTreeModel*, GtkTreePath* path);

// Widgets of a window by name; each lookup that fails is a test failure.
GtkWidget* named(GtkWidget* window, const char* name);
std::string text_of(GtkWidget* window, const char* name);  // an entry or a combo's entry
void type_text(GtkWidget* window, const char* name, const std::string& text);
void set_box(GtkWidget* window, const char* name, bool on);
bool box_on(GtkWidget* window, const char* name);
bool sensitive(GtkWidget* window, const char* name);
// Clicks the button with this label, or else the one with this widget name.
void click(GtkWidget* window, const char* label);
// Selects the row at path in the named tree view of the window.
void select_row(GtkWidget* window, const char* view, const char* path);
// Saves a screenshot of every page of the named notebook, as prefix1.png, prefix2.png...
void screenshot_pages(GtkWidget* window, const char* notebook, const std::string& prefix);
// Column 0 of every row of the named combo or tree view, a line each.
std::string choices(GtkWidget* window, const char* name);

// What the named controls of a window show, sorted and joined by "; ": "name=text" for
// every entry or combo with a text, and the name alone for every toggle that is on.
std::string shown_values(GtkWidget* window);

// A master row as its 36 columns joined by "|": 2 and 35 are TRUE or FALSE, and the
// password (11) is given in clear; it is stored padded with the row's name.
connection_record parse_row(const std::string& columns);
std::string row_text(const connection_record& record);

class admin_test : public ::testing::Test {
public:
    // The 35 lines of a master record; columns not given are "" (4 is "1", 33 and 34 "0").
    static std::string record(const std::string& name, const std::string& type, bool ping,
                              const std::string& port, const std::map<int, std::string>& columns = {});
    static std::string master(const std::string& records, const std::string& gui = "Show GUI");

protected:
    void SetUp() override;
    void TearDown() override;

    // Writes the master list and the administrator's tree and loads them as start-up does.
    void load(const std::string& master_text, const std::string& user_tree = "");
    // Opens the Advanced window from the main window; null when it did not open.
    GtkWidget* open_advanced();
    // Opens an editor on the master row (name, type), or for a new connection when name
    // is empty; returns its window.
    GtkWidget* open(editor_opener opener, const char* title, const std::string& name = "",
                    const std::string& type = "");
    connection_record master_row(const std::string& name, const std::string& type) const;
    std::string master_file() const;
    std::string user_file(const std::string& user) const;

    temp_dir root;
    scoped_root rooted{root.path()};
    shell_state state{root};
    // Made after the main window, whose own handlers would show every message.
    std::unique_ptr<message_recorder> messages;
};
