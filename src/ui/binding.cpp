#include "ui/binding.h"

#include "platform/text.h"
#include "store/password.h"
#include "ui/widgets.h"

#include <cstdio>

namespace {

// Fields keep the bytes they were loaded from while unchanged (set_entry_bytes).
std::string entry_text(GtkWidget* entry) { return entry_bytes(entry); }

void set_entry_text(GtkWidget* entry, const std::string& text) { set_entry_bytes(entry, text); }

// The member of radio's group whose label is label (null when none is).
GtkWidget* radio_with_label(GtkWidget* radio, const std::string& label)
{
    for (GSList* m = gtk_radio_button_get_group(GTK_RADIO_BUTTON(radio)); m; m = m->next)
        if (shown_text(label) == gtk_button_get_label(GTK_BUTTON(m->data)))
            return GTK_WIDGET(m->data);
    return nullptr;
}

std::string active_radio_label(GtkWidget* radio)
{
    for (GSList* m = gtk_radio_button_get_group(GTK_RADIO_BUTTON(radio)); m; m = m->next)
        if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(m->data)))
            return gtk_button_get_label(GTK_BUTTON(m->data));
    return "";
}

}  // namespace

void fill_widgets(std::span<const column_binding> table, GtkWidget* const* widgets,
                  const connection_record& record, unsigned long flags)
{
    for (const column_binding& b : table) {
        GtkWidget* widget = widgets[b.widget];
        switch (b.kind) {
        case bind::text:
        case bind::text_if_bit:
            set_entry_text(widget, record[b.column]);
            break;
        case bind::combo_text:
            set_combo_text(widget, record[b.column]);
            break;
        case bind::password:
            set_entry_text(widget, unpad_password(record[b.column], record[MC_NAME]));
            break;
        case bind::check_bit:
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widget), (flags & b.bit) != 0);
            break;
        case bind::radio_label:
            if (GtkWidget* radio = radio_with_label(widget, record[b.column]))
                gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(radio), TRUE);
            break;
        }
    }
}

void read_widgets(std::span<const column_binding> table, GtkWidget* const* widgets,
                  connection_record& record, unsigned long flags)
{
    for (const column_binding& b : table) {
        GtkWidget* widget = widgets[b.widget];
        switch (b.kind) {
        case bind::text:
            record[b.column] = entry_text(widget);
            break;
        case bind::text_if_bit:
            record[b.column] = (flags & b.bit) ? entry_text(widget) : "";
            break;
        case bind::combo_text:
            record[b.column] = combo_text(widget);
            break;
        case bind::password:
            record[b.column] = pad_password(entry_text(widget), record[MC_NAME]);
            break;
        case bind::check_bit:
            break;  // the bits are kept by the boxes' handlers
        case bind::radio_label:
            record[b.column] = active_radio_label(widget);
            break;
        }
    }
}

std::string five_digits(unsigned long flags)
{
    char text[24];
    std::snprintf(text, sizeof text, "%05lu", flags);
    return text;
}
