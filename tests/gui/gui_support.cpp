#include "gui/gui_support.h"

#include <chrono>
#include <sys/stat.h>
#include <thread>

namespace {

void collect_buttons(GtkWidget* widget, std::vector<GtkWidget*>* buttons)
{
    if (GTK_IS_BUTTON(widget) && gtk_button_get_label(GTK_BUTTON(widget)))
        buttons->push_back(widget);
    if (GTK_IS_CONTAINER(widget)) {
        GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
        for (GList* child = children; child; child = child->next)
            collect_buttons(GTK_WIDGET(child->data), buttons);
        g_list_free(children);
    }
}

std::string label_texts(GtkWidget* widget)
{
    std::string text;
    if (GTK_IS_LABEL(widget))
        text += gtk_label_get_text(GTK_LABEL(widget));
    // The dialog's message, not the captions of its buttons.
    if (GTK_IS_CONTAINER(widget) && !GTK_IS_BUTTON(widget)) {
        GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
        for (GList* child = children; child; child = child->next)
            text += label_texts(GTK_WIDGET(child->data));
        g_list_free(children);
    }
    return text;
}

struct pending_answer {
    std::string* text;
    int response;
};

gboolean answer_cb(gpointer data)
{
    auto* answer = static_cast<pending_answer*>(data);
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item; item = item->next) {
        GtkWidget* window = GTK_WIDGET(item->data);
        if (GTK_IS_DIALOG(window) && gtk_widget_get_visible(window) && gtk_window_get_modal(GTK_WINDOW(window))) {
            if (answer->text)
                *answer->text = label_texts(window);
            gtk_dialog_response(GTK_DIALOG(window), answer->response);
            g_list_free(windows);
            delete answer;
            return FALSE;
        }
    }
    g_list_free(windows);
    return TRUE;  // not up yet: look again
}

}  // namespace

void pump_events(int milliseconds)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    do {
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    } while (std::chrono::steady_clock::now() < end);
}

std::vector<std::string> button_labels(GtkWidget* container)
{
    std::vector<GtkWidget*> buttons;
    collect_buttons(container, &buttons);
    std::vector<std::string> labels;
    for (GtkWidget* button : buttons)
        labels.push_back(gtk_button_get_label(GTK_BUTTON(button)));
    return labels;
}

GtkWidget* find_button(GtkWidget* container, const std::string& label)
{
    std::vector<GtkWidget*> buttons;
    collect_buttons(container, &buttons);
    for (GtkWidget* button : buttons)
        if (label == gtk_button_get_label(GTK_BUTTON(button)))
            return button;
    return nullptr;
}

GtkWidget* find_widget(GtkWidget* container, GType type)
{
    if (G_TYPE_CHECK_INSTANCE_TYPE(container, type))
        return container;
    if (!GTK_IS_CONTAINER(container))
        return nullptr;
    GtkWidget* found = nullptr;
    GList* children = gtk_container_get_children(GTK_CONTAINER(container));
    for (GList* child = children; child && !found; child = child->next)
        found = find_widget(GTK_WIDGET(child->data), type);
    g_list_free(children);
    return found;
}

GtkWidget* find_window(const std::string& title)
{
    GtkWidget* found = nullptr;
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item && !found; item = item->next) {
        GtkWindow* window = GTK_WINDOW(item->data);
        const char* window_title = gtk_window_get_title(window);
        if (window_title && title == window_title && gtk_widget_get_visible(GTK_WIDGET(window)))
            found = GTK_WIDGET(window);
    }
    g_list_free(windows);
    return found;
}

void answer_next_dialog(std::string* text, int response)
{
    g_timeout_add(50, answer_cb, new pending_answer{text, response});
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
    std::string path = std::string(KEST_SCREENSHOT_DIR) + "/" + name + ".png";
    gdk_pixbuf_save(shot, path.c_str(), "png", nullptr, nullptr);
    g_object_unref(shot);
}

bool wait_for(const std::function<bool()>& condition, int timeout_ms)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        pump_events(20);
    }
    return true;
}
