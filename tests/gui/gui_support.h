#pragma once
// The GUI tests' helpers: real windows under Xvfb, driven through GTK in the test process.
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/record.h"
#include "support/test_support.h"
#include "ui/form.h"

#include <memory>

using texts = std::vector<std::string>;

// Lets the toolkit handle everything pending (drawing, mapping, signals) for a while.
void pump_events(int milliseconds = 50);

// Searches below container in packing order; buttons are not entered.
texts button_labels(GtkWidget* container);
GtkWidget* find_button(GtkWidget* container, const std::string& label);
GtkWidget* find_widget(GtkWidget* container, GType type);
std::string label_text(GtkWidget* container);
GtkWidget* find_window(const std::string& title);  // visible top-level, or null

// Answers the next modal dialog with response, after copying its text to *text.
void answer_next_dialog(std::string* text, int response = GTK_RESPONSE_CLOSE);
void save_screenshot(GtkWidget* window, const std::string& name);  // build/screenshots/NAME.png
void add_program(const std::string& file, const std::string& body);  // a fake shell program

// Named controls (gtk_widget_set_name) of a window; a failed lookup fails the test.
GtkWidget* named(GtkWidget* window, const char* name);
std::string text_of(GtkWidget* window, const char* name);  // an entry or a combo's entry
void type_text(GtkWidget* window, const char* name, const std::string& text);
void set_box(GtkWidget* window, const char* name, bool on);
void click(GtkWidget* window, const char* label);  // by label, else by widget name
void select_row(GtkWidget* window, const char* view, const char* path);
// Every named entry or combo with a text as "name=text", every toggle on as its name,
// sorted and joined by "; ".
std::string shown_values(GtkWidget* window);

// A master row as its 36 columns joined by "|": 2 and 35 are TRUE or FALSE, and the
// password (11) is in clear (stored padded with the row's name).
connection_record parse_row(const std::string& columns);
std::string row_text(const connection_record& record);

struct shell_setup { bool shell = false, admin = false, turnoff = false, reboot = false; };

// A started shell in a private root: support folder, log, root/bin first in PATH, the
// widget slots and the running user's models; TearDown closes every window.
class gui_test : public ::testing::Test {
protected:
    gui_test();
    ~gui_test() override;
    // Builds and shows the main window as start-up does, for this mode and these rights.
    void open_main_window(shell_setup setup, GCallback advanced = nullptr);
    std::string cell(const char* path, int column) const;  // of the running user's tree

    temp_dir root;
    scoped_root rooted{root.path()};
    std::string old_path_;
};

// A user's shell with one persistent connection, "Desk", an "Other" command.
class shell_window_test : public gui_test {
protected:
    shell_window_test();
    ~shell_window_test() override;
};

using editor_opener = void (*)(GtkWidget*, GtkTreeModel*, GtkTreePath*);
void ica_opener(GtkWidget*, GtkTreeModel*, GtkTreePath* path);

// A terminal being administered: users, the globals as start-up sets them, the keyboard
// map lists and the administrator's main window.
class admin_test : public gui_test {
protected:
    admin_test();
    ~admin_test() override;
    // Writes the master list and the administrator's tree and loads them as start-up does.
    void load(const std::string& master_list, const std::string& user_tree = "");
    GtkWidget* open_advanced();  // null when it did not open
    // An editor on the master row (name, type), or on a new connection when name is empty.
    GtkWidget* open(editor_opener opener, const char* title, const std::string& name = "",
                    const std::string& type = "");
    connection_record master_row(const std::string& name, const std::string& type) const;
    std::string master_file() const { return read_file_text(root / "etc/.kestrel/kestrel.master"); }
    std::string user_file(const std::string& user) const { return read_file_text(root / ("home/" + user + "/kestrel.inf")); }

    // Made after the main window, whose own handlers would show every message.
    std::unique_ptr<message_recorder> messages;
};
