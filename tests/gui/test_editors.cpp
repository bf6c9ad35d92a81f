// What every editor shares, run over all of them: the binding round trip and the columns
// of a new connection; and the ICA editor's server list.
#include "editors/connect_info.h"
#include "gui/gui_support.h"

#include <set>
#include <sstream>

namespace {

// A master row as its 36 columns joined by "|": 2 and 35 are TRUE or FALSE, and the
// password (11) is in clear (stored padded with the row's name).
connection_record parse_row(const std::string& columns)
{
    connection_record record;
    std::istringstream fields(columns);
    for (int c = 0; c < MC_COUNT; ++c)
        std::getline(fields, record[c], '|');
    record.ping_first = record[MC_PING] == "TRUE";
    record.from_file = record[MC_FROM_FILE] == "TRUE";
    record[MC_PING] = record[MC_FROM_FILE] = "";
    record[MC_PASSWORD] = pad_password(record[MC_PASSWORD], record[MC_NAME]);
    return record;
}

std::string row_text(connection_record record)
{
    record[MC_PING] = record.ping_first ? "TRUE" : "FALSE";
    record[MC_FROM_FILE] = record.from_file ? "TRUE" : "FALSE";
    record[MC_PASSWORD] = unpad_password(record[MC_PASSWORD], record[MC_NAME]);
    std::string text;
    for (int c = 0; c < MC_COUNT; ++c)
        text += (c ? "|" : "") + record[c];
    return text;
}

// Every entry or combo we named that shows a text as "name=text", every toggle of ours
// that is on as its name, sorted and joined by "; ".
std::string shown_values(GtkWidget* window)
{
    std::set<std::string> shown;
    find_below(window, [&](GtkWidget* w) {
        const std::string name = gtk_widget_get_name(w);
        if (name.rfind("Gtk", 0) == 0)
            return false;
        if (GTK_IS_TOGGLE_BUTTON(w) && gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(w)))
            shown.insert(name);
        if (!GTK_IS_ENTRY(w) && !GTK_IS_COMBO_BOX(w))
            return false;
        const bool plain_combo = GTK_IS_COMBO_BOX(w) && !gtk_bin_get_child(GTK_BIN(w));
        const std::string text = plain_combo ? combo_text(w) : text_of(w, name.c_str());
        if (!text.empty())
            shown.insert(name + "=" + text);
        return false;
    });
    std::string text;
    for (const std::string& item : shown)
        text += (text.empty() ? "" : "; ") + item;
    return text;
}

const std::map<std::string, std::pair<editor_opener, const char*>> editor_of_type = {
    {"Web", {web_dialog, "Web connection"}}, {"Other", {other_dialog, "Other connection"}},
    {"RDP", {rd_dialog, "rdesktop connection"}}, {"XDM", {xdm_dialog, "XDM connection"}},
    {"ICA", {ica_opener, "ICA connection"}},
};

// A stored row opened, checked against what its controls show (a swapped binding column
// shows here) and saved unchanged; or a new connection saved as its editor opens.
TEST_F(admin_test, every_editor_saves_what_it_shows)
{
    for (const texts& rows : read_blocks(GOLDEN_DIR "/editor_rows")) {
        SCOPED_TRACE(rows.front());
        const bool edited = rows.size() == 3;
        const connection_record stored = parse_row(rows.front());
        const auto& [opener, title] = editor_of_type.at(stored[MC_TYPE]);
        gtk_list_store_clear(master_connection_list);
        if (edited)
            insert_master_row(master_connection_list, -1, stored);
        GtkWidget* editor = open(opener, title, edited ? stored[MC_NAME] : "", stored[MC_TYPE]);
        ASSERT_NE(editor, nullptr);
        EXPECT_FALSE(gtk_widget_get_visible(root_window));
        if (edited) {
            EXPECT_FALSE(gtk_widget_is_sensitive(named(editor, "name")));
            EXPECT_EQ(shown_values(editor), rows[1]);
            EXPECT_EQ(find_window("Printers"), nullptr) << "a box turned on by loading opens no window";
        } else {
            type_text(editor, "name", "New");
        }
        click(editor, "_Save");
        EXPECT_EQ(find_window(title), nullptr);
        EXPECT_TRUE(gtk_widget_get_visible(root_window));
        EXPECT_EQ(row_text(master_row(stored[MC_NAME], stored[MC_TYPE])), rows.back());
    }
    EXPECT_TRUE(messages->shown.empty());
}

// The ICA editor's server list as pnabrowse fills it: the command's words, a list of any
// length, and the exact bytes of the name chosen.
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
