#include "keymaps/keymaps.h"

#include "support/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

using row = std::pair<std::string, std::string>;
using rows = std::vector<row>;

rows list_rows(GtkListStore* list)
{
    rows found;
    GtkTreeModel* model = GTK_TREE_MODEL(list);
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter)) {
        gchar *code = nullptr, *description = nullptr;
        gtk_tree_model_get(model, &iter, 0, &code, 1, &description, -1);
        found.emplace_back(code, description);
        g_free(code);
        g_free(description);
    }
    return found;
}

// The folder gives its entries in no fixed order: all but the first row are sorted.
rows rdesktop_rows()
{
    rows found = list_rows(rdesktop_keymap_list);
    if (!found.empty())
        std::sort(found.begin() + 1, found.end());
    return found;
}

const std::string rules_file = "etc/X11/xkb/rules/xfree86.lst";
const std::string xkb_keymap_file = "etc/X11/xkb/keymap/xfree86";
const std::string xfce_file = "etc/xfce4/applets/keyboard.conf";
const std::string rdesktop_dir = "usr/share/rdesktop/keymaps/";

// Codes end at a space within 15 characters; long lines are read in pieces.
const std::string rules_text = "! model\n  pc104         Generic 104-key PC\n! layout\n"
                               "  us            U.S. English\n\n\tde\tGerman\n"
                               "  abcdefghijklmn Fourteen\n  abcdefghijklmno Fifteen\n"
                               "  nodescription\n  xx " + std::string(120, 'd') + "\n  " +
                               std::string(99, 'a') + "zz zed\n"
                               "! variant\n  nodeadkeys    de: Eliminate dead keys\n";
const rows rules_rows = {{"us", "U.S. English"}, {"de", "German"},
                         {"abcdefghijklmn", "Fourteen"}, {"xx", std::string(96, 'd')},
                         {"zz", "zed"}};
const std::string xkb_keymap_text = "default xkb_keymap \"us\" {\n"
                                    "    xkb_keycodes { include \"xfree86\" };\n};\n"
                                    "xkb_keymap \"de_CH  \"\t{\n// xkb_keymap without a name\n";
const std::string xfce_text = "# keyboard layouts\nus \"English\"\n"
                              "de   \"German\"   # comment\nfr \"French # Azerty\"\n"
                              "nolayout\nbe \"Belgian\n";
const rows xfce_rows = {{"us", "English"}, {"de", "German"}, {"fr", "French"}};

class keymaps_test : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) { write_file(root / name, text); }

    temp_dir root;
    scoped_root scope{root.path()};
    message_recorder messages;
};

// A name ending in "/" is made a directory, which counts as a source that does not open.
// The last case finds the list filled by the one before and must leave it empty.
TEST_F(keymaps_test, x_layouts_come_from_the_first_source_that_opens)
{
    const struct {
        std::vector<row> files;
        int result, x11;
        rows expected;
    } cases[] = {
        {{{rules_file, rules_text}, {xkb_keymap_file, xkb_keymap_text}, {xfce_file, xfce_text}},
         1, 1, rules_rows},
        {{{rules_file, "! model\n  us  U.S.\n"}, {xfce_file, xfce_text}}, 1, 1, {}},
        {{{xkb_keymap_file, xkb_keymap_text}, {xfce_file, xfce_text}}, 1, 1,
         {{"us", "us"}, {"de_CH", "de_CH"}}},
        {{{rules_file + "/", ""}, {xfce_file, xfce_text}}, 1, 0, xfce_rows},
        {{}, 0, 7, {}},
    };
    for (const auto& c : cases) {
        temp_dir case_root;
        scoped_root case_scope(case_root.path());
        for (const auto& [name, text] : c.files)
            name.ends_with('/') ? make_dirs(case_root / name) : write_file(case_root / name, text);
        x11_keymap = 7;
        const std::string trace = c.files.empty() ? "" : c.files[0].first;
        EXPECT_EQ(make_x_keymap(), c.result) << trace;
        EXPECT_EQ(x11_keymap, c.x11) << trace;
        EXPECT_EQ(list_rows(keymap_list), c.expected) << trace;
        EXPECT_EQ(x_rules_file, case_root.path() + "/etc/X11/xkb/rules/xfree86.lst");
        EXPECT_EQ(messages.label, c.result ? "" : "\nCouldn't open keymap file.\n") << trace;
    }
    EXPECT_TRUE(messages.shown.empty());
}

