#pragma once
// The shared error dialog and the reconnect prompt, behind a seam. The shell installs
// handlers that set the dialog's label and run the dialogs modally; tests install
// handlers that record the text and count the prompts.
// Until a handler is installed, messages go to standard error and the log.
#include <string>

struct message_handlers {
    void (*set_text)(const std::string& text);  // set the error label only
    void (*run)();                              // show the dialog and wait until it is closed
    void (*prompt)() = nullptr;                 // the reconnect prompt; null: none is shown
};

void set_message_handlers(message_handlers handlers);
// Sets the error label's text without showing the dialog.
void set_error_text(const std::string& text);
// Shows the dialog with whatever text the label holds, and waits until it is closed.
void run_error_dialog();
// The usual way to report: set the text, show the dialog, wait.
void show_error(const std::string& text);
// Shows the prompt before an automatic or persistent start and waits until it is closed.
void run_reconnect_dialog();
