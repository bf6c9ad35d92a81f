#pragma once
// The builders every window of the program uses, so that each window is put together
// the same way: title, icon and placement, scrolled lists, fixed choices, the Save and
// Cancel row, and the main window hidden while another one is open.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// The program's icon, for every window of its own.
GdkPixbuf* program_icon();
// A top-level window of the program: titled, centred on the screen, with its icon.
GtkWidget* program_window(const char* title);
// A sunken scrolled area around child that scrolls up and down only.
GtkWidget* vertical_scroller(GtkWidget* child);
// Expands every row of a two-level tree view (a connection tree) so that each
// secondary shows under its primary.
void expand_every_group(GtkTreeView* view);
// Hides other (if any) now and shows it again when window is destroyed.
void hide_while_open(GtkWidget* window, GtkWidget* other);

// Texts from files in entries, combos and lists. A window shows them through shown_text
// and a field remembers the bytes it was loaded from: while its shown text is unchanged
// it reads back as those very bytes, so a Save without changes rewrites a file byte for
// byte. A changed field reads back as the UTF-8 the user sees and typed (GTK holds no
// other form, and UTF-8 then shows alike in every window and tool), except that a text
// equal to one of a combo's choices reads back as the bytes that choice came from: a user
// or host picked from a list keeps the bytes the other files know it by.
void set_entry_bytes(GtkWidget* entry, const std::string& bytes);
std::string entry_bytes(GtkWidget* entry);
// Appends choices (as a file holds them) to a combo with an entry.
void append_choices(GtkWidget* combo, const std::vector<std::string>& choices);
// Shows column of the model as text in renderer, converted by shown_text.
void show_model_text(GtkTreeViewColumn* view_column, GtkCellRenderer* renderer, int column);
// A combo with an entry for lists that may hold tens of thousands of choices: it drops
// down as a scrolled list, and its entry completes what is typed from the choices.
GtkWidget* long_choice_combo(const char* name);
// Replaces the choices of a long_choice_combo, keeping the text in its entry.
void replace_choices(GtkWidget* combo, const std::vector<std::string>& choices);
// A titled tree view column showing column of the model as text.
GtkTreeViewColumn* text_view_column(const char* title, int column);

// A drop-down whose entry cannot be typed in, only chosen from, starting at initial
// (or the first choice when initial is not among them).
GtkWidget* fixed_choice_combo(const std::vector<std::string>& choices, const std::string& initial);
// The text of a combo built with an entry ("" when none), read as entry_bytes does.
std::string combo_text(GtkWidget* combo);
// Shows text in the combo's entry, whether or not it is one of its choices, and
// remembers it as set_entry_bytes does.
void set_combo_text(GtkWidget* combo, const std::string& text);

// A left-aligned label that wraps: the notes and explanations of a window.
GtkWidget* wrapped_note(const char* text);
// A new page of notebook titled title: a column with border around it.
GtkWidget* notebook_page(GtkWidget* notebook, const char* title, int border);

// The texts of a closed list of choices (plain texts, or entries with a text) for a
// drop-down.
std::vector<std::string> choice_texts(const auto& choices)
{
    std::vector<std::string> texts;
    for (const auto& choice : choices) {
        if constexpr (requires { choice.text; })
            texts.emplace_back(choice.text);
        else
            texts.emplace_back(choice);
    }
    return texts;
}

// A button with a mnemonic label; clicked calls handler with data.
GtkWidget* labelled_button(const char* label, GCallback handler, gpointer data);
// A row of buttons at the end of a window: the one labelled first_label (the default
// button) then "_Cancel", with their handlers.
GtkWidget* default_cancel_row(GtkWidget* window, const char* first_label, GCallback first,
                              GCallback cancel, gpointer data);
// default_cancel_row with "_Save".
GtkWidget* save_cancel_row(GtkWidget* window, GCallback save, GCallback cancel, gpointer data);

// A modal Yes/No question; true only for Yes (No and closing the box are false).
bool ask_yes_no(GtkWindow* parent, const std::string& question);
