#pragma once
// Helpers and fixtures of the GUI tests: real windows under Xvfb, driven through GTK.
// shell_window_test is a started shell for one user with a primary connection "Desk" and
// its secondary "Backup" (both "Other" commands); admin_test is a terminal being
// administered: a password database, a master list and the user trees, the globals as
// start-up sets them, the main window and keyboard map lists.
#include "launch/command_line.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/record.h"
#include "support/test_support.h"
#include "ui/form.h"

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Lets the toolkit handle everything pending (drawing, mapping, signals).
void pump_events(int milliseconds = 50);
// Pumps events until condition holds; false after the time-out.
bool wait_for(const std::function<bool()>& condition, int timeout_ms = 5000);

// Searches below container (not inside buttons), in packing order.
std::vector<std::string> button_labels(GtkWidget* container);
GtkWidget* find_button(GtkWidget* container, const std::string& label);
GtkWidget* find_widget(GtkWidget* container, GType type);
// The widget named name (gtk_widget_set_name) at or below container.
GtkWidget* find_named_widget(GtkWidget* container, const char* name);
std::string label_text(GtkWidget* container);
// A visible top-level window with this title, or null.
GtkWidget* find_window(const std::string& title);

// Closes the next modal dialog with response, after copying its label_text to *text.
void answer_next_dialog(std::string* text, int response = GTK_RESPONSE_CLOSE);

// Saves a PNG of the window under the build's screenshots folder.
void save_screenshot(GtkWidget* window, const std::string& name);

// A shell script at file (its folder made), as a fake of a program the system starts.
void add_program(const std::string& file, const std::string& body);

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

// What the named controls of a window show, sorted and joined by "; ": "name=text" for
// every entry or combo with a text, and the name alone for every toggle that is on.
std::string shown_values(GtkWidget* window);

// A master row as its 36 columns joined by "|": 2 and 35 are TRUE or FALSE, and the
// password (11) is given in clear; it is stored padded with the row's name.
connection_record parse_row(const std::string& columns);
std::string row_text(const connection_record& record);

class admin_test : public ::testing::Test {
public:
protected:
    void SetUp() override;
    void TearDown() override;

    // Writes the master list and the administrator's tree and loads them as start-up does.
    void load(const std::string& master_list, const std::string& user_tree = "");
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
