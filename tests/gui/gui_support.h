#pragma once
// Helpers of the GUI tests: real windows under Xvfb, driven through GTK.
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// Lets the toolkit handle everything pending (drawing, mapping, signals).
void pump_events(int milliseconds = 50);
// Pumps events until condition holds; false after the time-out.
bool wait_for(const std::function<bool()>& condition, int timeout_ms = 5000);

// Searches below container (not inside buttons), in packing order.
std::vector<std::string> button_labels(GtkWidget* container);
GtkWidget* find_button(GtkWidget* container, const std::string& label);
GtkWidget* find_widget(GtkWidget* container, GType type);
// The widget named name (gtk_widget_set_name) at or below container.
GtkWidget* find_named_widget(GtkWidget* container, const char* name);
std::string label_text(GtkWidget* container);
// A visible top-level window with this title, or null.
GtkWidget* find_window(const std::string& title);

// Closes the next modal dialog with response, after copying its label_text to *text.
void answer_next_dialog(std::string* text, int response = GTK_RESPONSE_CLOSE);

// Saves a PNG of the window under the build's screenshots folder.
void save_screenshot(GtkWidget* window, const std::string& name);

// A shell script at file (its folder made), as a fake of a program the system starts.
void add_program(const std::string& file, const std::string& body);
