#include "launch/command_line.h"

#include "launch_fixture.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/password.h"

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

TEST_F(command_line_test, rdp_vectors)
{
    const connection_record base =
        make_record("Office", "RDP", {{MC_SERVER, "srv"}, {MC_RDP_FLAGS, "00000"}});
    const struct { column_values values; args expected; } cases[] = {
        // 32094: every flag bit, and of the experience bits 64 and 256.
        {{{MC_SERVER, "ts.example.com"}, {MC_PROGRAM, "notepad.exe"}, {MC_WORKDIR, "C:\\work"},
          {MC_USERNAME, "ann"}, {MC_DOMAIN, "CORP"}, {MC_WINDOW_SIZE, "1024x768"},
          {MC_COLOURS, "High Color (16 bit)"}, {MC_SOUND, "Leave at remote computer"},
          {MC_RDP_CLIENT_HOST, "thin01"}, {MC_KEYBOARD, "German"}, {MC_RDP_EXPERIENCE, "Custom"},
          {MC_RDP_DISK, "home=/home/ann"}, {MC_RDP_PRINTER, "lp0"}, {MC_RDP_LPT, "LPT1=/dev/lp0"},
          {MC_RDP_COM, "COM1=/dev/ttyS0"}, {MC_RDP_EXTRA_OPTIONS, "-T Work"},
          {MC_RDP_FLAGS, "32094"}, {MC_PASSWORD, "t`kber"}},
         {"rdesktop", "-uann", "-psecret", "-dCORP", "-nthin01", "-snotepad.exe", "-cC:\\work",
          "-g1024x768", "-a16", "-rsound:remote", "-kde", "-kde-ch", "-b", "-P", "-z", "-B",
          "-x0x0a", "-rdisk:home=/home/ann", "-rprinter:lp0", "-rlptport:LPT1=/dev/lp0",
          "-rcomport:COM1=/dev/ttyS0", "-T Work", "ts.example.com"}},
        // One switch and one redirection bit a row; flags are decimal, leading zeros and all.
        {{{MC_WINDOW_SIZE, "Full Screen"}, {MC_COLOURS, "256 Colors (8 bit)"},
          {MC_SOUND, "Bring to this computer"}, {MC_KEYBOARD, "French"},
          {MC_RDP_EXPERIENCE, "Modem (28.8 Kbps)"}, {MC_RDP_FLAGS, "01028"}},
         {"rdesktop", "-f", "-a8", "-rsound:local", "-kfr", "-b", "-xm", "-rdisk:", "srv"}},
        {{{MC_WINDOW_SIZE, ""}, {MC_COLOURS, "High Color (15 bit)"}, {MC_KEYBOARD, "Klingon"},
          {MC_RDP_EXPERIENCE, "Broadband (128 Kbps - 1.5 Mbps)"}, {MC_RDP_FLAGS, "08200"},
          {MC_RDP_PRINTER, "p"}},
         {"rdesktop", "-a15", "-P", "-xb", "-rprinter:p", "srv"}},
        {{{MC_COLOURS, "True Color (24 bit)"}, {MC_RDP_EXPERIENCE, "LAN (10 Mbps or higher)"},
          {MC_RDP_FLAGS, "04098"}, {MC_RDP_LPT, "l"}},
         {"rdesktop", "-a24", "-z", "-xl", "-rlptport:l", "srv"}},
        // Texts that match no choice exactly add nothing.
        {{{MC_WINDOW_SIZE, "Use Default"}, {MC_COLOURS, "256 colors (8 bit)"}, {MC_SOUND, "Off"},
          {MC_KEYBOARD, "Use Default"}, {MC_RDP_EXPERIENCE, "Modem (56 Kbps)"},
          {MC_RDP_FLAGS, "02064"}, {MC_RDP_COM, "c"}},
         {"rdesktop", "-B", "-rcomport:c", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Custom"}, {MC_RDP_FLAGS, "00640"}}, {"rdesktop", "-x0x05", "srv"}},
        {{{MC_RDP_FLAGS, "garbage"}, {MC_RDP_DISK, "d"}, {MC_RDP_EXTRA_OPTIONS, "-T x"},
          {MC_RDP_EXPERIENCE, "Custom"}},
         {"rdesktop", "-x0x0f", "srv"}},
        // Extra options switched on but empty end the vector before the server.
        {{{MC_RDP_FLAGS, "16384"}}, {"rdesktop"}},
        // Unscrambles to nothing.
        {{{MC_PASSWORD, "QzQ"}}, {"rdesktop", "srv"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rdp_arguments(with_columns(base, c.values)), c.expected);
    EXPECT_EQ(rdp_command_line(rdp_arguments(base)), " rdesktop srv");
}

TEST_F(command_line_test, xdm_vectors)
{
    const connection_record base = make_record(
        "Lab", "XDM", {{MC_SERVER, "xhost"}, {MC_XDM_DISPLAY, "1"}, {MC_XDM_VT, "Automatic"},
                       {MC_KEYBOARD, "Use Server Settings"}, {MC_XDM_MODE, "Query"}});
    const struct { column_values values; args expected; } cases[] = {
        {{}, {"X", ":1", "-query", "xhost"}},
        {{{MC_XDM_MODE, "Indirect"}, {MC_XDM_VT, "7"}}, {"X", ":1", "vt7", "-indirect", "xhost"}},
        {{{MC_XDM_MODE, "Broadcast"}}, {"X", ":1", "-broadcast"}},
        // The last of several rows of the same name wins; a name of no row is the map.
        {{{MC_KEYBOARD, "German"}, {MC_XDM_MODE, "Broadcast"}},
         {"X", ":1", "+kb", "-xkbmap", "de_nodeadkeys.xkm", "-broadcast"}},
        {{{MC_KEYBOARD, "Esperanto"}, {MC_XDM_MODE, "query"}},
         {"X", ":1", "+kb", "-xkbmap", "Esperanto.xkm"}},
        {{{MC_KEYBOARD, "Use Local Settings"}, {MC_XDM_MODE, "Indirect"}},
         {"X", ":1", "+kb", "-xkbmap", "be.xkm", "-indirect", "xhost"}},
    };
    write_file(root / "Xsetup", "xkbmap=be.xkm\n");
    x_setup_file = root / "Xsetup";
    x11_keymap = 0;  // compiling the map is checked where a launch runs xkbcomp
    std::string command;
    for (const auto& c : cases) {
        command = "unchanged";
        EXPECT_EQ(xdm_arguments(with_columns(base, c.values), &command), c.expected);
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

TEST_F(command_line_test, reachability_plan)
{
    using enum reachability_check::method;
    const struct {
        const char *type, *port, *server, *location, *mask;
        bool ping;
        reachability_check::method how;
        const char* command_or_host;
    } cases[] = {
        {"RDP", "0", "ts", "", "0", false, none, ""},
        {"RDP", "0", "", "", "0", true, none, ""},
        {"RDP", "80", "http://ts:1/x", "", "0", true, tcp, "http://ts"},
        {"Web", "80", "http://www.example.com:8080/a/b:c", "", "0", true, tcp, "www.example.com"},
        {"Web", "0", "https://intra/", "", "0", true, icmp, "ping -c 1 -q 'intra' >/dev/null"},
        {"Web", "80", "intra/a:b", "", "0", true, tcp, "intra/a"},
        // ICA checks the server location, as it stands, never the server column. Its ping
        // command is checked where a launch runs it.
        {"ICA", "1494", "app", "farm1:80", "4", true, tcp, "farm1:80"},
        {"ICA", "1494", "app", "Default", "0", true, none, ""},
        {"ICA", "1494", "app", "farm1", "2054", true, none, ""},
        {"ICA", "1494", "", "farm1", "0", true, none, ""},
    };
    for (const auto& c : cases) {
        const reachability_check check = plan_reachability(make_record(
            "C", c.type,
            {{MC_PING_PORT, c.port}, {MC_SERVER, c.server}, {MC_ICA_LOCATION, c.location},
             {MC_ICA_MASK, c.mask}},
            c.ping));
        SCOPED_TRACE(std::string(c.type) + " " + c.server + " " + c.location);
        EXPECT_EQ(check.how, c.how);
        EXPECT_EQ(check.command, c.how == icmp ? c.command_or_host : "");
        EXPECT_EQ(check.host, c.how == tcp ? c.command_or_host : "");
        EXPECT_EQ(check.port, c.how == tcp ? c.port : "");
    }
}

}  // namespace
