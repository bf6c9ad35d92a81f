#pragma once
// What every editor shares: its window with the name field and the Save/Cancel row, the
// widget block handed to every callback, and the end of every Save (name checks for a
// new connection, the sorted insertion, the master list save and the offer to the
// administered user).
#include "ui/binding.h"

#include <gtk/gtk.h>

#include <span>
#include <string>
#include <vector>

// What makes one editor differ from another, apart from its own controls.
struct editor_kind {
    const char* type;                     // column 1
    bool ping_first;                      // column 2 of a new connection
    const char* ping_port;                // column 3 of a new connection
    int flags_column;                     // where the option bits go, or -1
    std::span<const column_binding> columns;
};

// The block of widget references of one open editor, freed when its window goes.
struct editor {
    const editor_kind* kind = nullptr;
    GtkWidget* window = nullptr;
    GtkTreePath* path = nullptr;          // the edited master row; nullptr for a new one
    GtkWidget* name = nullptr;            // the "Name this connection:" entry
    std::vector<GtkWidget*> widgets;      // by the editor's own widget enum
};

// A new editor window titled title, hiding the window in misc_widgets[0] while it is
// open; path (may be nullptr) is copied. connect_info is cleared.
editor* open_editor(const editor_kind& kind, const char* title, GtkTreePath* path, int widget_count);
// Puts the record of the edited row (or a new one's blank columns) into the widgets
// and connect_info; the name field becomes insensitive when editing.
void load_editor(editor* e);
// The common tail of the window: content, then the Save/Cancel row, shown; the Save
// handler is save (it ends by calling finish_editor_save).
void show_editor(editor* e, GtkWidget* content, GCallback save);

// The columns a Save writes, read from the widgets through the kind's binding table
// (columns 5 to 34; column 0 holds the name, the password's key).
connection_record editor_values(const editor* e);
// The end of every Save, given the columns to write. A new connection with an empty or taken (name, type) is
// refused with the message and false: the editor stays open. Otherwise the row is
// written, the lists are saved, a new connection is offered to the administered user,
// the window is destroyed and true is returned.
bool finish_editor_save(editor* e, const connection_record& values);
// "_Cancel": destroys the window; nothing is written.
void editor_cancel_cb(GtkWidget* button, editor* e);

// A record of the kind's type as an editor creates it: columns 0 to 4 set, 5 to 32 "",
// 33 and 34 "0".
connection_record new_record(const editor_kind& kind, const std::string& name);
