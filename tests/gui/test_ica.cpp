// The ICA editor's server list as pnabrowse fills it: the command's words, a list of any
// length, and the exact bytes of the name chosen.
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "gui/gui_support.h"
#include "platform/paths.h"
#include "store/ica_paths.h"
#include "ui/widgets.h"

namespace {

class ica_test : public admin_test {
protected:
    GtkWidget* open_ica(const std::string& name = "") { return window = open(ica_opener, "ICA connection", name, "ICA"); }
    GtkWidget* w(const char* name) { return named(window, name); }

    GtkWidget* window = nullptr;
};

TEST_F(ica_test, refresh_lists_what_pnabrowse_writes)
{
    add_program(ica_root + "/pnabrowse",
                "printf '%s\\n' \"$@\" > " + root / "pnabrowse.args" + "\n"
                "case \"$2\" in fail) exit 3;; quiet) exit 0;;\n"
                "  many) seq -f '\"App %g\"' 10000; printf '\"Caf\\351\"\\n'; exit 0;; esac\n"
                "printf '\"%s\"\\n' Word 'Mail \"Pro\"' 'Excel 2003'");
    ASSERT_TRUE(open_ica());
    click(window, "refresh");  // no default server location in the file
    EXPECT_EQ(messages->shown, std::vector<std::string>{"\nPlease specify a default server location.\n"});

    std::string& group = connect_info.text[MC_ICA_LOCATION];
    const auto choices = [&] { return gtk_combo_box_get_model(GTK_COMBO_BOX(w("server"))); };
    group = "it's; touch " + root / "injected";
    set_box(window, "published-radio", true);
    click(window, "refresh");
    EXPECT_EQ(read_file_text(root / "pnabrowse.args"), "-A\n" + group + "\n");
    EXPECT_FALSE(path_exists(root / "injected"));
    ASSERT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 3);
    gtk_combo_box_set_active(GTK_COMBO_BOX(w("server")), 1);
    EXPECT_EQ(combo_text(w("server")), "Mail \"Pro\"");

    for (const char* address : {"fail", "quiet"}) {
        group = address;
        set_box(window, "server-radio", true);
        click(window, "refresh");
        EXPECT_EQ(read_file_text(root / "pnabrowse.args"), std::string("-S\n") + address + "\n");
    }
    // A failing run changes nothing; one that writes nothing leaves no choices.
    EXPECT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 0);
    EXPECT_EQ(messages->shown.size(), 1u);

    // A long list, whose Latin-1 name is chosen and saved as pnabrowse wrote it.
    group = "many";
    click(window, "refresh");
    ASSERT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 10001);
    gtk_combo_box_set_active(GTK_COMBO_BOX(w("server")), 10000);
    EXPECT_EQ(text_of(window, "server"), "Caf\u00e9");
    type_text(window, "name", "Long");
    click(window, "_Save");
    EXPECT_EQ(master_row("Long", "ICA")[MC_SERVER], "Caf\xe9");
}

}  // namespace
