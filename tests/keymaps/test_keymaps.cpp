#include "keymaps/keymaps.h"

#include "support/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
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
        gchar* code = nullptr;
        gchar* description = nullptr;
        gtk_tree_model_get(model, &iter, 0, &code, 1, &description, -1);
        found.emplace_back(code, description);
        g_free(code);
        g_free(description);
    }
    return found;
}

// The folder gives its entries in no fixed order: "Use Default" must come first, the
// rest is compared sorted.
rows rdesktop_rows()
{
    rows found = list_rows(rdesktop_keymap_list);
    if (found.empty()) {
        ADD_FAILURE() << "the list has no rows";
        return found;
    }
    EXPECT_EQ(found.front(), row("xx", "Use Default"));
    std::sort(found.begin() + 1, found.end());
    return found;
}

const std::string rules_file = "etc/X11/xkb/rules/xfree86.lst";
const std::string xkb_keymap_file = "etc/X11/xkb/keymap/xfree86";
const std::string xfce_file = "etc/xfce4/applets/keyboard.conf";
const std::string rdesktop_dir = "usr/share/rdesktop/keymaps/";

const std::string rules_text =
    "! model\n  pc104         Generic 104-key PC\n"
    "! layout\n"
    "  us            U.S. English\n"
    "\n"
    "\tde\tGerman\n"
    "  abcdefghijklmn Fourteen\n"
    "  abcdefghijklmno Fifteen\n"
    "  nodescription\n"
    "  xx " + std::string(120, 'd') + "\n" +
    "  " + std::string(99, 'a') + "zz zed\n"
    "! variant\n  nodeadkeys    de: Eliminate dead keys\n";
const rows rules_rows = {{"us", "U.S. English"},
                         {"de", "German"},
                         {"abcdefghijklmn", "Fourteen"},
                         {"xx", std::string(96, 'd')},
                         {"zz", "zed"}};

const std::string xkb_keymap_text =
    "default xkb_keymap \"us\" {\n"
    "    xkb_keycodes { include \"xfree86\" };\n"
    "};\n"
    "xkb_keymap \"de_CH  \"\t{\n"
    "// xkb_keymap without a name\n";
const rows xkb_keymap_rows = {{"us", "us"}, {"de_CH", "de_CH"}};

const std::string xfce_text =
    "# keyboard layouts\n"
    "us \"English\"\n"
    "de   \"German\"   # comment\n"
    "fr \"French # Azerty\"\n"
    "nolayout\n"
    "be \"Belgian\n";
const rows xfce_rows = {{"us", "English"}, {"de", "German"}, {"fr", "French"}};

class keymaps_test : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) { write_file(root / name, text); }
    void add_maps(std::initializer_list<const char*> names)
    {
        for (const char* name : names)
            write(rdesktop_dir + name, "include common\n");
    }

    temp_dir root;
    scoped_root scope{root.path()};
    message_recorder messages;
};

TEST_F(keymaps_test, x_layouts_come_from_the_first_source_that_opens)
{
    struct source_case {
        const char* what;
        std::vector<std::pair<std::string, std::string>> files;
        int x11;
        rows expected;
    };
    const source_case cases[] = {
        {"rules list first",
         {{rules_file, rules_text}, {xkb_keymap_file, xkb_keymap_text}, {xfce_file, xfce_text}},
         1, rules_rows},
        {"rules list without a layout section", {{rules_file, "! model\n  us  U.S.\n"}, {xfce_file, xfce_text}}, 1, {}},
        {"xkb keymap file next", {{xkb_keymap_file, xkb_keymap_text}, {xfce_file, xfce_text}}, 1, xkb_keymap_rows},
        {"XFCE list last", {{xfce_file, xfce_text}}, 0, xfce_rows},
    };
    for (const source_case& c : cases) {
        SCOPED_TRACE(c.what);
        temp_dir case_root;
        scoped_root case_scope(case_root.path());
        for (const auto& [name, text] : c.files)
            write_file(case_root / name, text);
        x11_keymap = 7;
        EXPECT_EQ(make_x_keymap(), 1);
        EXPECT_EQ(x11_keymap, c.x11);
        EXPECT_EQ(list_rows(keymap_list), c.expected);
        EXPECT_EQ(x_rules_file, case_root.path() + "/etc/X11/xkb/rules/xfree86.lst");
    }
    EXPECT_EQ(messages.label, "");
}

TEST_F(keymaps_test, a_directory_in_place_of_a_source_is_passed_over)
{
    make_dirs(root / rules_file);
    write(xfce_file, xfce_text);
    EXPECT_EQ(make_x_keymap(), 1);
    EXPECT_EQ(x11_keymap, 0);
    EXPECT_EQ(list_rows(keymap_list), xfce_rows);
}

