#include "ica/wfclient.h"

#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string golden(const std::string& name) { return read_file_text(std::string(GOLDEN_DIR) + "/" + name); }

TEST(wfclient, rewrites_match_golden_files)
{
    const std::string input = golden("input.ini");
    const server_locations servers{{"a.example.lan", "b.example.lan:8080"}, {"t.example.lan"},
                                   "SSL/TLS + HTTPS browser"};
    EXPECT_EQ(rewrite_server_locations(input, servers), golden("input.servers.golden"));

    global_settings settings = default_global_settings();
    read_global_settings(input, settings);
    EXPECT_EQ(rewrite_global_settings(input, settings), golden("input.global.golden"));
}

TEST(wfclient, golden_input_reads_as_designed)
{
    const server_locations read = read_server_locations(golden("input.ini"));
    // Slot 2 is taken by the later line, slot 16 does not exist, blanks stay.
    EXPECT_EQ(read.http, (std::vector<std::string>{"web1.example.lan", "web2b.example.lan",
                                                   " spaced.example.lan "}));
    EXPECT_EQ(read.tcp, std::vector<std::string>{"tcp1.example.lan"});
    EXPECT_EQ(read.protocol, "TCP + HTTP browser");  // "yes" in small letters is not on
    // The global settings read are what the golden rewrite above writes back.
}

TEST(wfclient, global_settings_written_back_unchanged)
{
    const std::string written = golden("input.global.golden");
    global_settings s = default_global_settings();
    read_global_settings(written, s);
    EXPECT_EQ(rewrite_global_settings(written, s), written);

    // The default file's "KeyboardLayout = (User Profile)" reads without its blanks.
    global_settings d = default_global_settings();
    d.keyboard_layout = "US";
    read_global_settings(default_wfclient_text, d);
    EXPECT_EQ(d.keyboard_layout, "(User Profile)");
}

TEST(wfclient, protocol_choice_from_the_browser_keys)
{
    const std::pair<const char*, const char*> rows[] = {
        {"", "TCP + HTTP browser"},
        {"[WFClient]\nSSLEnable=1\n", "SSL/TLS + HTTPS browser"},
        {"SSLEnable=Yes\nBrowserProtocol=HTTPonTCP\n", "SSL/TLS + HTTPS browser"},
        {"SSLEnable=True\nSSLEnable=no\n", "TCP + HTTP browser"},
        {"SSLEnable=On\nBrowserProtocol=UDP\n", "TCP browser"},
        {"BrowserProtocol=UDP\nBrowserProtocol=HTTPonTCP\n", "TCP + HTTP browser"},
    };
    for (const auto& [text, protocol] : rows)
        EXPECT_EQ(read_server_locations(text).protocol, protocol) << text;
}

TEST(wfclient, address_slots)
{
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"TcpBrowserAddress15=last\nTcpBrowserAddress=first\nTcpBrowserAddress1=one\n",
         {"first", "one", "last"}},
        {"TcpBrowserAddress99=x\nTcpBrowserAddress100=y\nTcpBrowserAddress16=z\n"
         "TcpBrowserAddress00000000000000000001000=w\n", {}},
        {"TcpBrowserAddress2\nTcpBrowserAddress=a=b\n", {"a=b"}},  // no "=": no address
    };
    for (const auto& [text, tcp] : rows)
        EXPECT_EQ(read_server_locations(text).tcp, tcp) << text;
}

TEST(wfclient, file_without_section_loses_its_keys)
{
    const std::string text = "Version=2\nHttpBrowserAddress=h\nSSLEnable=On\nHotkey1Char=F1\n";
    EXPECT_EQ(rewrite_server_locations(text, {{"new"}, {}, "TCP browser"}), "Version=2\nHotkey1Char=F1\n");
    EXPECT_EQ(rewrite_global_settings(text, default_global_settings()),
              "Version=2\nHttpBrowserAddress=h\nSSLEnable=On\n");
}

