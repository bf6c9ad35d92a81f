#pragma once
// The Citrix client's global settings window: default server locations, hotkeys, drive
// mapping, COM ports, keyboard layout and audio input, all kept in wfclient.ini.
#include "ica/wfclient.h"

#include <gtk/gtk.h>

// drive_list columns, and com_list columns.
enum drive_col : int { DRIVE_LETTER, DRIVE_PATH, DRIVE_ENABLED, DRIVE_READ, DRIVE_WRITE, DRIVE_COLUMNS };
enum com_col : int { COM_PORT, COM_DEVICE, COM_COLUMNS };

// The defaults, with the keys of wfclient_file applied; the file is made first when it
// is missing (the defaults alone, after the messages, when it cannot be).
global_settings ica_global_initialize();

// Opens the "Settings" window. The Advanced window's "Citrix _Global Settings" button
// calls it; both arguments are unused.
void ica_global_dialog(GtkWidget* caller, gpointer unused);
