#include "gui/gui_support.h"

#include "support/test_support.h"

#include <chrono>
#include <sys/stat.h>
#include <thread>

namespace {

// The first widget at or below widget that match accepts. Buttons are not entered, so
// their captions stay out of a dialog's text.
GtkWidget* find_below(GtkWidget* widget, const std::function<bool(GtkWidget*)>& match)
{
    if (match(widget))
        return widget;
    if (!GTK_IS_CONTAINER(widget) || GTK_IS_BUTTON(widget))
        return nullptr;
    GtkWidget* found = nullptr;
    GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
    for (GList* child = children; child && !found; child = child->next)
        found = find_below(GTK_WIDGET(child->data), match);
    g_list_free(children);
    return found;
}

const char* button_label(GtkWidget* widget)
{
    return GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : nullptr;
}

GtkWidget* find_toplevel(const std::function<bool(GtkWidget*)>& match)
{
    GList* windows = gtk_window_list_toplevels();
    GtkWidget* found = nullptr;
    for (GList* item = windows; item && !found; item = item->next)
        if (gtk_widget_get_visible(GTK_WIDGET(item->data)) && match(GTK_WIDGET(item->data)))
            found = GTK_WIDGET(item->data);
    g_list_free(windows);
    return found;
}

}  // namespace

bool wait_for(const std::function<bool()>& condition, int timeout_ms)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    while (!condition() && std::chrono::steady_clock::now() < end) {
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return condition();
}

void pump_events(int milliseconds)
{
    wait_for([] { return false; }, milliseconds);
}

std::vector<std::string> button_labels(GtkWidget* container)
{
    std::vector<std::string> labels;
    find_below(container, [&](GtkWidget* w) {
        if (button_label(w))
            labels.push_back(button_label(w));
        return false;
    });
    return labels;
}

std::string label_text(GtkWidget* container)
{
    std::string text;
    find_below(container, [&](GtkWidget* w) {
        if (GTK_IS_LABEL(w))
            text += gtk_label_get_text(GTK_LABEL(w));
        return false;
    });
    return text;
}

GtkWidget* find_button(GtkWidget* container, const std::string& label)
{
    return find_below(container, [&](GtkWidget* w) { return button_label(w) && label == button_label(w); });
}

GtkWidget* find_widget(GtkWidget* container, GType type)
{
    return find_below(container, [&](GtkWidget* w) { return G_TYPE_CHECK_INSTANCE_TYPE(w, type); });
}

GtkWidget* find_named_widget(GtkWidget* container, const char* name)
{
    return find_below(container, [&](GtkWidget* w) { return g_strcmp0(gtk_widget_get_name(w), name) == 0; });
}

GtkWidget* find_window(const std::string& title)
{
    return find_toplevel([&](GtkWidget* w) {
        const char* window_title = gtk_window_get_title(GTK_WINDOW(w));
        return window_title && title == window_title;
    });
}

void answer_next_dialog(std::string* text, int response)
{
    using answer = std::pair<std::string*, int>;
    g_timeout_add(50, [](gpointer data) -> gboolean {
        GtkWidget* dialog = find_toplevel([](GtkWidget* w) { return GTK_IS_DIALOG(w) && gtk_window_get_modal(GTK_WINDOW(w)); });
        if (!dialog)
            return TRUE;  // not up yet: look again
        auto* pending = static_cast<answer*>(data);
        *pending->first = label_text(dialog);
        gtk_dialog_response(GTK_DIALOG(dialog), pending->second);
        delete pending;
        return FALSE;
    }, new answer(text, response));
}

void save_screenshot(GtkWidget* window, const std::string& name)
{
    pump_events(300);
    GdkWindow* drawable = gtk_widget_get_window(window);
    int width = 0, height = 0;
    gdk_drawable_get_size(drawable, &width, &height);
    GdkPixbuf* shot = gdk_pixbuf_get_from_drawable(nullptr, drawable, nullptr, 0, 0, 0, 0, width, height);
    if (!shot)
        return;
    mkdir(KEST_SCREENSHOT_DIR, 0755);
    gdk_pixbuf_save(shot, (std::string(KEST_SCREENSHOT_DIR) + "/" + name + ".png").c_str(), "png", nullptr, nullptr);
    g_object_unref(shot);
}

void add_program(const std::string& file, const std::string& body)
{
    make_dirs(file.substr(0, file.rfind('/')));
    write_file(file, "#!/bin/sh\n" + body + "\n");
    chmod(file.c_str(), 0755);
}