TEST_F(keymaps_test, no_x_source_leaves_an_empty_list_and_a_message_for_later)
{
    write(xfce_file, xfce_text);
    make_x_keymap();
    std::remove((root / xfce_file).c_str());
    for (int flag : {0, 1}) {
        x11_keymap = flag;
        EXPECT_EQ(make_x_keymap(), 0);
        EXPECT_EQ(x11_keymap, flag);
        EXPECT_TRUE(list_rows(keymap_list).empty());
    }
    EXPECT_EQ(messages.label, "\nCouldn't open keymap file.\n");
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(keymaps_test, without_a_keymap_folder_only_use_default_is_offered)
{
    EXPECT_EQ(make_rdesktop_keymap(), 0);
    EXPECT_EQ(list_rows(rdesktop_keymap_list), rows({{"xx", "Use Default"}}));
    EXPECT_EQ(rdesktop_keymap_dir, root.path() + "/usr/share/rdesktop/keymaps");
}

TEST_F(keymaps_test, keymap_lst_names_the_maps_that_have_a_file)
{
    add_maps({"de", "fr", "it", "nl", "zz", "common", "modifiers"});
    write(rdesktop_dir + "keymap.lst",
          "de\tDeutsch\n\nfr   Francais (AZERTY)\nde Duplicate\nghost Ghost\n"
          "nodescription\n  " + std::string(200, 'n') + " it Italiano\n");
    EXPECT_EQ(make_rdesktop_keymap(), 1);
    EXPECT_EQ(rdesktop_rows(), rows({{"xx", "Use Default"},
                                     {"de", "Deutsch"},
                                     {"fr", "Francais (AZERTY)"},
                                     {"it", "Italiano"},
                                     {"nl", "Dutch (Belgium)"},
                                     {"zz", "zz"}}));
}

TEST_F(keymaps_test, a_keymap_lst_naming_no_present_map_leaves_file_names)
{
    add_maps({"de", "nl"});
    for (const char* list : {"", "ghost Ghost\nfr French\n"}) {
        SCOPED_TRACE(list);
        write(rdesktop_dir + "keymap.lst", list);
        EXPECT_EQ(make_rdesktop_keymap(), 1);
        EXPECT_EQ(rdesktop_rows(), rows({{"xx", "Use Default"}, {"de", "de"}, {"nl", "nl"}}));
    }
}

TEST_F(keymaps_test, a_map_keymap_lst_leaves_out_takes_its_built_in_name)
{
    add_maps({"de", "common", "modifiers"});
    write(rdesktop_dir + "keymap.lst", "common Common keys\nfr French\n");
    make_rdesktop_keymap();
    EXPECT_EQ(rdesktop_rows(), rows({{"xx", "Use Default"}, {"de", "German (Germany)"}}));
}

TEST_F(keymaps_test, without_keymap_lst_every_map_takes_its_built_in_name)
{
    const rows names = {
        {"ar", "Arabic"}, {"da", "Danish"}, {"de", "German (Germany)"},
        {"de-ch", "German (Switzerland)"}, {"en-gb", "English (United Kingdom)"},
        {"en-us", "English (United States)"}, {"es", "Spanish"}, {"et", "Estonian"},
        {"fi", "Finnish"}, {"fo", "Faeroese"}, {"fr", "French (France)"},
        {"fr-be", "French (Belgium)"}, {"fr-ca", "French (Canada)"},
        {"fr-ch", "French (Switzerland)"}, {"hr", "Croatian"}, {"hu", "Hungarian"},
        {"intl", "International Europe"}, {"is", "Icelandic"}, {"it", "Italian"},
        {"it-ch", "Italian (Switzerland)"}, {"ja", "Japanese"}, {"ko", "Korean"},
        {"lt", "Lithuanian"}, {"lv", "Latvian"}, {"mk", "FYRO Macedonian"},
        {"nl", "Dutch (Belgium)"}, {"nl-be", "Dutch (Netherlands)"},
        {"no", "Norwegian (Bokmal)"}, {"pl", "Polish"}, {"pt", "Portuguese (Portugal)"},
        {"pt-br", "Portuguese (Brazil)"}, {"ru", "Russian"}, {"sl", "Slovenian"},
        {"sv", "Swedish"}, {"th", "Thai"}, {"tr", "Turkish"}, {"xx", "Use Default"},
        {"zz-unknown", "zz-unknown"}};
    for (const row& r : names)
        write(rdesktop_dir + r.first, "");
    make_dirs(root / (rdesktop_dir + "keymap.lst"));
    rows expected = names;
    expected.insert(expected.begin(), {"xx", "Use Default"});
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
