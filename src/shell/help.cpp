#include "shell/help.h"

#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "ui/widgets.h"

#include <cstdio>
#include <string>

namespace {

constexpr const char* help_file = "/etc/.kestrel/kestrel.help";
constexpr const char* version_text = "Version 1.3.3\n";
constexpr const char* support_text =
    "Kestrelle connects this thin client to its remote sessions. The product "
    "documentation and the administrator's guide are on the Kestrelle support web site, "
    "https://support.kestrelle.example/.";
// The help text comes in pieces of up to 199 characters; longer lines are simply
// read in several pieces.
constexpr int help_piece_size = 200;
constexpr int help_width = 600;
constexpr int help_text_height = 400;

GtkWidget* help_text_view(FILE* file)
{
    GtkWidget* view = gtk_text_view_new();
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), FALSE);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    GtkTextIter end;
    line_reader reader(file, long_line::pieces, help_piece_size);
    // The pieces of a line are joined before its encoding is checked: a piece boundary
    // may fall inside a character.
    std::string line;
    bool more = true;
    while (more) {
        more = reader.read();
        if (more)
            line += reader.c_str();
        if (!line.empty() && (!more || line.back() == '\n')) {
            gtk_text_buffer_get_end_iter(buffer, &end);
            gtk_text_buffer_insert(buffer, &end, shown_text(line).c_str(), -1);
            line.clear();
        }
    }
    return vertical_scroller(view);
}

GtkWidget* support_label()
{
    GtkWidget* label = gtk_label_new(support_text);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    return label;
}

}  // namespace

void help_dialog(GtkWidget*, gpointer parent)
{
    GtkWidget* window = program_window("Help");
    GtkWidget* column = gtk_vbox_new(FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), column);
    gtk_box_pack_start(GTK_BOX(column), gtk_label_new("Kestrelle"), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), gtk_label_new(version_text), FALSE, FALSE, 0);
    if (unique_file file = open_file(root_path(help_file), "re")) {
        gtk_box_pack_start(GTK_BOX(column), help_text_view(file.get()), TRUE, TRUE, 0);
        gtk_window_set_default_size(GTK_WINDOW(window), help_width, help_text_height);
    } else {
        gtk_box_pack_start(GTK_BOX(column), support_label(), TRUE, TRUE, 0);
        gtk_window_set_default_size(GTK_WINDOW(window), help_width, -1);
    }
    hide_while_open(window, static_cast<GtkWidget*>(parent));
    gtk_widget_show_all(window);
}
