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

// A drop-down whose entry cannot be typed in, only chosen from, starting at initial
// (or the first choice when initial is not among them).
GtkWidget* fixed_choice_combo(const std::vector<std::string>& choices, const std::string& initial);
// The text of a combo built with an entry ("" when none).
std::string combo_text(GtkWidget* combo);
// Shows text in the combo's entry, whether or not it is one of its choices.
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
