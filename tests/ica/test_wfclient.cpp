#include "ica/wfclient.h"

#include "platform/tmp_files.h"
#include "store/ica_paths.h"
#include "support/test_support.h"

#include <optional>

namespace {

std::string golden(const std::string& name) { return read_file_text(std::string(GOLDEN_DIR) + "/" + name); }

// The golden input: the later slot 2 wins, slot 16 does not exist, an address keeps its
// blanks, "yes" is not on, blanks around "=" go. Written back, its settings settle at once.
TEST(wfclient, golden_files)
{
    const std::string input = golden("input.ini");
    const server_locations read = read_server_locations(input);
    EXPECT_EQ(read.http, (std::vector<std::string>{"web1.example.lan", "web2b.example.lan", " spaced.example.lan "}));
    EXPECT_EQ(read.tcp, std::vector<std::string>{"tcp1.example.lan"});
    EXPECT_EQ(read.protocol, "TCP + HTTP browser");
    EXPECT_EQ(rewrite_server_locations(input, {{"a.example.lan", "b.example.lan:8080"}, {"t.example.lan"},
                                               "SSL/TLS + HTTPS browser"}),
              golden("input.servers.golden"));
    for (const std::string& text : {input, golden("input.global.golden")}) {
        global_settings settings = default_global_settings();
        read_global_settings(text, settings);
        EXPECT_EQ(rewrite_global_settings(text, settings), golden("input.global.golden"));
    }
}

TEST(wfclient, protocol_and_address_slots)
{
    const struct { const char* text; const char* protocol; std::vector<std::string> tcp; } table[] = {
        {"[WFClient]\nSSLEnable=1\n", "SSL/TLS + HTTPS browser", {}},
        {"SSLEnable=True\nSSLEnable=no\n", "TCP + HTTP browser", {}},
        {"SSLEnable=On\nBrowserProtocol=UDP\n", "TCP browser", {}},
        {"TcpBrowserAddress15=last\nTcpBrowserAddress=first\nTcpBrowserAddress1=one\n", "TCP + HTTP browser",
         {"first", "one", "last"}},
        {"TcpBrowserAddress99=x\nTcpBrowserAddress100=y\nTcpBrowserAddress16=z\n"
         "TcpBrowserAddress00000000000000000001000=w\n", "TCP + HTTP browser", {}},
        {"TcpBrowserAddress2\nTcpBrowserAddress=a=b\n", "TCP + HTTP browser", {"a=b"}},  // no "=": no address
    };
    for (const auto& e : table) {
        EXPECT_EQ(read_server_locations(e.text).protocol, e.protocol) << e.text;
        EXPECT_EQ(read_server_locations(e.text).tcp, e.tcp) << e.text;
    }
}

// Without a section line the keys are dropped or left alone; COM ports keep their names.
TEST(wfclient, rewrites_without_section_and_com_ports)
{
    const std::string text = "Version=2\nHttpBrowserAddress=h\nSSLEnable=On\nHotkey1Char=F1\n";
    EXPECT_EQ(rewrite_server_locations(text, {{"new"}, {}, "TCP browser"}), "Version=2\nHotkey1Char=F1\n");
    EXPECT_EQ(rewrite_global_settings(text, default_global_settings()), "Version=2\nHttpBrowserAddress=h\nSSLEnable=On\n");
    global_settings s = default_global_settings();
    s.com_ports = {{"COM1", "/dev/ttyS0"}, {"COM3", "/dev/ttyS2"}, {"COM4", ""}, {"C", "/dev/x"}};
    const std::string ports = rewrite_global_settings("[WFClient]\n", s);
    EXPECT_NE(ports.find("ComPort1=/dev/ttyS0\nComPort3=/dev/ttyS2\nComPort=/dev/x\nLastComPortNum=3\n"), std::string::npos)
        << ports;
}

using wfclient_files = rooted_test;

// The client's own file is copied when there is one, else the default is written; a
// file that cannot be made or rewritten is left whole.
TEST_F(wfclient_files, default_file_client_copy_and_failures)
{
    make_dirs(root / "tmp");
    set_ica_dir(root / "etc/.kestrel");
    make_dirs(ica_dir);
    tmp_dir = root / "tmp";
    ica_root = "";
    ASSERT_EQ(ica_make_default_wfclient(), 1);
    EXPECT_EQ(read_file_text(wfclient_file),
              "[WFClient]\nVersion = 2\n\nKeyboardLayout = (User Profile)\n"
              "KeyboardMappingFile = automatic.kbd\nKeyboardDescription = Automatic (User Profile)\n"
              "KeyboardType=(Default)\nAllowAudioInput=True\nBrowserTimeout=2000\n");
    EXPECT_TRUE(messages.shown.empty());
    std::filesystem::remove(wfclient_file);
    ica_root = root / "opt/ICA Client";  // a blank in the folder name is one word
    write_file(ica_root + "/config/wfclient.ini", "[WFClient]\nVersion=3\n");
    ASSERT_EQ(ica_make_default_wfclient(), 1);
    EXPECT_EQ(read_file_text(wfclient_file), "[WFClient]\nVersion=3\n");

    wfclient_file = root / "missing/wfclient.ini";  // no folder for the file
    std::string text;
    EXPECT_FALSE(read_wfclient(&text));
    EXPECT_EQ(messages.shown, (std::vector<std::string>{"\nCitrix wfclient.ini file not found and can't be created.\n",
                                                        "\nCouldn't create Citrix wfclient.ini file.\n"}));
    wfclient_file = ica_dir + "/wfclient.ini";
    const std::string old = "[WFClient]\nTcpBrowserAddress=old\n";
    write_file(wfclient_file, old);
    const auto cleared = [](const std::string&) { return std::string("[WFClient]\n"); };
    // No temporary folder, then a temporary copy that cannot be written whole.
    for (bool full : {false, true}) {
        messages.shown.clear();
        tmp_dir = root / (full ? "tmp" : "no-tmp");
        std::optional<full_disk> filled;
        if (full)
            filled.emplace();
        EXPECT_FALSE(rewrite_wfclient(cleared));
        filled.reset();
        EXPECT_EQ(messages.shown, std::vector<std::string>{"\nCouldn't open tmp Citrix wfclient.ini file.\n"});
        EXPECT_EQ(read_file_text(wfclient_file), old);
    }
    EXPECT_TRUE(rewrite_wfclient([](const std::string& t) { return t + "Added=1\n"; }));
    EXPECT_EQ(read_file_text(wfclient_file), old + "Added=1\n");
}

}  // namespace
