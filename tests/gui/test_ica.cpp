// The ICA editor's server list as pnabrowse fills it: the command's words, a list of any
// length, and the exact bytes of the name chosen.
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "gui/gui_support.h"
#include "ui/widgets.h"

namespace {

TEST_F(admin_test, ica_refresh_lists_what_pnabrowse_writes)
{
    add_program(ica_root + "/pnabrowse",
                "printf '%s\\n' \"$@\" > " + root / "pnabrowse.args" + "\n"
                "case \"$2\" in fail) exit 3;; quiet) exit 0;;\n"
                "  many) seq -f '\"App %g\"' 10000; printf '\"Caf\\351\"\\n'; exit 0;; esac\n"
                "printf '\"%s\"\\n' Word 'Mail \"Pro\"' 'Excel 2003'");
    GtkWidget* window = open(ica_opener, "ICA connection");
    ASSERT_TRUE(window);
    click(window, "refresh");  // no default server location in the file
    EXPECT_EQ(messages->shown, std::vector<std::string>{"\nPlease specify a default server location.\n"});

    // The address goes to pnabrowse as one word, whatever it holds.
    std::string& group = connect_info.text[MC_ICA_LOCATION];
    GtkWidget* server = named(window, "server");
    const auto choices = [&] { return gtk_tree_model_iter_n_children(gtk_combo_box_get_model(GTK_COMBO_BOX(server)), nullptr); };
    group = "it's; touch " + root / "injected";
    set_box(window, "published-radio", true);
    click(window, "refresh");
    EXPECT_EQ(read_file_text(root / "pnabrowse.args"), "-A\n" + group + "\n");
    ASSERT_EQ(choices(), 3);
    gtk_combo_box_set_active(GTK_COMBO_BOX(server), 1);
    EXPECT_EQ(combo_text(server), "Mail \"Pro\"");

    for (const char* address : {"fail", "quiet"}) {
        group = address;
        set_box(window, "server-radio", true);
        click(window, "refresh");
        EXPECT_EQ(read_file_text(root / "pnabrowse.args"), std::string("-S\n") + address + "\n");
        // A failing run changes nothing; one that writes nothing leaves no choices.
        EXPECT_EQ(choices(), address == std::string("fail") ? 3 : 0);
    }
    EXPECT_EQ(messages->shown.size(), 1u);

    // A long list, whose Latin-1 name is chosen and saved as pnabrowse wrote it.
    group = "many";
    click(window, "refresh");
    ASSERT_EQ(choices(), 10001);
    gtk_combo_box_set_active(GTK_COMBO_BOX(server), 10000);
    EXPECT_EQ(text_of(window, "server"), "Caf\u00e9");
    type_text(window, "name", "Long");
    click(window, "_Save");
    EXPECT_EQ(master_row("Long", "ICA")[MC_SERVER], "Caf\xe9");
}

}  // namespace