TEST(wfclient, com_ports_keep_their_names)
{
    global_settings s = default_global_settings();
    s.com_ports = {{"COM1", "/dev/ttyS0"}, {"COM3", "/dev/ttyS2"}, {"COM4", ""}, {"C", "/dev/x"}};
    const std::string text = rewrite_global_settings("[WFClient]\n", s);
    EXPECT_NE(text.find("ComPort1=/dev/ttyS0\nComPort3=/dev/ttyS2\nComPort=/dev/x\nLastComPortNum=3\n"),
              std::string::npos)
        << text;
}

// The file functions: a private root with ica_dir, tmp_dir and the client folder.
class wfclient_files : public rooted_test {
protected:
    void SetUp() override
    {
        make_dirs(root / "etc/.kestrel");
        make_dirs(root / "tmp");
        ica_dir = root / "etc/.kestrel";
        wfclient_file = ica_dir + "/wfclient.ini";
        tmp_dir = root / "tmp";
        ica_root = "";
    }
};

TEST_F(wfclient_files, default_file_without_client_copy)
{
    ASSERT_EQ(ica_make_default_wfclient(), 1);
    EXPECT_EQ(read_file_text(wfclient_file),
              "[WFClient]\nVersion = 2\n\nKeyboardLayout = (User Profile)\n"
              "KeyboardMappingFile = automatic.kbd\nKeyboardDescription = Automatic (User Profile)\n"
              "KeyboardType=(Default)\nAllowAudioInput=True\nBrowserTimeout=2000\n");
    const server_locations read = read_server_locations(read_file_text(wfclient_file));
    EXPECT_TRUE(read.http.empty() && read.tcp.empty());
    EXPECT_EQ(read.protocol, "TCP + HTTP browser");
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(wfclient_files, client_copy_is_taken_first)
{
    ica_root = root / "opt/ICA Client";  // a blank in the folder name is one word
    write_file(ica_root + "/config/wfclient.ini", "[WFClient]\nVersion=3\n");
    ASSERT_EQ(ica_make_default_wfclient(), 1);
    EXPECT_EQ(read_file_text(wfclient_file), "[WFClient]\nVersion=3\n");
}

TEST_F(wfclient_files, failures_leave_the_file_whole)
{
    // No folder for the file: it cannot be created.
    wfclient_file = root / "missing/wfclient.ini";
    std::string text;
    EXPECT_FALSE(read_wfclient(&text));
    EXPECT_EQ(messages.shown, (std::vector<std::string>{
                                  "\nCitrix wfclient.ini file not found and can't be created.\n",
                                  "\nCouldn't create Citrix wfclient.ini file.\n"}));

    // No temporary folder: the file stays as it was.
    messages.shown.clear();
    wfclient_file = ica_dir + "/wfclient.ini";
    write_file(wfclient_file, "[WFClient]\nTcpBrowserAddress=old\n");
    tmp_dir = root / "no-tmp";
    EXPECT_FALSE(rewrite_wfclient([](const std::string&) { return std::string("[WFClient]\n"); }));
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nCouldn't open tmp Citrix wfclient.ini file.\n"});
    EXPECT_EQ(read_file_text(wfclient_file), "[WFClient]\nTcpBrowserAddress=old\n");

    // A temporary copy that cannot be written whole (a full disk) is not copied back.
    messages.shown.clear();
    tmp_dir = root / "tmp";
    {
        full_disk full;
        EXPECT_FALSE(rewrite_wfclient([](const std::string&) { return std::string("[WFClient]\n"); }));
    }
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nCouldn't open tmp Citrix wfclient.ini file.\n"});
    EXPECT_EQ(read_file_text(wfclient_file), "[WFClient]\nTcpBrowserAddress=old\n");

    // Through the temporary copy and back.
    EXPECT_TRUE(rewrite_wfclient([](const std::string& t) { return t + "Added=1\n"; }));
    EXPECT_EQ(read_file_text(wfclient_file), "[WFClient]\nTcpBrowserAddress=old\nAdded=1\n");
}

}  // namespace
