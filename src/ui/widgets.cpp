#include "ui/widgets.h"

namespace {

constexpr int row_spacing = 10;
constexpr int page_spacing = 6;

// Choices are found by their text in the combo's own list.
int choice_index(GtkWidget* combo, const std::string& text)
{
    GtkTreeModel* model = gtk_combo_box_get_model(GTK_COMBO_BOX(combo));
    GtkTreeIter iter;
    int index = 0;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter), ++index) {
        gchar* choice = nullptr;
        gtk_tree_model_get(model, &iter, 0, &choice, -1);
        const bool same = choice && text == choice;
        g_free(choice);
        if (same)
            return index;
    }
    return -1;
}

GtkEntry* combo_entry(GtkWidget* combo) { return GTK_ENTRY(gtk_bin_get_child(GTK_BIN(combo))); }

}  // namespace

GtkWidget* program_window(const char* title)
{
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), title);
    gtk_window_set_position(GTK_WINDOW(window), GTK_WIN_POS_CENTER);
    gtk_window_set_icon(GTK_WINDOW(window), program_icon());
    return window;
}

GtkWidget* vertical_scroller(GtkWidget* child)
{
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), child);
    return scrolled;
}

// The list asks its model for a row by its path, and a tree store finds a row by
// counting its siblings, so expanding every row at once (gtk_tree_view_expand_all) costs
// the square of the rows. Connection trees are two levels deep: each top row is
// expanded on its own, and a row already expanded is passed over before its model row
// is looked up.
void expand_every_group(GtkTreeView* view)
{
    GtkTreeModel* model = gtk_tree_view_get_model(view);
    if (!model)
        return;
    const int groups = gtk_tree_model_iter_n_children(model, nullptr);
    GtkTreePath* path = gtk_tree_path_new_first();
    for (int i = 0; i < groups; ++i, gtk_tree_path_next(path))
        gtk_tree_view_expand_row(view, path, FALSE);
    gtk_tree_path_free(path);
}

void hide_while_open(GtkWidget* window, GtkWidget* other)
{
    if (!other)
        return;
    // Tied to other's life too: a window that went first is not shown again.
    g_signal_connect_object(window, "destroy", G_CALLBACK(gtk_widget_show), other, G_CONNECT_SWAPPED);
    gtk_widget_hide(other);
}

GtkWidget* fixed_choice_combo(const std::vector<std::string>& choices, const std::string& initial)
{
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    for (const std::string& choice : choices)
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), choice.c_str());
    gtk_editable_set_editable(GTK_EDITABLE(combo_entry(combo)), FALSE);
    const int index = choice_index(combo, initial);
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), index >= 0 ? index : 0);
    return combo;
}

std::string combo_text(GtkWidget* combo)
{
    const gchar* text = gtk_entry_get_text(combo_entry(combo));
    return text ? text : "";
}

void set_combo_text(GtkWidget* combo, const std::string& text)
{
    const int index = choice_index(combo, text);
    if (index >= 0)
        gtk_combo_box_set_active(GTK_COMBO_BOX(combo), index);
    else
        gtk_entry_set_text(combo_entry(combo), text.c_str());
}

GtkWidget* wrapped_note(const char* text)
{
    GtkWidget* label = gtk_label_new(text);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0.0, 0.5);
    return label;
}

GtkWidget* notebook_page(GtkWidget* notebook, const char* title, int border)
{
    GtkWidget* page = gtk_vbox_new(FALSE, page_spacing);
    gtk_container_set_border_width(GTK_CONTAINER(page), border);
    gtk_notebook_append_page(GTK_NOTEBOOK(notebook), page, gtk_label_new(title));
    return page;
}

GtkWidget* labelled_button(const char* label, GCallback handler, gpointer data)
{
    GtkWidget* button = gtk_button_new_with_mnemonic(label);
    if (handler)
        g_signal_connect(button, "clicked", handler, data);
    return button;
}

GtkWidget* default_cancel_row(GtkWidget* window, const char* first_label, GCallback first,
                              GCallback cancel, gpointer data)
{
    GtkWidget* row = gtk_hbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(row), GTK_BUTTONBOX_END);
    gtk_box_set_spacing(GTK_BOX(row), row_spacing);
    GtkWidget* first_button = labelled_button(first_label, first, data);
    gtk_box_pack_start(GTK_BOX(row), first_button, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(row), labelled_button("_Cancel", cancel, data), FALSE, FALSE, 0);
    gtk_widget_set_can_default(first_button, TRUE);
    gtk_window_set_default(GTK_WINDOW(window), first_button);
    return row;
}

GtkWidget* save_cancel_row(GtkWidget* window, GCallback save, GCallback cancel, gpointer data)
{
    return default_cancel_row(window, "_Save", save, cancel, data);
}

bool ask_yes_no(GtkWindow* parent, const std::string& question)
{
    GtkWidget* box = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION,
                                            GTK_BUTTONS_YES_NO, "%s", question.c_str());
    gtk_window_set_position(GTK_WINDOW(box), GTK_WIN_POS_CENTER);
    gtk_window_set_icon(GTK_WINDOW(box), program_icon());
    const bool yes = gtk_dialog_run(GTK_DIALOG(box)) == GTK_RESPONSE_YES;
    gtk_widget_destroy(box);
    return yes;
}
