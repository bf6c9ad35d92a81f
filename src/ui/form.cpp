#include "ui/form.h"

#include "ui/widgets.h"

namespace {

constexpr int cell_padding = 4;

void attach_label(GtkWidget* table, int row, const char* label)
{
    GtkWidget* text = gtk_label_new_with_mnemonic(label);
    gtk_misc_set_alignment(GTK_MISC(text), 0.0, 0.5);
    gtk_table_attach(GTK_TABLE(table), text, 0, 1, row, row + 1, GTK_FILL, GTK_FILL, cell_padding,
                     cell_padding);
}

void attach_control(GtkWidget* table, int row, GtkWidget* control)
{
    gtk_table_attach(GTK_TABLE(table), control, 1, 2, row, row + 1,
                     static_cast<GtkAttachOptions>(GTK_EXPAND | GTK_FILL), GTK_FILL, cell_padding,
                     cell_padding);
}

// Labels name their control for screen readers.
GtkWidget* labelled_row(GtkWidget* table, int row, const char* label, GtkWidget* control)
{
    attach_label(table, row, label);
    attach_control(table, row, control);
    return control;
}

}  // namespace

GtkWidget* limited_entry(int max)
{
    GtkWidget* entry = gtk_entry_new();
    gtk_entry_set_max_length(GTK_ENTRY(entry), max);
    return entry;
}

GtkWidget* name_widget(GtkWidget* widget, const char* name)
{
    gtk_widget_set_name(widget, name);
    return widget;
}

GtkWidget* form_table()
{
    GtkWidget* table = gtk_table_new(1, 2, FALSE);
    return table;
}

GtkWidget* form_entry(GtkWidget* table, int row, const char* label, const char* name, int max)
{
    return labelled_row(table, row, label, name_widget(limited_entry(max), name));
}

GtkWidget* form_fixed_combo(GtkWidget* table, int row, const char* label, const char* name,
                            const std::vector<std::string>& choices, const std::string& initial)
{
    return labelled_row(table, row, label, name_widget(fixed_choice_combo(choices, initial), name));
}

GtkWidget* form_editable_combo(GtkWidget* table, int row, const char* label, const char* name,
                               const std::vector<std::string>& choices)
{
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    append_choices(combo, choices);
    if (!choices.empty())
        gtk_combo_box_set_active(GTK_COMBO_BOX(combo), 0);
    return labelled_row(table, row, label, name_widget(combo, name));
}

GtkWidget* form_check_entry(GtkWidget* table, int row, const char* label, const char* name,
                            GtkWidget** entry, const char* entry_name, const char* initial)
{
    GtkWidget* box = name_widget(gtk_check_button_new_with_mnemonic(label), name);
    *entry = name_widget(limited_entry(entry_limit), entry_name);
    gtk_entry_set_text(GTK_ENTRY(*entry), initial);
    gtk_widget_set_sensitive(*entry, FALSE);
    g_signal_connect(box, "toggled", G_CALLBACK(toggle_editable_cb), *entry);
    gtk_table_attach(GTK_TABLE(table), box, 0, 1, row, row + 1, GTK_FILL, GTK_FILL, cell_padding,
                     cell_padding);
    attach_control(table, row, *entry);
    return box;
}

GtkWidget* form_check(GtkWidget* table, int row, const char* label, const char* name)
{
    GtkWidget* box = name_widget(gtk_check_button_new_with_mnemonic(label), name);
    gtk_table_attach(GTK_TABLE(table), box, 0, 2, row, row + 1, GTK_FILL, GTK_FILL, cell_padding,
                     cell_padding);
    return box;
}

GtkWidget* framed(const char* title, GtkWidget* child)
{
    GtkWidget* frame = gtk_frame_new(title);
    gtk_container_set_border_width(GTK_CONTAINER(child), cell_padding);
    gtk_container_add(GTK_CONTAINER(frame), child);
    return frame;
}

void toggle_editable_cb(GtkToggleButton* box, GtkWidget* other)
{
    gtk_widget_set_sensitive(other, gtk_toggle_button_get_active(box));
}

void toggle_not_editable_cb(GtkToggleButton* box, GtkWidget* other)
{
    gtk_widget_set_sensitive(other, !gtk_toggle_button_get_active(box));
}

void toggle_active_cb(GtkToggleButton* box, GtkWidget* other)
{
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(other), gtk_toggle_button_get_active(box));
}

void toggle_inactive_cb(GtkToggleButton* box, GtkWidget* other)
{
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(other), !gtk_toggle_button_get_active(box));
}
