#include "launch/command_line.h"

#include "launch/password.h"
#include "launch_fixture.h"
#include "shell/globals.h"

namespace {

using args = argument_vector;

class command_line_test : public ::testing::Test {
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
        g_object_unref(rdesktop_keymap_list);
        g_object_unref(keymap_list);
        rdesktop_keymap_list = keymap_list = nullptr;
        x11_keymap = 1;
        x_setup_file.clear();
    }

    temp_dir root;
    scoped_root rooted{root.path()};
};

TEST_F(command_line_test, rdp_vectors)
{
    const connection_record base =
        make_record("Office", "RDP", {{MC_SERVER, "srv"}, {MC_RDP_FLAGS, "00000"}});
    const struct {
        column_values values;
        args expected;
    } cases[] = {
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
        {{}, {"rdesktop", "srv"}},
        {{{MC_WINDOW_SIZE, "Full Screen"}, {MC_COLOURS, "256 Colors (8 bit)"},
          {MC_SOUND, "Bring to this computer"}, {MC_KEYBOARD, "French"},
          {MC_RDP_EXPERIENCE, "Modem (28.8 Kbps)"}},
         {"rdesktop", "-f", "-a8", "-rsound:local", "-kfr", "-xm", "srv"}},
        {{{MC_COLOURS, "High Color (15 bit)"}, {MC_RDP_EXPERIENCE, "Broadband (128 Kbps - 1.5 Mbps)"}},
         {"rdesktop", "-a15", "-xb", "srv"}},
        {{{MC_COLOURS, "True Color (24 bit)"}, {MC_RDP_EXPERIENCE, "LAN (10 Mbps or higher)"}},
         {"rdesktop", "-a24", "-xl", "srv"}},
        {{{MC_WINDOW_SIZE, "Use Default"}, {MC_COLOURS, "256 colors (8 bit)"}, {MC_SOUND, "Off"},
          {MC_KEYBOARD, "Use Default"}, {MC_RDP_EXPERIENCE, "Modem (56 Kbps)"}},
         {"rdesktop", "srv"}},
        {{{MC_WINDOW_SIZE, ""}, {MC_KEYBOARD, "Klingon"}}, {"rdesktop", "srv"}},
        // Flags are decimal, leading zeros and all.
        {{{MC_RDP_FLAGS, "01024"}}, {"rdesktop", "-b", "srv"}},
        {{{MC_RDP_FLAGS, "08192"}}, {"rdesktop", "-P", "srv"}},
        {{{MC_RDP_FLAGS, "04096"}}, {"rdesktop", "-z", "srv"}},
        {{{MC_RDP_FLAGS, "02048"}}, {"rdesktop", "-B", "srv"}},
        {{{MC_RDP_FLAGS, "00012"}, {MC_RDP_PRINTER, "p"}}, {"rdesktop", "-rdisk:", "-rprinter:p", "srv"}},
        {{{MC_RDP_FLAGS, "00018"}, {MC_RDP_LPT, "l"}, {MC_RDP_COM, "c"}},
         {"rdesktop", "-rlptport:l", "-rcomport:c", "srv"}},
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
        EXPECT_EQ(rdp_arguments(with_columns(base, c.values)), c.expected)
            << rdp_command_line(c.expected);
    EXPECT_EQ(rdp_command_line({"rdesktop", "srv"}), " rdesktop srv");
}

TEST_F(command_line_test, ica_web_das_and_other)
{
    ica_dir = "/k/etc/.kestrel";
    wfclient_file = "/k/etc/.kestrel/wfclient.ini";
    EXPECT_EQ(ica_arguments(make_record("Citrix Desk", "ICA", {{MC_SERVER, "farm"}})),
              (args{"wfica", "-file", "/k/etc/.kestrel/appsrv.ini", "-clientfile",
                    "/k/etc/.kestrel/wfclient.ini", "-desc", "Citrix Desk"}));
    EXPECT_EQ(web_arguments(make_record("Intranet", "Web", {{MC_SERVER, "http://intra/a b"}})),
              (args{"firefox", "http://intra/a b"}));
    EXPECT_EQ(das_program(), root.path() + "/opt/zarvo/marrow");
    EXPECT_EQ(other_command_line(make_record("Term", "Other", {{MC_PROGRAM, "xterm -e 'top'"}})),
              "xterm -e 'top'");
}

TEST_F(command_line_test, xdm_vectors)
{
    const connection_record base = make_record(
        "Lab", "XDM", {{MC_SERVER, "xhost"}, {MC_XDM_DISPLAY, "1"}, {MC_XDM_VT, "Automatic"},
                       {MC_KEYBOARD, "Use Server Settings"}, {MC_XDM_MODE, "Query"}});
    const std::string compile = "xkbcomp -xkm -m de_nodeadkeys " + root.path() +
                                "/etc/X11/xkb/keymap/xfree86 -o " + root.path() + "/tmp/tmp.xkm";
    const struct {
        column_values values;
        int compiled_maps;
        args expected;
        std::string command;
    } cases[] = {
        {{}, 1, {"X", ":1", "-query", "xhost"}, ""},
        {{{MC_XDM_MODE, "Indirect"}, {MC_XDM_VT, "7"}}, 1, {"X", ":1", "vt7", "-indirect", "xhost"}, ""},
        {{{MC_XDM_MODE, "Broadcast"}}, 1, {"X", ":1", "-broadcast"}, ""},
        {{{MC_XDM_MODE, "query"}}, 1, {"X", ":1"}, ""},
        {{{MC_KEYBOARD, "German"}}, 1, {"X", ":1", "+kb", "-xkbmap", "tmp.xkm", "-query", "xhost"},
         compile},
        {{{MC_KEYBOARD, "Esperanto"}}, 0,
         {"X", ":1", "+kb", "-xkbmap", "Esperanto.xkm", "-query", "xhost"}, ""},
    };
    std::string command;
    for (const auto& c : cases) {
        x11_keymap = c.compiled_maps;
        command = "unchanged";
        EXPECT_EQ(xdm_arguments(with_columns(base, c.values), &command), c.expected)
            << rdp_command_line(c.expected);
        EXPECT_EQ(command, c.command);
    }

    make_dirs(root / "etc/X11");
    write_file(root / "etc/X11/XF86Config.XDM", "");
    write_file(root / "Xsetup", "xkbmap=be.xkm\n");
    x_setup_file = root / "Xsetup";
    x11_keymap = 0;
    const connection_record local = with_columns(
        base, {{MC_KEYBOARD, "Use Local Settings"}, {MC_XDM_MODE, "Broadcast"}});
    EXPECT_EQ(xdm_arguments(local, &command),
              (args{"X", ":1", "+kb", "-xkbmap", "be.xkm", "-broadcast", "-xf86config",
                    "XF86Config.XDM"}));
}

TEST_F(command_line_test, local_keyboard_map_from_the_setup_file)
{
    const std::string x100(100, 'x');
    const struct {
        std::string contents;
        const char* map;
    } cases[] = {
        {"#!/bin/sh\nxsetroot -solid grey\n", "us_intl"},
        {"  xkbcomp xkbmap=de.xkm  \n", "de"},
        {"a xkbmap=x xkbmap=ch.xkm.xkm\n", "ch.xkm"},
        {"xkbmap=de\nxkbmap=fr\n", "de"},
        // Lines are read 101 characters at a time.
        {x100 + "xx xkbmap=gb\n", "gb"},
        {x100.substr(3) + "xkbmap=gb\n", "us_intl"},
        // Cutting at ".xkm" removes the marker.
        {"x.xkm xkbmap=de\n", "us_intl"},
    };
    for (const auto& c : cases) {
        write_file(root / "Xsetup", c.contents);
        EXPECT_EQ(local_xkb_map(root / "Xsetup"), c.map) << c.contents;
    }
    EXPECT_EQ(local_xkb_map(root / "missing"), "us_intl");
}

TEST_F(command_line_test, reachability_plan)
{
    using enum reachability_check::method;
    const struct {
        const char* type;
        bool ping;
        const char* port;
        const char* server;
        const char* location;
        const char* mask;
        reachability_check::method how;
        const char* command_or_host;
    } cases[] = {
        {"RDP", false, "0", "ts", "", "0", none, ""},
        {"RDP", true, "0", "", "", "0", none, ""},
        {"RDP", true, "0", "ts:3390", "", "0", icmp, "ping -c 1 -q ts >/dev/null"},
        {"RDP", true, "3389", "ts:3390", "", "0", tcp, "ts"},
        {"RDP", true, "80", "http://ts:1/x", "", "0", tcp, "http://ts"},
        {"Web", true, "80", "http://www.example.com:8080/a/b:c", "", "0", tcp, "www.example.com"},
        {"Web", true, "0", "https://intra/", "", "0", icmp, "ping -c 1 -q intra >/dev/null"},
        {"Web", true, "80", "intra/a:b", "", "0", tcp, "intra/a"},
        // ICA checks the server location, as it stands, never the server column.
        {"ICA", true, "0", "app", "farm1", "0", icmp, "ping -c 1 -1 farm1 >/dev/null"},
        {"ICA", true, "1494", "app", "farm1:80", "4", tcp, "farm1:80"},
        {"ICA", true, "1494", "app", "Default", "0", none, ""},
        {"ICA", true, "1494", "app", "farm1", "2054", none, ""},
        {"ICA", true, "1494", "", "farm1", "0", none, ""},
    };
    for (const auto& c : cases) {
        const reachability_check check = plan_reachability(make_record(
            "C", c.type,
            {{MC_PING_PORT, c.port}, {MC_SERVER, c.server}, {MC_ICA_LOCATION, c.location},
             {MC_ICA_MASK, c.mask}},
            c.ping));
        const std::string label = std::string(c.type) + " " + c.server + " " + c.location;
        EXPECT_EQ(check.how, c.how) << label;
        EXPECT_EQ(check.command, c.how == icmp ? c.command_or_host : "") << label;
        EXPECT_EQ(check.host, c.how == tcp ? c.command_or_host : "") << label;
        EXPECT_EQ(check.port, c.how == tcp ? c.port : "") << label;
    }
}

}  // namespace
