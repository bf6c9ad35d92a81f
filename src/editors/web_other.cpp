// The Web and Other editors: a name and one value each, the start page or the command
// line.
#include "editors/editor_save.h"
#include "editors/editors.h"
#include "ui/form.h"

namespace {

enum value_widget { VALUE = 0, VALUE_WIDGETS };

constexpr column_binding web_columns[] = {{MC_SERVER, VALUE, bind::text}};
constexpr column_binding other_columns[] = {{MC_PROGRAM, VALUE, bind::text}};
// No port is opened for either before connecting; "80" is kept for the ping options.
constexpr editor_kind web_kind{"Web", false, "80", -1, web_columns};
constexpr editor_kind other_kind{"Other", false, "80", -1, other_columns};

struct value_editor_shape {
    const editor_kind* kind;
    const char* title;
    const char* value_label;
    int width_chars;
};
constexpr value_editor_shape web_shape{&web_kind, "Web connection", "Start Page:", 50};
constexpr value_editor_shape other_shape{&other_kind, "Other connection", "Command to create process:", 70};

void web_ok_button_cb(GtkWidget*, editor* e) { finish_editor_save(e, editor_values(e)); }
void other_ok_button_cb(GtkWidget*, editor* e) { finish_editor_save(e, editor_values(e)); }

void open_value_editor(const value_editor_shape& shape, GtkTreePath* path, GCallback save)
{
    editor* e = open_editor(*shape.kind, shape.title, path, VALUE_WIDGETS);
    GtkWidget* table = form_table();
    e->widgets[VALUE] = form_entry(table, 0, shape.value_label, "value");
    e->name = form_entry(table, 1, "Name this connection:", "name");
    gtk_entry_set_width_chars(GTK_ENTRY(e->widgets[VALUE]), shape.width_chars);
    gtk_entry_set_width_chars(GTK_ENTRY(e->name), shape.width_chars);
    load_editor(e);
    show_editor(e, table, save);
    gtk_widget_grab_focus(e->widgets[VALUE]);
}

}  // namespace

void web_dialog(GtkWidget*, GtkTreeModel*, GtkTreePath* path)
{
    open_value_editor(web_shape, path, G_CALLBACK(web_ok_button_cb));
}

void other_dialog(GtkWidget*, GtkTreeModel*, GtkTreePath* path)
{
    open_value_editor(other_shape, path, G_CALLBACK(other_ok_button_cb));
}
