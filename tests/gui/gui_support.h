#pragma once
// The GUI tests' helpers: real windows under Xvfb, driven through GTK in the test process.
#include "editors/editors.h"
#include "platform/paths.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/password.h"
#include "store/record.h"
#include "support/test_support.h"
#include "ui/widgets.h"

#include <memory>

using texts = std::vector<std::string>;

// Lets the toolkit handle everything pending (drawing, mapping, signals) for a while.
void pump_events(int milliseconds = 50);

// The first widget at or below widget that match accepts, in packing order; a button's
// caption is no part of a dialog's text, so buttons are not entered.
GtkWidget* find_below(GtkWidget* widget, const std::function<bool(GtkWidget*)>& match);
GtkWidget* find_button(GtkWidget* container, const std::string& label);
GtkWidget* find_window(const std::string& title);  // visible top-level, or null

// Answers the next modal dialog with response, after copying its text to *text.
void answer_next_dialog(std::string* text, int response = GTK_RESPONSE_CLOSE);
void save_screenshot(GtkWidget* window, const std::string& name);  // build/screenshots/NAME.png
void add_program(const std::string& file, const std::string& body);  // a fake shell program

// Named controls (gtk_widget_set_name) of a window; a failed lookup fails the test.
GtkWidget* named(GtkWidget* window, const char* name);
std::string text_of(GtkWidget* window, const char* name);  // an entry or a combo's entry
void type_text(GtkWidget* window, const char* name, const std::string& text);  // an entry
void set_box(GtkWidget* window, const char* name, bool on);
void click(GtkWidget* window, const char* label);  // by label, else by widget name
void select_row(GtkWidget* window, const char* view, const char* path);
struct shell_setup { bool shell = false, admin = false, turnoff = false, reboot = false; };

// A started shell in a private root: support folder, log, root/bin first in PATH, the
// widget slots and the running user's models; closes every window when done.
class gui_test : public ::testing::Test {
protected:
    gui_test();
    ~gui_test() override;
    // Builds and shows the main window as start-up does, for this mode and these rights.
    void open_main_window(shell_setup setup, GCallback advanced = nullptr);

    temp_dir root;
    scoped_root rooted{root.path()};
    std::string old_path_;
};

using editor_opener = void (*)(GtkWidget*, GtkTreeModel*, GtkTreePath*);
void ica_opener(GtkWidget*, GtkTreeModel*, GtkTreePath* path);

// A terminal being administered: users, the globals as start-up sets them, the keyboard
// map lists and the administrator's main window.
class admin_test : public gui_test {
protected:
    admin_test();
    ~admin_test() override;
    // An editor on the master row (name, type), or on a new connection when name is empty.
    GtkWidget* open(editor_opener opener, const char* title, const std::string& name = "",
                    const std::string& type = "");
    connection_record master_row(const std::string& name, const std::string& type) const;

    // Made after the main window, whose own handlers would show every message.
    std::unique_ptr<message_recorder> messages;
};
