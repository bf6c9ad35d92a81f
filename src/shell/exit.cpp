#include "shell/exit.h"

#include "platform/log.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "store/models.h"
#include "ui/widgets.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* active_warning = "\nPlease close all active connections before exiting.";
constexpr const char* quit_choice = "Quit current session";
constexpr const char* turnoff_choice = "Turn off computer";
constexpr const char* reboot_choice = "Reboot the computer";
constexpr const char* choice_key = "kestrelle-choice";
constexpr int window_border = 10;
constexpr int retry_ms = 250;

// SIGKILL cannot be caught; the request is made anyway and fails silently.
constexpr std::array caught_signals = {SIGTERM, SIGHUP, SIGQUIT, SIGINT, SIGKILL};

// The signal handler only notes the signal and wakes the main loop through this pipe;
// terminate then runs in the main loop, where the toolkit may be used.
int signal_pipe[2] = {-1, -1};
volatile sig_atomic_t pending_signal[NSIG];
// A retry is scheduled while a modal dialog holds the main loop.
bool retry_scheduled = false;
// At most one warning box at a time, whatever asks for it.
bool warning_open = false;

void note_signal(int signal_number)
{
    int saved_errno = errno;
    pending_signal[signal_number] = 1;
    char byte = static_cast<char>(signal_number);
    (void)!write(signal_pipe[1], &byte, 1);
    errno = saved_errno;
}

gboolean refuse_close(GtkWidget*, GdkEvent*, gpointer) { return TRUE; }

// The warning while sessions run: only its Close button ends it.
void warn_active_sessions(GtkWindow* parent)
{
    if (warning_open)
        return;
    warning_open = true;
    GtkWidget* box = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, GTK_MESSAGE_WARNING,
                                            GTK_BUTTONS_CLOSE, "%s", active_warning);
    gtk_window_set_position(GTK_WINDOW(box), GTK_WIN_POS_CENTER);
    g_signal_connect(box, "delete-event", G_CALLBACK(refuse_close), nullptr);
    while (gtk_dialog_run(GTK_DIALOG(box)) == GTK_RESPONSE_DELETE_EVENT) {
    }
    gtk_widget_destroy(box);
    warning_open = false;
}

// Signals are answered from the main loop itself; while a modal dialog runs its own
// loop (or start-up has not reached the main loop yet) they wait, so that leaving
// never pulls state from under a dialog that is still open.
bool main_loop_is_idle() { return gtk_main_level() == 1 && g_main_depth() <= 1; }

gboolean run_pending_signals(gpointer)
{
    if (!main_loop_is_idle()) {
        if (!retry_scheduled) {
            retry_scheduled = true;
            g_timeout_add(retry_ms, [](gpointer) -> gboolean {
                retry_scheduled = false;
                run_pending_signals(nullptr);
                return FALSE;
            }, nullptr);
        }
        return TRUE;
    }
    for (int signal_number : caught_signals)
        if (pending_signal[signal_number]) {
            pending_signal[signal_number] = 0;
            terminate(signal_number);
        }
    return TRUE;
}

gboolean drain_signal_pipe(GIOChannel*, GIOCondition, gpointer)
{
    char bytes[64];
    while (read(signal_pipe[0], bytes, sizeof bytes) > 0) {
    }
    return run_pending_signals(nullptr);
}

void choose_cb(GtkWidget* button, gpointer window)
{
    GtkWidget* choice = GTK_WIDGET(g_object_get_data(G_OBJECT(window), choice_key));
    const std::string text = combo_text(choice);
    shutdown_dialog_cb(button, text.c_str());
    gtk_widget_destroy(GTK_WIDGET(window));
}

void cancel_cb(GtkWidget*, gpointer window) { gtk_widget_destroy(GTK_WIDGET(window)); }

GtkWidget* make_choice()
{
    std::vector<std::string> choices{quit_choice};
    if (allow_turnoff)
        choices.emplace_back(turnoff_choice);
    if (allow_reboot)
        choices.emplace_back(reboot_choice);
    GtkWidget* choice = fixed_choice_combo(choices, quit_choice);
    gtk_entry_set_activates_default(GTK_ENTRY(gtk_bin_get_child(GTK_BIN(choice))), TRUE);
    return choice;
}

GtkWidget* make_end_session_buttons(GtkWidget* window)
{
    return default_cancel_row(window, "_Ok", G_CALLBACK(choose_cb), G_CALLBACK(cancel_cb), window);
}

void open_end_session(GtkWidget* parent)
{
    GtkWidget* window = program_window("End Session");
    gtk_container_set_border_width(GTK_CONTAINER(window), window_border);
    if (parent)
        gtk_window_set_transient_for(GTK_WINDOW(window), GTK_WINDOW(parent));
    GtkWidget* column = gtk_vbox_new(FALSE, window_border);
    gtk_container_add(GTK_CONTAINER(window), column);
    gtk_box_pack_start(GTK_BOX(column), gtk_label_new("What do you want to do next?"), FALSE, FALSE, 0);
    GtkWidget* choice = make_choice();
    g_object_set_data(G_OBJECT(window), choice_key, choice);
    gtk_box_pack_start(GTK_BOX(column), choice, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), make_end_session_buttons(window), FALSE, FALSE, 0);
    hide_while_open(window, parent);
    gtk_widget_show_all(window);
}

void clean_up_and_quit()
{
    int status = run_shell_command("rm -rf " + shell_quote(tmp_dir));
    log_printf("Cleaning %s and exiting with status %d.\n", tmp_dir.c_str(), status);
    log_close();
    g_free(misc_widgets);
    misc_widgets = nullptr;
    if (gtk_main_level() > 0)
        gtk_main_quit();
}

}  // namespace

gboolean exit_program()
{
    if (current_user_sessions_active())
        warn_active_sessions(root_window ? GTK_WINDOW(root_window) : nullptr);
    else
        clean_up_and_quit();
    return FALSE;
}

void shutdown_dialog(GtkWidget*, gpointer parent)
{
    if (current_user_sessions_active())
        warn_active_sessions(nullptr);
    else
        open_end_session(parent ? GTK_WIDGET(parent) : root_window);
}

void shutdown_dialog_cb(GtkWidget*, const char* choice_text)
{
    std::string choice = choice_text;
    // The machine's own shutdown ends this program; their results are of no use here.
    if (choice == quit_choice)
        exit_program();
    else if (choice == reboot_choice)
        run_shell_command("reboot");
    else if (choice == turnoff_choice)
        run_shell_command("poweroff");
}

void terminate(int signal_number)
{
    log_printf("Caught signal %d.\n", signal_number);
    exit_program();
}

void install_signal_handlers()
{
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    struct sigaction action {};
    action.sa_handler = note_signal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;
    for (int signal_number : caught_signals)
        sigaction(signal_number, &action, nullptr);
}

void watch_signals()
{
    if (signal_pipe[0] < 0)
        return;
    GIOChannel* channel = g_io_channel_unix_new(signal_pipe[0]);
    g_io_add_watch(channel, G_IO_IN, drain_signal_pipe, nullptr);
    g_io_channel_unref(channel);
}
