#include "shell/dialogs.h"

#include "platform/message.h"
#include "platform/text.h"
#include "shell/globals.h"
#include "ui/widgets.h"

#include <string>

namespace {

constexpr const char* dialog_title = "Kestrelle";
constexpr const char* initial_error_text = "\nWarning dialogs are enabled.\n";
constexpr const char* reconnect_text = "\nPlease close this dialog when you're ready to connect.\n";

// The error dialog's text; the dialog itself is made when it is first shown.
std::string error_text;

// The error and reconnect dialogs: modal, no parent, one close button; any response
// hides them, for they live for the whole run once made.
GtkWidget* make_shared_dialog(GtkWidget** label, const char* text)
{
    GtkWidget* dialog = gtk_dialog_new_with_buttons(dialog_title, nullptr, GTK_DIALOG_MODAL,
                                                    GTK_STOCK_CLOSE, GTK_RESPONSE_CLOSE, nullptr);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_window_set_icon(GTK_WINDOW(dialog), program_icon());
    *label = gtk_label_new(text);
    gtk_label_set_justify(GTK_LABEL(*label), GTK_JUSTIFY_CENTER);
    gtk_label_set_line_wrap(GTK_LABEL(*label), TRUE);
    gtk_box_pack_start(GTK_BOX(GTK_DIALOG(dialog)->vbox), *label, TRUE, TRUE, 0);
    g_signal_connect(*label, "destroy", G_CALLBACK(gtk_widget_destroyed), label);
    g_signal_connect(dialog, "response", G_CALLBACK(gtk_widget_hide), nullptr);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
    return dialog;
}

// Both dialogs are made on first use: most runs never show them, and making them is a
// noticeable part of start-up.
void run_shared_dialog(GtkWidget** dialog, GtkWidget** label, const char* text)
{
    if (!*dialog) {
        *dialog = make_shared_dialog(label, text);
        g_signal_connect(*dialog, "destroy", G_CALLBACK(gtk_widget_destroyed), dialog);
    }
    gtk_widget_show_all(*dialog);
    gtk_dialog_run(GTK_DIALOG(*dialog));
    if (*dialog)
        gtk_widget_hide(*dialog);
}

void set_error_label(const std::string& text)
{
    error_text = text;
    if (error_label)
        gtk_label_set_text(GTK_LABEL(error_label), shown_text(text).c_str());
}

void run_error_dialog_window() { run_shared_dialog(&error_dialog, &error_label, shown_text(error_text).c_str()); }

void run_reconnect_window() { run_shared_dialog(&reconnect_dialog, &reconnect_label, reconnect_text); }

}  // namespace

void install_shared_dialogs()
{
    error_text = initial_error_text;
    set_message_handlers({set_error_label, run_error_dialog_window, run_reconnect_window});
}
