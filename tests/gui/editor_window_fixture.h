#pragma once
// A private root with one administered user ("ann"), empty connection lists, keyboard
// map lists and the recording fake as every session program, for driving the editor
// windows as the administrator does.
#include "editors/form.h"
#include "gui/gui_support.h"
#include "store/models.h"
#include "store/record.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

using column_texts = std::initializer_list<std::pair<int, const char*>>;
using texts = std::vector<std::string>;
using editor_opener = void (*)(GtkWidget*, GtkTreeModel*, GtkTreePath*);

connection_record with(connection_record record, column_texts columns);

class editor_window_test : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Inserts a master row in name order.
    void add_record(const connection_record& record);
    connection_record master_row(const std::string& name, const std::string& type) const;
    // Opens the editor on the master row (name, type), or for a new connection when
    // name is empty, and returns its window.
    GtkWidget* open(editor_opener opener, const char* title, const std::string& name = "",
                    const std::string& type = "");

    GtkWidget* control(GtkWidget* window, const char* name) const;
    std::string text_of(GtkWidget* window, const char* name) const;  // entry or combo
    void type_text(GtkWidget* window, const char* name, const std::string& text) const;
    void set_box(GtkWidget* window, const char* name, bool on) const;
    bool box_on(GtkWidget* window, const char* name) const;
    void click(GtkWidget* window, const char* label) const;
    texts combo_choices(GtkWidget* window, const char* name) const;

    // Starts the connection from the running user's tree with ping off, waits for the
    // session child and returns the fake's log: one line per program, "name|arg|arg...".
    std::string launch(const std::string& name, const std::string& type);

    temp_dir root;
    scoped_root rooted{root.path()};
    message_recorder messages;
    GtkWidget* main_window = nullptr;
    std::string old_path;
};
