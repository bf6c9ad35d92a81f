#include "launch/command_line.h"

#include "launch/password.h"
#include "launch_fixture.h"
#include "shell/globals.h"

#include <gtest/gtest.h>

namespace {

using args = argument_vector;

class command_line_test : public ::testing::Test {
protected:
    void SetUp() override
    {
        fill_seedchars();
        rdesktop_keymap_list =
            make_keymap_list({{"us", "Use Default"}, {"de", "German"}, {"fr", "French"},
                              {"de-ch", "German"}});
        keymap_list = make_keymap_list({{"de", "German"}, {"de_nodeadkeys", "German"},
                                        {"fr", "French"}});
        x11_keymap = 1;
        x_setup_file.clear();
    }
    void TearDown() override
    {
        g_object_unref(rdesktop_keymap_list);
        g_object_unref(keymap_list);
        rdesktop_keymap_list = keymap_list = nullptr;
        x11_keymap = 1;
        x_setup_file.clear();
    }

    static connection_record rdp(column_values values)
    {
        connection_record record = make_record("Office", "RDP", {{MC_SERVER, "srv"}});
        record[MC_RDP_FLAGS] = "00000";
        for (const auto& [column, text] : values)
            record[column] = text;
        return record;
    }

    temp_dir root;
    scoped_root rooted{root.path()};
};

TEST_F(command_line_test, rdp_vector_with_every_column_and_flag)
{
    // 2 4 8 16 1024 2048 4096 8192 16384, and the experience bits 64 and 256.
    const connection_record record = rdp({
        {MC_SERVER, "ts.example.com"}, {MC_PROGRAM, "notepad.exe"}, {MC_WORKDIR, "C:\\work"},
        {MC_USERNAME, "ann"}, {MC_DOMAIN, "CORP"}, {MC_WINDOW_SIZE, "1024x768"},
        {MC_COLOURS, "High Color (16 bit)"}, {MC_SOUND, "Leave at remote computer"},
        {MC_RDP_CLIENT_HOST, "thin01"}, {MC_KEYBOARD, "German"}, {MC_RDP_EXPERIENCE, "Custom"},
        {MC_RDP_DISK, "home=/home/ann"}, {MC_RDP_PRINTER, "lp0"}, {MC_RDP_LPT, "LPT1=/dev/lp0"},
        {MC_RDP_COM, "COM1=/dev/ttyS0"}, {MC_RDP_EXTRA_OPTIONS, "-T Work"},
        {MC_RDP_FLAGS, "32094"}, {MC_PASSWORD, "t`kber"}});
    const args expected{"rdesktop", "-uann", "-psecret", "-dCORP", "-nthin01",
                        "-snotepad.exe", "-cC:\\work", "-g1024x768", "-a16", "-rsound:remote",
                        "-kde", "-kde-ch", "-b", "-P", "-z", "-B", "-x0x0a",
                        "-rdisk:home=/home/ann", "-rprinter:lp0", "-rlptport:LPT1=/dev/lp0",
                        "-rcomport:COM1=/dev/ttyS0", "-T Work", "ts.example.com"};
    EXPECT_EQ(rdp_arguments(record), expected);
    EXPECT_EQ(rdp_command_line(rdp_arguments(record)),
              " rdesktop -uann -psecret -dCORP -nthin01 -snotepad.exe -cC:\\work -g1024x768 -a16"
              " -rsound:remote -kde -kde-ch -b -P -z -B -x0x0a -rdisk:home=/home/ann"
              " -rprinter:lp0 -rlptport:LPT1=/dev/lp0 -rcomport:COM1=/dev/ttyS0 -T Work"
              " ts.example.com");
}

TEST_F(command_line_test, rdp_single_columns)
{
    const struct {
        column_values values;
        args expected;
    } cases[] = {
        {{}, {"rdesktop", "srv"}},
        {{{MC_WINDOW_SIZE, "Full Screen"}}, {"rdesktop", "-f", "srv"}},
        {{{MC_WINDOW_SIZE, "Use Default"}}, {"rdesktop", "srv"}},
        {{{MC_WINDOW_SIZE, "800x600"}}, {"rdesktop", "-g800x600", "srv"}},
        {{{MC_WINDOW_SIZE, ""}}, {"rdesktop", "srv"}},
        {{{MC_COLOURS, "256 Colors (8 bit)"}}, {"rdesktop", "-a8", "srv"}},
        {{{MC_COLOURS, "High Color (15 bit)"}}, {"rdesktop", "-a15", "srv"}},
        {{{MC_COLOURS, "True Color (24 bit)"}}, {"rdesktop", "-a24", "srv"}},
        {{{MC_COLOURS, "256 colors (8 bit)"}}, {"rdesktop", "srv"}},
        {{{MC_SOUND, "Bring to this computer"}}, {"rdesktop", "-rsound:local", "srv"}},
        {{{MC_SOUND, "Off"}}, {"rdesktop", "srv"}},
        {{{MC_KEYBOARD, "French"}}, {"rdesktop", "-kfr", "srv"}},
        {{{MC_KEYBOARD, "Use Default"}}, {"rdesktop", "srv"}},
        {{{MC_KEYBOARD, "Klingon"}}, {"rdesktop", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Modem (28.8 Kbps)"}}, {"rdesktop", "-xm", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Broadband (128 Kbps - 1.5 Mbps)"}}, {"rdesktop", "-xb", "srv"}},
        {{{MC_RDP_EXPERIENCE, "LAN (10 Mbps or higher)"}}, {"rdesktop", "-xl", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Modem (56 Kbps)"}}, {"rdesktop", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Custom"}}, {"rdesktop", "-x0x0f", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Custom"}, {MC_RDP_FLAGS, "00960"}}, {"rdesktop", "-x0x00", "srv"}},
        {{{MC_RDP_EXPERIENCE, "Custom"}, {MC_RDP_FLAGS, "00640"}}, {"rdesktop", "-x0x05", "srv"}},
        // Every option bit read as a decimal number, leading zeros and all.
        {{{MC_RDP_FLAGS, "01024"}}, {"rdesktop", "-b", "srv"}},
        {{{MC_RDP_FLAGS, "08192"}}, {"rdesktop", "-P", "srv"}},
        {{{MC_RDP_FLAGS, "04096"}}, {"rdesktop", "-z", "srv"}},
        {{{MC_RDP_FLAGS, "02048"}}, {"rdesktop", "-B", "srv"}},
        {{{MC_RDP_FLAGS, "00010"}, {MC_RDP_PRINTER, "p"}, {MC_RDP_LPT, "l"}},
         {"rdesktop", "-rprinter:p", "-rlptport:l", "srv"}},
        {{{MC_RDP_FLAGS, "00020"}, {MC_RDP_DISK, "d"}, {MC_RDP_COM, "c"}},
         {"rdesktop", "-rdisk:d", "-rcomport:c", "srv"}},
        {{{MC_RDP_FLAGS, "00004"}}, {"rdesktop", "-rdisk:", "srv"}},
        {{{MC_RDP_FLAGS, "00000"}, {MC_RDP_DISK, "d"}, {MC_RDP_EXTRA_OPTIONS, "-T x"}},
         {"rdesktop", "srv"}},
        {{{MC_RDP_FLAGS, "garbage"}, {MC_RDP_DISK, "d"}, {MC_RDP_EXPERIENCE, "Custom"}},
         {"rdesktop", "-x0x0f", "srv"}},
        {{{MC_RDP_FLAGS, ""}, {MC_RDP_DISK, "d"}}, {"rdesktop", "srv"}},
        // An empty element ends the vector: extra options switched on but empty lose the
        // server, as does an empty server.
        {{{MC_RDP_FLAGS, "16384"}}, {"rdesktop"}},
        {{{MC_SERVER, ""}, {MC_USERNAME, "ann"}}, {"rdesktop", "-uann"}},
        // Passwords: none; one that unscrambles to nothing (it points at its own start);
        // unpadded ones that point at and past their own end, left uncut.
        {{{MC_PASSWORD, ""}}, {"rdesktop", "srv"}},
        {{{MC_PASSWORD, "QzQ"}}, {"rdesktop", "srv"}},
        {{{MC_PASSWORD, "t`kber"}}, {"rdesktop", "-psecret", "srv"}},
        {{{MC_PASSWORD, "t`kbe}"}}, {"rdesktop", "-psecre{", "srv"}},
    };
    for (const auto& c : cases) {
        const args vector = rdp_arguments(rdp(c.values));
        EXPECT_EQ(vector, c.expected) << rdp_command_line(c.expected);
    }
    EXPECT_EQ(rdp_command_line({"rdesktop", "srv"}), " rdesktop srv");
}

TEST_F(command_line_test, rdp_password_stored_by_this_system)
{
    const connection_record record = rdp({{MC_PASSWORD, ""}});
    for (const char* clear : {"a", "pass word", "0123456789012345678901234567890"}) {
        connection_record with_password = record;
        with_password[MC_PASSWORD] = pad_password(clear, "Office");
        EXPECT_EQ(rdp_arguments(with_password)[1], std::string("-p") + clear);
    }
}

TEST_F(command_line_test, ica_web_das_and_other)
{
    ica_dir = "/k/etc/.kestrel";
    wfclient_file = "/k/etc/.kestrel/wfclient.ini";
    const connection_record ica = make_record(
        "Citrix Desk", "ICA", {{MC_SERVER, "farm"}, {MC_PASSWORD, "t`kber"}, {MC_ICA_LOCATION, "x"}});
    EXPECT_EQ(ica_arguments(ica), (args{"wfica", "-file", "/k/etc/.kestrel/appsrv.ini",
                                        "-clientfile", "/k/etc/.kestrel/wfclient.ini", "-desc",
                                        "Citrix Desk"}));

    EXPECT_EQ(web_arguments(make_record("Intranet", "Web", {{MC_SERVER, "http://intra/a b"}})),
              (args{"firefox", "http://intra/a b"}));
    EXPECT_EQ(web_arguments(make_record("Intranet", "Web")), (args{"firefox"}));

    EXPECT_EQ(das_program(), root.path() + "/opt/zarvo/marrow");
    EXPECT_EQ(other_command_line(make_record("Term", "Other", {{MC_PROGRAM, "xterm -e 'top'"}})),
              "xterm -e 'top'");
}

TEST_F(command_line_test, xdm_vectors)
{
    const std::string compile = "xkbcomp -xkm -m de_nodeadkeys " + root.path() +
                                "/etc/X11/xkb/keymap/xfree86 -o " + root.path() + "/tmp/tmp.xkm";
    const struct {
        column_values values;
        int compiled_maps;
        args expected;
        std::string command;
    } cases[] = {
        {{{MC_XDM_MODE, "Query"}}, 1, {"X", ":1", "-query", "xhost"}, ""},
        {{{MC_XDM_MODE, "Indirect"}, {MC_XDM_VT, "7"}}, 1,
         {"X", ":1", "vt7", "-indirect", "xhost"}, ""},
        {{{MC_XDM_MODE, "Broadcast"}}, 1, {"X", ":1", "-broadcast"}, ""},
        {{{MC_XDM_MODE, "query"}}, 1, {"X", ":1"}, ""},
        {{{MC_XDM_MODE, "Indirect"}, {MC_SERVER, ""}}, 1, {"X", ":1", "-indirect"}, ""},
        {{{MC_KEYBOARD, "German"}}, 1, {"X", ":1", "+kb", "-xkbmap", "tmp.xkm", "-query", "xhost"},
         compile},
        {{{MC_KEYBOARD, "German"}}, 0,
         {"X", ":1", "+kb", "-xkbmap", "de_nodeadkeys.xkm", "-query", "xhost"}, ""},
        {{{MC_KEYBOARD, "Esperanto"}}, 0,
         {"X", ":1", "+kb", "-xkbmap", "Esperanto.xkm", "-query", "xhost"}, ""},
        {{{MC_KEYBOARD, "Use Local Settings"}}, 0,
         {"X", ":1", "+kb", "-xkbmap", "us_intl.xkm", "-query", "xhost"}, ""},
    };
    for (const auto& c : cases) {
        connection_record record =
            make_record("Lab", "XDM",
                        {{MC_SERVER, "xhost"}, {MC_XDM_DISPLAY, "1"}, {MC_XDM_VT, "Automatic"},
                         {MC_KEYBOARD, "Use Server Settings"}, {MC_XDM_MODE, "Query"}});
        for (const auto& [column, text] : c.values)
            record[column] = text;
        x11_keymap = c.compiled_maps;
        std::string command = "unchanged";
        EXPECT_EQ(xdm_arguments(record, &command), c.expected) << rdp_command_line(c.expected);
        EXPECT_EQ(command, c.command);
    }

    make_dirs(root / "etc/X11");
    write_file(root / "etc/X11/XF86Config.XDM", "");
    std::string command;
    EXPECT_EQ(xdm_arguments(make_record("Lab", "XDM", {{MC_XDM_DISPLAY, "0"},
                                                       {MC_XDM_VT, "Automatic"},
                                                       {MC_KEYBOARD, "Use Server Settings"},
                                                       {MC_XDM_MODE, "Broadcast"}}),
                            &command),
              (args{"X", ":0", "-broadcast", "-xf86config", "XF86Config.XDM"}));
}

TEST_F(command_line_test, local_keyboard_map_from_the_setup_file)
{
    const std::string x100(100, 'x');
    const struct {
        const char* name;
        std::string contents;
        const char* map;
    } cases[] = {
        {"no marker", "#!/bin/sh\nxsetroot -solid grey\n", "us_intl"},
        {"suffix and blanks", "  xkbcomp xkbmap=de.xkm  \n", "de"},
        {"no suffix", "xkbmap=fr\n", "fr"},
        {"last marker, last suffix", "a xkbmap=x xkbmap=ch.xkm.xkm\n", "ch.xkm"},
        {"first line wins", "xkbmap=de\nxkbmap=fr\n", "de"},
        {"no line end", "xkbmap=gb", "gb"},
        {"marker after 101 characters", x100 + "xx xkbmap=gb\n", "gb"},
        {"marker cut at 101 characters", x100.substr(3) + "xkbmap=gb\n", "us_intl"},
        {"suffix before the marker", "x.xkm xkbmap=de\n", "us_intl"},
        {"marker alone", "xkbmap=\n", ""},
    };
    for (const auto& c : cases) {
        write_file(root / "Xsetup", c.contents);
        EXPECT_EQ(local_xkb_map(root / "Xsetup"), c.map) << c.name;
    }
    EXPECT_EQ(local_xkb_map(""), "us_intl");
    EXPECT_EQ(local_xkb_map(root / "missing"), "us_intl");

    write_file(root / "Xsetup", "xkbmap=be.xkm\n");
    x_setup_file = root / "Xsetup";
    x11_keymap = 0;
    std::string command;
    EXPECT_EQ(xdm_arguments(make_record("Lab", "XDM", {{MC_XDM_DISPLAY, "0"},
                                                       {MC_XDM_VT, "Automatic"},
                                                       {MC_KEYBOARD, "Use Local Settings"}}),
                            &command),
              (args{"X", ":0", "+kb", "-xkbmap", "be.xkm"}));
}

TEST_F(command_line_test, reachability_plan)
{
    using method = reachability_check::method;
    const struct {
        const char* type;
        bool ping;
        const char* port;
        const char* server;
        const char* location;
        const char* mask;
        method how;
        const char* command;
        const char* host;
    } cases[] = {
        {"RDP", false, "0", "ts", "", "0", method::none, "", ""},
        {"RDP", true, "0", "", "", "0", method::none, "", ""},
        {"RDP", true, "0", "ts:3390", "", "0", method::icmp, "ping -c 1 -q ts >/dev/null", ""},
        {"RDP", true, "3389", "ts:3390", "", "0", method::tcp, "", "ts"},
        {"RDP", true, "3389", "10.0.0.5", "", "0", method::tcp, "", "10.0.0.5"},
        {"XDM", true, "0", "xhost", "", "0", method::icmp, "ping -c 1 -q xhost >/dev/null", ""},
        {"DAS", true, "1494", "das:1", "", "0", method::tcp, "", "das"},
        {"Other", true, "80", "", "", "0", method::none, "", ""},
        {"Web", true, "80", "http://www.example.com:8080/a/b:c", "", "0", method::tcp, "",
         "www.example.com"},
        {"Web", true, "0", "https://intra/", "", "0", method::icmp,
         "ping -c 1 -q intra >/dev/null", ""},
        {"Web", true, "80", "intra:8080/start", "", "0", method::tcp, "", "intra"},
        {"Web", true, "80", "intra/a:b", "", "0", method::tcp, "", "intra/a"},
        {"RDP", true, "80", "http://ts:1/x", "", "0", method::tcp, "", "http://ts"},
        // ICA checks the server location, never the server or application column.
        {"ICA", true, "0", "app", "farm1", "0", method::icmp, "ping -c 1 -1 farm1 >/dev/null", ""},
        {"ICA", true, "1494", "app", "farm1:80", "4", method::tcp, "", "farm1:80"},
        {"ICA", true, "1494", "app", "farm1", "garbage", method::tcp, "", "farm1"},
        {"ICA", true, "1494", "app", "Default", "0", method::none, "", ""},
        {"ICA", true, "1494", "app", "farm1", "2", method::none, "", ""},
        {"ICA", true, "1494", "app", "farm1", "2054", method::none, "", ""},
        {"ICA", true, "1494", "", "farm1", "0", method::none, "", ""},
        {"ICA", false, "1494", "app", "farm1", "0", method::none, "", ""},
    };
    for (const auto& c : cases) {
        const reachability_check check = plan_reachability(make_record(
            "C", c.type,
            {{MC_PING_PORT, c.port}, {MC_SERVER, c.server}, {MC_ICA_LOCATION, c.location},
             {MC_ICA_MASK, c.mask}},
            c.ping));
        const std::string label = std::string(c.type) + " " + c.server + " " + c.location;
        EXPECT_EQ(check.how, c.how) << label;
        EXPECT_EQ(check.command, c.command) << label;
        EXPECT_EQ(check.host, c.host) << label;
        EXPECT_EQ(check.port, c.how == method::tcp ? c.port : "") << label;
    }
}

}  // namespace
