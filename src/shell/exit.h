#pragma once
// The ways out: Exit, the "End Session" dialog, closing the main window, signals.
#include <gtk/gtk.h>

// Leaves the main loop after removing tmp_dir, unless a session is active; then it
// warns and the program keeps running. Returns FALSE (also as a delete handler).
gboolean exit_program();
// "Sh_utdown": the "End Session" dialog, or the warning while sessions run.
void shutdown_dialog(GtkWidget* button, gpointer parent);
// Carries out the choice made in "End Session".
void shutdown_dialog_cb(GtkWidget* button, const char* choice_text);
// Logs the signal and runs the exit procedure.
void terminate(int signal_number);

// Catches SIGTERM, SIGHUP, SIGQUIT and SIGINT; the handler only notes the signal.
void install_signal_handlers();
// After gtk_init: lets the main loop run terminate for every noted signal.
void watch_signals();
