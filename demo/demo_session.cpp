// Stands in for every session client in the demo (rdesktop, wfica, X, firefox and the DAS
// client): a small window that shows the name it was started under and its argument
// vector, with a Close button. Closing it ends the process with status 0, as a session
// that the user logs out of.
#include <gtk/gtk.h>

#include <string>
#include <sys/auxv.h>
#include <vector>

namespace {

// The path the program was started through: the DAS client gets no argv[0] at all, so
// the name cannot come from the argument vector.
std::string started_as()
{
    const char* path = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    return path ? path : "";
}

std::string base_name(const std::string& path)
{
    std::string::size_type slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string describe(const std::string& path, const std::vector<std::string>& arguments)
{
    std::string text = "Started as: " + path + "\n\nArgument vector (" +
                       std::to_string(arguments.size()) + " elements):\n";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += "  argv[" + std::to_string(i) + "] = \"" + arguments[i] + "\"\n";
    return text;
}

GtkWidget* session_window(const std::string& name, const std::string& description)
{
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), ("Demo session: " + name).c_str());
    gtk_window_set_position(GTK_WINDOW(window), GTK_WIN_POS_CENTER);
    gtk_container_set_border_width(GTK_CONTAINER(window), 10);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);

    GtkWidget* box = gtk_vbox_new(FALSE, 10);
    GtkWidget* label = gtk_label_new(description.c_str());
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    gtk_misc_set_alignment(GTK_MISC(label), 0, 0);
    gtk_box_pack_start(GTK_BOX(box), label, TRUE, TRUE, 0);

    GtkWidget* buttons = gtk_hbutton_box_new();
    gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_END);
    GtkWidget* close = gtk_button_new_from_stock(GTK_STOCK_CLOSE);
    g_signal_connect_swapped(close, "clicked", G_CALLBACK(gtk_widget_destroy), window);
    gtk_container_add(GTK_CONTAINER(buttons), close);
    gtk_box_pack_start(GTK_BOX(box), buttons, FALSE, FALSE, 0);

    gtk_container_add(GTK_CONTAINER(window), box);
    // Enter closes the session, as a keyboard-only thin client user expects.
    gtk_widget_set_can_default(close, TRUE);
    gtk_widget_grab_default(close);
    gtk_widget_grab_focus(close);
    return window;
}

}  // namespace

int main(int argc, char** argv)
{
    // Copied before gtk_init, which removes the toolkit's own options from argv.
    std::vector<std::string> arguments(argv, argv + argc);
    std::string path = started_as();
    std::string name = base_name(path);

    std::vector<char*> toolkit_argv{name.data(), nullptr};
    int toolkit_argc = 1;
    char** toolkit_args = toolkit_argv.data();
    gtk_init(&toolkit_argc, &toolkit_args);

    GtkWidget* window = session_window(name, describe(path, arguments));
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
