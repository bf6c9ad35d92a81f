#include "launch/command_line.h"

#include "launch_fixture.h"
#include "store/models.h"
#include "store/password.h"

#include <sstream>

namespace {

using args = argument_vector;

class command_line_test : public rooted_test {
protected:
    void SetUp() override
    {
        fill_seedchars();
        rdesktop_keymap_list = make_keymap_list(
            {{"us", "Use Default"}, {"de", "German"}, {"fr", "French"}, {"de-ch", "German"}});
        keymap_list = make_keymap_list({{"de", "German"}, {"de_nodeadkeys", "German"}});
    }
    void TearDown() override
    {
        g_clear_object(&rdesktop_keymap_list);
        g_clear_object(&keymap_list);
        x11_keymap = 1;
        x_setup_file.clear();
    }
};

// The cases of a file in golden/, parted by a blank line: a title, lines "column=text"
// over the base record, and last the expected words (arguments, or a plan) parted by "|".
struct vector_case {
    std::string title;
    connection_record record;
    args expected;
};

std::vector<vector_case> vector_cases(const std::string& name, const connection_record& base)
{
    std::vector<vector_case> cases;
    for (const auto& lines : read_blocks(GOLDEN_DIR "/" + name)) {
        vector_case& c = cases.emplace_back(lines.front(), base);
        for (size_t i = 1; i + 1 < lines.size(); ++i)
            c.record[std::stoi(lines[i])] = lines[i].substr(lines[i].find('=') + 1);
        std::istringstream words(lines.back());
        for (std::string word; std::getline(words, word, '|');)
            c.expected.push_back(word);
    }
    return cases;
}

TEST_F(command_line_test, rdp_vectors)
{
    const connection_record base = make_record("Office", "RDP", {{MC_SERVER, "srv"}, {MC_RDP_FLAGS, "00000"}});
    for (const vector_case& c : vector_cases("rdp_vectors", base))
        EXPECT_EQ(rdp_arguments(c.record), c.expected) << c.title;
    EXPECT_EQ(rdp_command_line(rdp_arguments(base)), " rdesktop srv");
}

TEST_F(command_line_test, xdm_vectors)
{
    const connection_record base = make_record(
        "Lab", "XDM", {{MC_SERVER, "xhost"}, {MC_XDM_DISPLAY, "1"}, {MC_XDM_VT, "Automatic"},
                       {MC_KEYBOARD, "Use Server Settings"}, {MC_XDM_MODE, "Query"}});
    write_file(root / "Xsetup", "xkbmap=be.xkm\n");
    x_setup_file = root / "Xsetup";
    x11_keymap = 0;  // compiling the map is checked where a launch runs xkbcomp
    std::string command;
    for (const vector_case& c : vector_cases("xdm_vectors", base)) {
        command = "unchanged";
        EXPECT_EQ(xdm_arguments(c.record, &command), c.expected) << c.title;
        EXPECT_EQ(command, "");
    }

    make_dirs(root / "etc/X11");
    write_file(root / "etc/X11/XF86Config.XDM", "");
    EXPECT_EQ(xdm_arguments(base, &command),
              (args{"X", ":1", "-query", "xhost", "-xf86config", "XF86Config.XDM"}));
}

// Lines are read 101 characters at a time; cutting at ".xkm" removes the marker.
TEST_F(command_line_test, local_keyboard_map_from_the_setup_file)
{
    const std::string x100(100, 'x');
    const std::pair<std::string, const char*> cases[] = {
        {"#!/bin/sh\nxsetroot -solid grey\n", "us_intl"}, {"  xkbcomp xkbmap=de.xkm  \n", "de"},
        {"a xkbmap=x xkbmap=ch.xkm.xkm\n", "ch.xkm"}, {"xkbmap=de\nxkbmap=fr\n", "de"},
        {x100 + "xx xkbmap=gb\n", "gb"}, {x100.substr(3) + "xkbmap=gb\n", "us_intl"}, {"x.xkm xkbmap=de\n", "us_intl"},
    };
    for (const auto& [contents, map] : cases) {
        write_file(root / "Xsetup", contents);
        EXPECT_EQ(local_xkb_map(root / "Xsetup"), map) << contents;
    }
    EXPECT_EQ(local_xkb_map(root / "missing"), "us_intl");
}

// The ICA ping command is checked where a launch runs it.
TEST_F(command_line_test, reachability_plan)
{
    using enum reachability_check::method;
    EXPECT_EQ(plan_reachability(make_record("C", "RDP", {{MC_PING_PORT, "0"}, {MC_SERVER, "ts"}})).how, none) << "not asked";
    for (const vector_case& c : vector_cases("reachability_plans", make_record("C", "RDP", {}, true))) {
        const reachability_check check = plan_reachability(c.record);
        const args plan = check.how == tcp    ? args{"tcp", check.host, check.port}
                          : check.how == icmp ? args{"icmp", check.command}
                                              : args{"none"};
        EXPECT_EQ(plan, c.expected) << c.title;
    }
}

}  // namespace
