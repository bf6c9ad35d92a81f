#pragma once
// "Ping First" of the Advanced window, and the "Ping Options" window it opens.
#include <gtk/gtk.h>

#include <string>

// The "Ping First" column's "toggled" handler: flips the ping flag, saves, and when it
// turned on opens "Ping Options" (advanced_window is hidden meanwhile).
void smart_ping_dialog(GtkCellRendererToggle* renderer, gchar* path_text, gpointer advanced_window);
// Flips the ping flag of the row and saves; no window.
void smart_ping_cb(GtkCellRendererToggle* renderer, gchar* path_text, gpointer model);

// The port a type's "Smart Ping" opens by default: 1494 ICA, 3389 RDP, 80 Web, else 0.
std::string default_ping_port(const std::string& type);
