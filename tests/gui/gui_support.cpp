#include "gui/gui_support.h"

#include "admin/advanced.h"
#include "launch/launch_fixture.h"
#include "platform/log.h"

#include <chrono>
#include <thread>

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

namespace {

// The toolkit is up before any test makes a window.
[[maybe_unused]] const bool toolkit_ready = (gtk_init(nullptr, nullptr), true);

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

void pump_events(int milliseconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (; std::chrono::steady_clock::now() < end; std::this_thread::sleep_for(std::chrono::milliseconds(5)))
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
}

GtkWidget* find_button(GtkWidget* container, const std::string& label)
{
    return find_below(container, [&](GtkWidget* w) {
        return GTK_IS_BUTTON(w) && label == (gtk_button_get_label(GTK_BUTTON(w)) ?: "");
    });
}

GtkWidget* find_window(const std::string& title)
{
    return find_toplevel([&](GtkWidget* w) { return title == (gtk_window_get_title(GTK_WINDOW(w)) ?: ""); });
}

void answer_next_dialog(std::string* text, int response)
{
    using answer = std::pair<std::string*, int>;
    g_timeout_add(50, [](gpointer data) -> gboolean {
        GtkWidget* dialog = find_toplevel([](GtkWidget* w) { return GTK_IS_DIALOG(w) && gtk_window_get_modal(GTK_WINDOW(w)); });
        if (!dialog)
            return TRUE;  // not up yet: look again
        auto* pending = static_cast<answer*>(data);
        std::string& text = *pending->first;
        text.clear();
        find_below(dialog, [&](GtkWidget* w) { return GTK_IS_LABEL(w) && (text += gtk_label_get_text(GTK_LABEL(w)), false); });
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

GtkWidget* named(GtkWidget* window, const char* name)
{
    GtkWidget* widget = window ? find_below(window, [&](GtkWidget* w) { return g_strcmp0(gtk_widget_get_name(w), name) == 0; })
                               : nullptr;
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

std::string text_of(GtkWidget* window, const char* name)
{
    GtkWidget* widget = named(window, name);
    return gtk_entry_get_text(GTK_ENTRY(GTK_IS_COMBO_BOX(widget) ? gtk_bin_get_child(GTK_BIN(widget)) : widget));
}

void type_text(GtkWidget* window, const char* name, const std::string& text)
{
    gtk_entry_set_text(GTK_ENTRY(named(window, name)), text.c_str());
}

void set_box(GtkWidget* window, const char* name, bool on)
{
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(named(window, name)), on);
}

void click(GtkWidget* window, const char* label)
{
    if (GtkWidget* button = find_button(window, label) ?: named(window, label))
        gtk_button_clicked(GTK_BUTTON(button));
    pump_events(10);
}

void select_row(GtkWidget* window, const char* view, const char* path)
{
    GtkTreePath* at = gtk_tree_path_new_from_string(path);
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(GTK_TREE_VIEW(named(window, view))), at);
    gtk_tree_path_free(at);
}

gui_test::gui_test() : old_path_(std::getenv("PATH"))
{
    tmp_dir = root / "tmp/.kestrel";
    make_dirs(tmp_dir);
    log_open();
    setenv("PATH", (root / "bin:" + old_path_).c_str(), 1);
    misc_widgets = g_new0(GtkWidget*, 3);
    master_connection_list = create_master_store();
    current_user_connection_tree = create_user_tree_store();
}

gui_test::~gui_test()
{
    // Held while the list is walked: destroying one window may destroy another.
    GList* windows = gtk_window_list_toplevels();
    g_list_foreach(windows, [](gpointer window, gpointer) { g_object_ref(window); }, nullptr);
    for (GList* w = windows; w; w = w->next)
        if (w->data == root_window || w->data == error_dialog || w->data == reconnect_dialog ||
            gtk_widget_get_visible(GTK_WIDGET(w->data)))
            gtk_widget_destroy(GTK_WIDGET(w->data));
    g_list_free_full(windows, g_object_unref);
    pump_events(20);
    root_window = error_dialog = reconnect_dialog = nullptr;
    g_clear_object(&master_connection_list);
    g_clear_object(&current_user_connection_tree);
    g_clear_pointer(&misc_widgets, g_free);
    log_close();
    setenv("PATH", old_path_.c_str(), 1);
}

void gui_test::open_main_window(shell_setup setup, GCallback advanced)
{
    shell_mode = setup.shell;
    user_has_root = setup.admin;
    allow_turnoff = setup.turnoff || setup.admin;
    allow_reboot = setup.reboot || setup.admin;
    build_main_window();
    finish_main_window();
    if (user_has_root)
        add_advanced_button(advanced);
    show_main_window();
    pump_events();
}

void ica_opener(GtkWidget*, GtkTreeModel*, GtkTreePath* path) { ica_dialog(path); }

admin_test::admin_test()
{
    for (const char* dir : {"etc/.kestrel", "home/admin", "home/bob"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd", "admin:x:" + std::to_string(getuid()) + ":0::/home/admin:/bin/sh\n"
                                    "bob:x:1001:1001::/home/bob:/bin/sh\n");
    write_file(root / "etc/group", "root:x:0:admin\n");
    fill_seedchars();
    set_ica_dir(root / "etc/.kestrel");
    ica_root = root / "opt/ICAClient";
    current_user_name = selected_user_name = "admin";
    current_user_filename = root / "home/admin/kestrel.inf";
    show_gui = 1;
    show_taskbar = kiosk_mode = 0;
    das = firefox = x11_keymap = 1;
    selected_user_connection_tree = create_user_tree_store();
    rdesktop_keymap_list = make_keymap_list({{"xx", "Use Default"}, {"intl", "International Europe"}, {"da", "Danish"}});
    keymap_list = make_keymap_list({{"us", "English (US)"}, {"be", "belgian"}});
    open_main_window({false, true}, G_CALLBACK(advanced_dialog));
    messages = std::make_unique<message_recorder>();
}

admin_test::~admin_test()
{
    messages.reset();
    g_clear_object(&selected_user_connection_tree);
    g_clear_object(&rdesktop_keymap_list);
    g_clear_object(&keymap_list);
}

GtkWidget* admin_test::open(editor_opener opener, const char* title, const std::string& name, const std::string& type)
{
    GtkTreeIter iter;
    GtkTreePath* path = nullptr;
    if (!name.empty() && find_master_row(master_connection_list, name, type, &iter))
        path = gtk_tree_model_get_path(GTK_TREE_MODEL(master_connection_list), &iter);
    opener(nullptr, path ? GTK_TREE_MODEL(master_connection_list) : nullptr, path);
    if (path)
        gtk_tree_path_free(path);
    pump_events(10);
    return find_window(title);
}

connection_record admin_test::master_row(const std::string& name, const std::string& type) const
{
    GtkTreeIter iter;
    if (!find_master_row(master_connection_list, name, type, &iter)) {
        ADD_FAILURE() << "no master row " << name << "/" << type;
        return {};
    }
    return read_master_row(GTK_TREE_MODEL(master_connection_list), &iter);
}
