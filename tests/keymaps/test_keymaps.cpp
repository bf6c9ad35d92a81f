#include "keymaps/keymaps.h"

#include "support/test_support.h"

#include <sstream>

namespace {

std::string golden(const std::string& name) { return read_file_text(GOLDEN_DIR "/" + name); }
std::string rows(GtkListStore* list) { return dump_model(GTK_TREE_MODEL(list), {KM_CODE, KM_DESCRIPTION}); }

using keymaps_test = rooted_test;

// A name ending in "/" is made a directory, which counts as a source that does not open.
// The last case finds the list filled by the one before and must leave it empty.
TEST_F(keymaps_test, x_layouts_come_from_the_first_source_that_opens)
{
    const std::string rules = "etc/X11/xkb/rules/xfree86.lst", keymap = "etc/X11/xkb/keymap/xfree86",
                      xfce = "etc/xfce4/applets/keyboard.conf";
    // Codes end at a space within 15 characters; long lines are read in pieces.
    const std::string rules_text = golden("xfree86.lst"), keymap_text = golden("xfree86"),
                      xfce_text = golden("keyboard.conf");
    const struct { std::vector<std::pair<std::string, std::string>> files; int result, x11; std::string expected; } cases[] = {
        {{{rules, rules_text}, {keymap, keymap_text}, {xfce, xfce_text}}, 1, 1,
         "us|U.S. English\nde|German\nabcdefghijklmn|Fourteen\nxx|" + std::string(96, 'd') + "\nzz|zed\n"},
        {{{rules, "! model\n  us  U.S.\n"}, {xfce, xfce_text}}, 1, 1, ""},
        {{{keymap, keymap_text}, {xfce, xfce_text}}, 1, 1, "us|us\nde_CH|de_CH\n"},
        {{{rules + "/", ""}, {xfce, xfce_text}}, 1, 0, "us|English\nde|German\nfr|French\n"},
        {{}, 0, 7, ""},
    };
    for (const auto& c : cases) {
        temp_dir case_root;
        scoped_root case_scope(case_root.path());
        for (const auto& [name, text] : c.files)
            name.ends_with('/') ? make_dirs(case_root / name) : write_file(case_root / name, text);
        x11_keymap = 7;
        SCOPED_TRACE(c.files.empty() ? "" : c.files[0].first);
        EXPECT_EQ(make_x_keymap(), c.result);
        EXPECT_EQ(x11_keymap, c.x11);
        EXPECT_EQ(rows(keymap_list), c.expected);
        EXPECT_EQ(messages.label, c.result ? "" : "\nCouldn't open keymap file.\n");
    }
    EXPECT_TRUE(messages.shown.empty());
}

// keymap.lst names win; a map it leaves out takes its built-in name, or its file name when
// keymap.lst named none of the folder's maps or is missing (here a directory in its place).
// "xx" is a map like any other, and "Use Default" always leads. The folder gives its entries
// in no fixed order: the rows after the first are compared as a set.
TEST_F(keymaps_test, keymap_lst_names_then_built_in_names)
{
    const std::string dir = "usr/share/rdesktop/keymaps/";
    EXPECT_EQ(make_rdesktop_keymap(), 0) << "no folder";
    EXPECT_EQ(rows(rdesktop_keymap_list), "xx|Use Default\n");
    for (const char* map : {"de", "fr", "nl", "nl-be", "xx", "zz", "common", "modifiers"})
        write_file(root / (dir + map), "include common\n");
    const std::string built_in = "xx|Use Default\nde|German (Germany)\nfr|French (France)\n"
                                 "nl-be|Dutch (Netherlands)\nnl|Dutch (Belgium)\nxx|Use Default\nzz|zz\n";
    const std::pair<std::string, std::string> cases[] = {
        {golden("keymap.lst"), "xx|Use Default\nde|Deutsch\nfr|Francais (AZERTY)\nnl-be|Dutch (Netherlands)\nnl|Nederlands\n"
         "xx|Use Default\nzz|zz\n"},
        {"ghost Ghost\nfr-ca French\n", "xx|Use Default\nde|de\nfr|fr\nnl-be|nl-be\nnl|nl\nxx|xx\nzz|zz\n"},
        {"common Common keys\nghost Ghost\n", built_in},
        {"/", built_in},
    };
    for (const auto& [list, expected] : cases) {
        std::filesystem::remove(root / (dir + "keymap.lst"));
        list == "/" ? make_dirs(root / (dir + "keymap.lst")) : write_file(root / (dir + "keymap.lst"), list);
        EXPECT_EQ(make_rdesktop_keymap(), 1);
        std::istringstream text(rows(rdesktop_keymap_list));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line + "\n");
        std::sort(lines.begin() + 1, lines.end());
        EXPECT_EQ(std::accumulate(lines.begin(), lines.end(), std::string()), expected) << list;
    }
}

}  // namespace
