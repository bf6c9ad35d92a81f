#pragma once
// Helpers of the GUI tests: real windows under Xvfb, driven through GTK.
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// Lets the toolkit handle everything pending (drawing, mapping, signals).
void pump_events(int milliseconds = 50);

// Every button below container, in packing order, by its label.
std::vector<std::string> button_labels(GtkWidget* container);
GtkWidget* find_button(GtkWidget* container, const std::string& label);
// The first widget of the given type below container, or null.
GtkWidget* find_widget(GtkWidget* container, GType type);
// A visible top-level window with this title, or null.
GtkWidget* find_window(const std::string& title);

// Answers the next modal dialog that runs: records the text of its labels and closes it
// with the given response. The recorded text goes to *text.
void answer_next_dialog(std::string* text, int response = GTK_RESPONSE_CLOSE);

// Saves a PNG of the window under the build's screenshots folder.
void save_screenshot(GtkWidget* window, const std::string& name);

// Waits until condition holds, pumping events; false after the time-out.
bool wait_for(const std::function<bool()>& condition, int timeout_ms = 5000);
