#include "ui/widgets.h"

#include "platform/text.h"

#include <set>
#include <unordered_map>

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

// What an entry remembers of the file's bytes behind its text.
struct held_text {
    std::string loaded;                                        // the bytes last set
    std::string shown;                                         // and how they were shown
    std::unordered_map<std::string, std::string> raw_of_shown; // choices that are not UTF-8
};

constexpr const char* held_key = "kestrelle-held-text";

held_text& held(GtkWidget* entry)
{
    auto* h = static_cast<held_text*>(g_object_get_data(G_OBJECT(entry), held_key));
    if (!h) {
        h = new held_text;
        g_object_set_data_full(G_OBJECT(entry), held_key, h,
                               [](gpointer p) { delete static_cast<held_text*>(p); });
    }
    return *h;
}

// The choice as a combo shows it; one that shows otherwise than a file holds it is
// remembered, so that choosing it reads back its bytes.
std::string shown_choice(GtkWidget* combo, const std::string& choice)
{
    std::string shown = shown_text(choice);
    if (shown != choice)
        held(GTK_WIDGET(combo_entry(combo))).raw_of_shown.emplace(shown, choice);
    return shown;
}

void shown_cell_cb(GtkTreeViewColumn*, GtkCellRenderer* renderer, GtkTreeModel* model,
                   GtkTreeIter* iter, gpointer column)
{
    gchar* text = nullptr;
    gtk_tree_model_get(model, iter, GPOINTER_TO_INT(column), &text, -1);
    if (text && !g_utf8_validate(text, -1, nullptr))
        g_object_set(renderer, "text", shown_text(text).c_str(), nullptr);
    else
        g_object_set(renderer, "text", text, nullptr);
    g_free(text);
}

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

void set_entry_bytes(GtkWidget* entry, const std::string& bytes)
{
    held_text& h = held(entry);
    h.loaded = bytes;
    gtk_entry_set_text(GTK_ENTRY(entry), shown_text(bytes).c_str());
    // As the entry holds it: a text longer than the entry takes is cut, and left
    // untouched it still saves whole.
    h.shown = gtk_entry_get_text(GTK_ENTRY(entry));
}

std::string entry_bytes(GtkWidget* entry)
{
    const std::string text = gtk_entry_get_text(GTK_ENTRY(entry));
    const auto* h = static_cast<const held_text*>(g_object_get_data(G_OBJECT(entry), held_key));
    if (!h)
        return text;
    if (text == h->shown)
        return h->loaded;
    const auto choice = h->raw_of_shown.find(text);
    return choice != h->raw_of_shown.end() ? choice->second : text;
}

void append_choices(GtkWidget* combo, const std::vector<std::string>& choices)
{
    for (const std::string& choice : choices)
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), shown_choice(combo, choice).c_str());
}

void show_model_text(GtkTreeViewColumn* view_column, GtkCellRenderer* renderer, int column)
{
    gtk_tree_view_column_set_cell_data_func(view_column, renderer, shown_cell_cb,
                                            GINT_TO_POINTER(column), nullptr);
}

GtkTreeViewColumn* text_view_column(const char* title, int column)
{
    GtkCellRenderer* renderer = gtk_cell_renderer_text_new();
    GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(title, renderer, nullptr);
    show_model_text(view_column, renderer, column);
    return view_column;
}

GtkWidget* long_choice_combo(const char* name)
{
    // A drop-down menu makes an item for every choice, which takes seconds for a long
    // list; a list view only draws the rows in sight. That is a resource setting, which
    // GTK keeps for the whole run: it is given once per name.
    static std::set<std::string> styled;
    if (styled.insert(name).second) {
        const std::string style = std::string("style \"kestrelle-long-list\" { GtkComboBox::appears-as-list = 1 }\n"
                                              "widget \"*.") + name + "\" style \"kestrelle-long-list\"\n";
        gtk_rc_parse_string(style.c_str());
    }
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    gtk_widget_set_name(combo, name);
    GtkEntryCompletion* completion = gtk_entry_completion_new();
    gtk_entry_completion_set_text_column(completion, 0);
    gtk_entry_completion_set_popup_single_match(completion, FALSE);
    gtk_entry_set_completion(combo_entry(combo), completion);
    g_object_unref(completion);
    return combo;
}

void replace_choices(GtkWidget* combo, const std::vector<std::string>& choices)
{
    // Built apart and attached once: a list in view is redrawn for every row added.
    GtkEntry* entry = combo_entry(combo);
    const std::string typed = combo_text(combo);
    held(GTK_WIDGET(entry)).raw_of_shown.clear();
    GtkListStore* store = gtk_list_store_new(1, G_TYPE_STRING);
    for (const std::string& choice : choices)
        gtk_list_store_insert_with_values(store, nullptr, -1, 0, shown_choice(combo, choice).c_str(), -1);
    gtk_combo_box_set_model(GTK_COMBO_BOX(combo), GTK_TREE_MODEL(store));
    gtk_entry_completion_set_model(gtk_entry_get_completion(entry), GTK_TREE_MODEL(store));
    g_object_unref(store);
    set_entry_bytes(GTK_WIDGET(entry), typed);
}

GtkWidget* fixed_choice_combo(const std::vector<std::string>& choices, const std::string& initial)
{
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    append_choices(combo, choices);
    gtk_editable_set_editable(GTK_EDITABLE(combo_entry(combo)), FALSE);
    const int index = choice_index(combo, shown_text(initial));
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), index >= 0 ? index : 0);
    return combo;
}

std::string combo_text(GtkWidget* combo) { return entry_bytes(GTK_WIDGET(combo_entry(combo))); }

void set_combo_text(GtkWidget* combo, const std::string& text)
{
    GtkWidget* entry = GTK_WIDGET(combo_entry(combo));
    const int index = choice_index(combo, shown_text(text));
    set_entry_bytes(entry, text);
    if (index >= 0)
        gtk_combo_box_set_active(GTK_COMBO_BOX(combo), index);
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
                                            GTK_BUTTONS_YES_NO, "%s", shown_text(question).c_str());
    gtk_window_set_position(GTK_WINDOW(box), GTK_WIN_POS_CENTER);
    gtk_window_set_icon(GTK_WINDOW(box), program_icon());
    const bool yes = gtk_dialog_run(GTK_DIALOG(box)) == GTK_RESPONSE_YES;
    gtk_widget_destroy(box);
    return yes;
}
