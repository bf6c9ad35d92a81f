#pragma once
// The interface settings kept in the master list header and the options file: show the
// user interface, the taskbar, the kiosk browser; each saved as soon as it is changed.
#include <gtk/gtk.h>

// The framed "Show user interface" box with its preview picture.
GtkWidget* interface_settings();

void ui_tb_cb(GtkToggleButton* check_box, gpointer preview);
void taskbar_tb_cb(GtkToggleButton* check_box, gpointer preview);
void kiosk_tb_cb(GtkToggleButton* check_box, gpointer data);