// keymap.lst names win; a map it leaves out takes its built-in name, or its file name
// when keymap.lst named none of the folder's maps.
TEST_F(keymaps_test, keymap_lst_names_then_built_in_names)
{
    for (const char* map : {"de", "fr", "it", "nl", "zz", "common", "modifiers"})
        write(rdesktop_dir + map, "include common\n");
    const std::pair<std::string, rows> cases[] = {
        {"de\tDeutsch\n\nfr   Francais (AZERTY)\nde Duplicate\nghost Ghost\nnodescription\n  " +
             std::string(200, 'n') + " it Italiano\n",
         {{"de", "Deutsch"}, {"fr", "Francais (AZERTY)"}, {"it", "Italiano"},
          {"nl", "Dutch (Belgium)"}, {"zz", "zz"}}},
        {"ghost Ghost\nfr-ca French\n", {{"de", "de"}, {"fr", "fr"}, {"it", "it"}, {"nl", "nl"},
                                         {"zz", "zz"}}},
        {"common Common keys\nghost Ghost\n",
         {{"de", "German (Germany)"}, {"fr", "French (France)"}, {"it", "Italian"},
          {"nl", "Dutch (Belgium)"}, {"zz", "zz"}}},
    };
    for (const auto& [list, maps] : cases) {
        write(rdesktop_dir + "keymap.lst", list);
        rows expected = maps;
        expected.insert(expected.begin(), {"xx", "Use Default"});
        EXPECT_EQ(make_rdesktop_keymap(), 1);
        EXPECT_EQ(rdesktop_rows(), expected) << list;
    }
}

// Without a folder only "Use Default" is offered; without keymap.lst (here a directory
// in its place) every map takes its built-in name.
TEST_F(keymaps_test, without_keymap_lst_every_map_takes_its_built_in_name)
{
    EXPECT_EQ(make_rdesktop_keymap(), 0);
    EXPECT_EQ(list_rows(rdesktop_keymap_list), rows({{"xx", "Use Default"}}));
    EXPECT_EQ(rdesktop_keymap_dir, root.path() + "/usr/share/rdesktop/keymaps");

    rows expected = {
        {"xx", "Use Default"}, {"ar", "Arabic"}, {"da", "Danish"}, {"de", "German (Germany)"},
        {"de-ch", "German (Switzerland)"}, {"en-gb", "English (United Kingdom)"}, {"es", "Spanish"},
        {"en-us", "English (United States)"}, {"et", "Estonian"}, {"fi", "Finnish"},
        {"fo", "Faeroese"}, {"fr", "French (France)"}, {"fr-be", "French (Belgium)"},
        {"fr-ca", "French (Canada)"}, {"fr-ch", "French (Switzerland)"}, {"hr", "Croatian"},
        {"hu", "Hungarian"}, {"intl", "International Europe"}, {"is", "Icelandic"},
        {"it", "Italian"}, {"it-ch", "Italian (Switzerland)"}, {"ja", "Japanese"}, {"ko", "Korean"},
        {"lt", "Lithuanian"}, {"lv", "Latvian"}, {"mk", "FYRO Macedonian"}, {"pl", "Polish"},
        {"nl", "Dutch (Belgium)"}, {"nl-be", "Dutch (Netherlands)"}, {"no", "Norwegian (Bokmal)"},
        {"pt", "Portuguese (Portugal)"}, {"pt-br", "Portuguese (Brazil)"}, {"ru", "Russian"},
        {"sl", "Slovenian"}, {"sv", "Swedish"}, {"th", "Thai"}, {"tr", "Turkish"},
        {"xx", "Use Default"}, {"zz-unknown", "zz-unknown"}};
    for (size_t i = 1; i < expected.size(); ++i)
        write(rdesktop_dir + expected[i].first, "");
    make_dirs(root / (rdesktop_dir + "keymap.lst"));
    std::sort(expected.begin() + 1, expected.end());
    EXPECT_EQ(make_rdesktop_keymap(), 1);
    EXPECT_EQ(rdesktop_rows(), expected);
}

TEST_F(keymaps_test, read_file_reports_a_file_it_cannot_load)
{
    write("etc/present", "text");
    const std::string missing = root / "etc/missing";
    testing::internal::CaptureStdout();
    EXPECT_EQ(read_file((root / "etc/present").c_str()), 1);
    EXPECT_EQ(read_file(missing.c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Cannot load file: " + missing + "\n");
}

}  // namespace
