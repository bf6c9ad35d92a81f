#pragma once
// One table per editor binds record columns to the editor's widgets; the two functions
// here fill the widgets from a record and read them back, so that no editor copies
// either walk.
#include "store/record.h"

#include <gtk/gtk.h>

#include <span>

enum class bind {
    text,         // a GtkEntry
    combo_text,   // a combo with an entry: its text, chosen or typed
    password,     // a GtkEntry holding the clear password; the column holds the padded form
    check_bit,    // a toggle that owns a bit of the editor's option bits (no column)
    text_if_bit,  // a GtkEntry whose text is kept only while its bit is on
    radio_label,  // a radio button of a group: the column holds the active member's label
};

struct column_binding {
    int column;               // master column (unused for check_bit)
    int widget;               // index into the editor's widgets
    bind kind;
    unsigned long bit = 0;    // check_bit and text_if_bit
};

// Sets the widgets from record; password columns are unpadded and unscrambled with
// the record's name. Toggles are set from the bits of flags.
void fill_widgets(std::span<const column_binding> table, GtkWidget* const* widgets,
                  const connection_record& record, unsigned long flags);
// Reads the widgets into record; the password is scrambled and padded with the
// record's name, a text_if_bit column is "" while its bit is clear in flags.
void read_widgets(std::span<const column_binding> table, GtkWidget* const* widgets,
                  connection_record& record, unsigned long flags);

// The option bits as stored: exactly five decimal digits, zero-padded on the left.
std::string five_digits(unsigned long flags);
