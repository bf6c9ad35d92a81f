#pragma once
// Row builders for the editors' forms: a label and its control on one row of a
// GtkTable. Every control gets a widget name, so that tests and assistive technology
// find it. The four toggle helpers make one control follow a check box.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// Text entries take at most this many characters.
inline constexpr int entry_limit = 100;

// Gives widget a name (for tests and assistive technology) and returns it.
GtkWidget* name_widget(GtkWidget* widget, const char* name);

// A table of form rows.
GtkWidget* form_table();
// An entry of at most max characters ("" default).
GtkWidget* form_entry(GtkWidget* table, int row, const char* label, const char* name,
                      int max = entry_limit);
// A drop-down whose text can only be chosen, starting at initial.
GtkWidget* form_fixed_combo(GtkWidget* table, int row, const char* label, const char* name,
                            const std::vector<std::string>& choices, const std::string& initial);
// A drop-down whose text can also be typed; the first choice (if any) is shown.
GtkWidget* form_editable_combo(GtkWidget* table, int row, const char* label, const char* name,
                               const std::vector<std::string>& choices);
// A check box beside an entry that is editable only while the box is on
// (toggle_editable_cb). Returns the check box; *entry gets the entry.
GtkWidget* form_check_entry(GtkWidget* table, int row, const char* label, const char* name,
                            GtkWidget** entry, const char* entry_name, const char* initial = "");
// A check box across the whole row.
GtkWidget* form_check(GtkWidget* table, int row, const char* label, const char* name);
// An entry that takes at most max characters.
GtkWidget* limited_entry(int max = entry_limit);
// A framed box holding child, titled title.
GtkWidget* framed(const char* title, GtkWidget* child);


// "toggled" handlers given (check box, other widget).
void toggle_editable_cb(GtkToggleButton* box, GtkWidget* other);      // on: other sensitive
void toggle_not_editable_cb(GtkToggleButton* box, GtkWidget* other);  // on: other insensitive
void toggle_active_cb(GtkToggleButton* box, GtkWidget* other);        // on: other toggle on
void toggle_inactive_cb(GtkToggleButton* box, GtkWidget* other);      // on: other toggle off
