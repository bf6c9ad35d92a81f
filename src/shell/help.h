#pragma once
// The help window: product name, version and the help file's text.
#include <gtk/gtk.h>

// Hides parent while it is open.
void help_dialog(GtkWidget* button, gpointer parent);
