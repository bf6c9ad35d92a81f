// The DAS editor: a DAS connection is its name; the client decides the rest.
#include "editors/editor_save.h"
#include "editors/editors.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "ui/form.h"

namespace {

constexpr editor_kind das_kind{"DAS", true, "1494", -1, {}};
constexpr const char* das_wizard = "/opt/zarvo/pellin";

void das_ok_button_cb(GtkWidget*, editor* e) { finish_editor_save(e, editor_values(e)); }

}  // namespace

void das_dialog()
{
    // The row path stays empty: Save always takes the new-connection path.
    editor* e = open_editor(das_kind, "DAS connection", nullptr, 0);
    GtkWidget* table = form_table();
    e->name = form_entry(table, 0, "Name this connection:", "name");
    show_editor(e, table, G_CALLBACK(das_ok_button_cb));
    gtk_widget_grab_focus(e->name);
}

int das_wizard_fork()
{
    run_shell_command(shell_quote(root_path(das_wizard)));
    return 1;
}
