#pragma once
// The RDP editor: its widgets, its binding table and its handlers, and the printer
// window it opens.
#include "editors/editor_save.h"

// The RDP editor's widgets, by index into editor::widgets.
enum rd_widget : int {
    RD_COMPUTER,
    RD_USERNAME,
    RD_PASSWORD,
    RD_DOMAIN,
    RD_CLIENT_HOST,
    RD_SIZE,
    RD_COLOURS,
    RD_SOUND,
    RD_KEYBOARD,
    RD_DISK_ON,
    RD_DISK,
    RD_PRINTERS_ON,
    RD_PRINTERS,
    RD_LPT_ON,
    RD_LPT,
    RD_COM_ON,
    RD_COM,
    RD_PROGRAM_ON,
    RD_PROGRAM,
    RD_FOLDER,
    RD_EXPERIENCE,
    RD_BACKGROUND,
    RD_DRAGGING,
    RD_ANIMATION,
    RD_THEMES,
    RD_BITMAP_CACHING,
    RD_PERSISTENT_CACHING,
    RD_COMPRESSION,
    RD_BACKING_STORE,
    RD_EXTRA_ON,
    RD_EXTRA,
    RD_WIDGETS
};

extern const editor_kind rdp_kind;

// "_Save".
void rd_ok_button_cb(GtkWidget* button, editor* e);
// Every bit-owning box: keeps its bit of connect_info.flags.
void rd_toggle_buttons_cb(GtkToggleButton* box, gpointer bit);
// The four experience boxes: the preset shown follows their bits.
void rd_toggle_experience_buttons_cb(GtkToggleButton* box, editor* e);
// The preset's entry: a chosen preset sets the four experience boxes.
void rd_select_experience_cb(GtkEntry* entry, editor* e);

// The "Printers" box turned on: the printer window.
void rd_printcap_dialog(GtkToggleButton* box, editor* e);
void rd_printcap_enable_cb(GtkCellRendererToggle* renderer, gchar* path, GtkListStore* table);
void rd_printcap_editable_cb(GtkCellRendererText* renderer, gchar* path, gchar* text,
                             GtkListStore* table);
// Adds the row to the selection (a std::vector<printer_row>) when it is ticked.
gboolean rd_printcap_foreach(GtkTreeModel* table, GtkTreePath* path, GtkTreeIter* iter,
                             gpointer selection);
void rd_printcap_ok_button_cb(GtkWidget* button, editor* e);
void rd_printcap_cancel_button_cb(GtkWidget* button, editor* e);
