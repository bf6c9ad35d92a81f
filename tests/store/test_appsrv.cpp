#include "store/appsrv.h"

#include "launch/password.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace {

class appsrv_test : public ::testing::Test {
protected:
    void SetUp() override { fill_seedchars(); }

    // An ICA record as a new connection starts out, with the given columns changed.
    static connection_record ica(const std::string& name, const std::map<int, std::string>& set)
    {
        connection_record r;
        r[MC_NAME] = name;
        r[MC_TYPE] = "ICA";
        r[MC_SERVER] = "citrix1";
        r[MC_ICA_LOCATION] = "Default";
        r[MC_ICA_PROTOCOL] = "Default";
        r[MC_COLOURS] = "Default";
        r[MC_ICA_PROXY_TYPE] = "Default";
        r[MC_ICA_KEYBOARD_LATENCY] = "Off";
        r[MC_ICA_MOUSE_LATENCY] = "Off";
        r[MC_ICA_MASK] = "0";
        for (const auto& [column, value] : set)
            r[column] = value;
        return r;
    }

    // Replaces the value of the Password line by "*" and returns the value.
    static std::string take_password(std::string& section)
    {
        const size_t start = section.find("Password=");
        if (start == std::string::npos)
            return "";
        const size_t value = start + 9;
        const size_t end = section.find('\n', value);
        std::string encoded = section.substr(value, end - value);
        section.replace(value, end - value, "*");
        return encoded;
    }

    // Undoes the appsrv.ini encoding: length, seed, then each byte chained to the one before.
    static std::string decode(const std::string& hex)
    {
        auto byte = [&](size_t i) { return std::stoi(hex.substr(4 + 2 * i, 2), nullptr, 16); };
        const size_t count = std::stoul(hex.substr(0, 4), nullptr, 16);
        EXPECT_EQ(hex.size(), 4 + 2 * count);
        const int seed = byte(0);
        std::string clear;
        for (size_t i = 1; i < count; ++i)
            clear += static_cast<char>(byte(i) ^ (i == 1 ? seed | 0x43 : seed ^ byte(i - 1)));
        return clear;
    }
};

TEST_F(appsrv_test, a_plain_full_screen_connection)
{
    const connection_record r = ica("Desk", {{MC_WINDOW_SIZE, "Full Screen"},
                                             {MC_ICA_KEYBOARD_LATENCY, "On"},
                                             {MC_ICA_SPEEDSCREEN, "On"}});
    EXPECT_EQ(ica_section(r),
              "\n[Desk]\n"
              "WinStationDriver=ICA 3.0\n"
              "TransportDriver=TCP/IP\n"
              "DisableCtrlAltDel=On\n"
              "Compress=Off\n"
              "ProxyUseDefault=On\n"
              "ClientAudio=Off\n"
              "ZLMouseMode=0\n"
              "ZLKeyboardMode=1\n"
              "UseDefaultSettingForColormap=No\n"
              "NoWindowManager=TRUE\n"
              "UseFullScreen=Yes\n"
              "Address=citrix1\n");
}

TEST_F(appsrv_test, a_seamless_published_application_with_every_option)
{
    connection_record r = ica("Apps", {{MC_SERVER, "Notepad"},
                                       {MC_ICA_LOCATION, "10.0.0.1,10.0.0.2"},
                                       {MC_ICA_PROTOCOL, "SSL/TLS + HTTPS browser"},
                                       {MC_ICA_ENCRYPTION, "RC5 (128 bit)"},
                                       {MC_ICA_PROXY_TYPE, "SOCKS"},
                                       {MC_ICA_PROXY_HOST, "proxy.lan"},
                                       {MC_ICA_PROXY_PORT, "1080"},
                                       {MC_SOUND, "High"},
                                       {MC_ICA_AUDIO_INPUT, "Disabled"},
                                       {MC_ICA_MOUSE_LATENCY, "On"},
                                       {MC_ICA_KEYBOARD_LATENCY, "Automatic"},
                                       {MC_COLOURS, "256"},
                                       {MC_WINDOW_SIZE, "80%"},
                                       {MC_WORKDIR, "C:\\work"},
                                       {MC_PROGRAM, "not used"},
                                       {MC_DOMAIN, "CORP"},
                                       {MC_USERNAME, "ann"},
                                       {MC_ICA_SPEEDSCREEN, "Off"},
                                       {MC_ICA_MASK, "4030"}});  // 0xFBE: all but 0x40
    r[MC_PASSWORD] = pad_password("secret", "Apps");
    std::string section = ica_section(r);
    const std::string password = take_password(section);
    EXPECT_EQ(password.substr(0, 4), "0007");
    EXPECT_EQ(decode(password), "secret");
    EXPECT_EQ(section,
              "\n[Apps]\n"
              "WinStationDriver=ICA 3.0\n"
              "TransportDriver=TCP/IP\n"
              "DisableCtrlAltDel=Off\n"
              "DoNotUseDefaultCSL=On\n"
              "SSLEnable=On\n"
              "LocHttpBrowserAddress=10.0.0.1,10.0.0.2\n"
              "BrowserProtocol=HTTPonTCP\n"
              "EncryptionLevelSession=RC5 (128 bit)\n"
              "Compress=On\n"
              "UseAlternateAddress=On\n"
              "ProxyType=SOCKS\n"
              "ProxyHost=proxy.lan:1080\n"
              "ProxyUseDefault=Off\n"
              "EnableAudioInput=No\n"
              "AudioBandwidthLimit=0\n"
              "ClientAudio=On\n"
              "PersistentCacheEnabled=On\n"
              "ZLMouseMode=1\n"
              "ZLKeyboardMode=2\n"
              "DesiredColor=2\n"
              "ApproximateColors=On\n"
              "ApproximateColors=Off\n"
              "UseDefaultSettingForColormap=Yes\n"
              "ScreenPercent=80\n"
              "WorkDirectory=C:\\work\n"
              "Address=Notepad\n"
              "TWIMode=On\n"
              "InitialProgram=#Notepad\n"
              "Domain=CORP\n"
              "UserName=ann\n"
              "Password=*\n"
              "SpeedScreen=Off\n");
}

TEST_F(appsrv_test, a_tcp_browser_with_a_direct_connection_and_an_initial_program)
{
    const connection_record r = ica("Lab", {{MC_ICA_LOCATION, "browser.lan"},
                                            {MC_ICA_PROTOCOL, "TCP browser"},
                                            {MC_ICA_PROXY_TYPE, "None (direct)"},
                                            {MC_ICA_PROXY_HOST, "unused"},
                                            {MC_SOUND, "Low"},
                                            {MC_ICA_AUDIO_INPUT, "Enabled"},
                                            {MC_ICA_MOUSE_LATENCY, "Automatic"},
                                            {MC_COLOURS, "24-bit"},
                                            {MC_WINDOW_SIZE, "1024x768"},
                                            {MC_PROGRAM, "notepad.exe"},
                                            {MC_ICA_MASK, "288"}});  // audio, approximate on
    EXPECT_EQ(ica_section(r),
              "\n[Lab]\n"
              "WinStationDriver=ICA 3.0\n"
              "TransportDriver=TCP/IP\n"
              "DisableCtrlAltDel=On\n"
              "DoNotUseDefaultCSL=On\n"
              "LocTcpBrowserAddress=browser.lan\n"
              "BrowserProtocol=UDP\n"
              "Compress=Off\n"
              "ProxyType=None\n"
              "ProxyUseDefault=Off\n"
              "EnableAudioInput=Yes\n"
              "AudioBandwidthLimit=2\n"
              "ClientAudio=On\n"
              "ZLMouseMode=2\n"
              "ZLKeyboardMode=0\n"
              "DesiredColor=8\n"
              "UseDefaultSettingForColormap=No\n"
              "DesiredHRES=1024\n"
              "DesiredVRES=768\n"
              "Address=citrix1\n"
              "InitialProgram=notepad.exe\n");
}

// One or a few columns changed from a new connection, and lines the section must hold.
TEST_F(appsrv_test, single_keys)
{
    const std::pair<std::map<int, std::string>, std::string> rows[] = {
        {{{MC_ICA_PROXY_TYPE, "Secure (HTTPS)"}, {MC_ICA_PROXY_HOST, "gw.lan"}},
         "ProxyType=Secure (HTTPS)\nProxyHost=gw.lan\nProxyUseDefault=Off\n"},
        // The cut to six characters follows the encryption level, not the proxy type.
        {{{MC_ICA_PROXY_TYPE, "SOCKS/V5"}, {MC_ICA_ENCRYPTION, "Secure (HTTPS)"},
          {MC_ICA_PROXY_HOST, "gw.lan"}, {MC_ICA_PROXY_PORT, "8080"}},
         "ProxyType=SOCKS/\nProxyHost=gw.lan:8080\nProxyUseDefault=Off\n"},
        {{{MC_ICA_MASK, "32"}, {MC_SOUND, "Medium"}},
         "EnableAudioInput=Yes\nAudioBandwidthLimit=1\nClientAudio=On\n"},
        {{{MC_COLOURS, "16"}, {MC_ICA_MASK, "768"}},
         "DesiredColor=1\nUseDefaultSettingForColormap=No\n"},
        {{{MC_COLOURS, "15-bit"}}, "DesiredColor=3\n"},
        {{{MC_COLOURS, "16-bit"}}, "DesiredColor=4\n"},
        {{{MC_ICA_MASK, "not a number"}, {MC_ICA_PROTOCOL, "HTTP browser"}},
         "DisableCtrlAltDel=On\nLocHttpBrowserAddress=Default\nBrowserProtocol=HTTPonTCP\n"},
    };
    for (const auto& [set, lines] : rows) {
        const std::string section = ica_section(ica("K", set));
        EXPECT_NE(section.find(lines), std::string::npos) << section;
    }
}

// The end of the section, from the colour map line on.
TEST_F(appsrv_test, window_size_and_program_keys)
{
    const std::string digits(101, '7');
    const std::pair<std::map<int, std::string>, std::string> rows[] = {
        {{{MC_ICA_MASK, "1024"}}, "Yes\nAddress=citrix1\n"},
        {{{MC_ICA_MASK, "2"}, {MC_SERVER, "Mail"}}, "No\nAddress=Mail\nInitialProgram=#Mail\n"},
        {{{MC_ICA_MASK, "2"}, {MC_SERVER, ""}, {MC_PROGRAM, "x.exe"}}, "No\nAddress=\n"},
        {{{MC_ICA_MASK, "2048"}}, "No\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, "50%x"}}, "No\nScreenPercent=50\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, "800x600x2"}},
         "No\nDesiredHRES=800\nDesiredVRES=600x2\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, digits + "%"}}, "No\nScreenPercent=" + digits + "\nAddress=citrix1\n"},
        // "%" and "x" beyond the first 102 bytes are not seen.
        {{{MC_WINDOW_SIZE, digits + "7%x"}}, "No\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, "Use Default"}}, "No\nAddress=citrix1\n"},
        {{{MC_DOMAIN, "CORP"}, {MC_USERNAME, "ann"}, {MC_ICA_SPEEDSCREEN, "off"}},
         "No\nAddress=citrix1\nDomain=CORP\nUserName=ann\n"},
    };
    for (const auto& [set, tail] : rows) {
        const std::string section = ica_section(ica("K", set));
        EXPECT_TRUE(section.ends_with("UseDefaultSettingForColormap=" + tail)) << section;
    }
}

TEST_F(appsrv_test, the_password_line_holds_up_to_253_characters)
{
    // The end characters 'a' ^ 0xE9 point before the start: the stored text is not cut.
    for (const size_t length : {253u, 254u}) {
        connection_record r = ica("Big", {});
        r[MC_PASSWORD] = std::string(length - 1, 'a') + "\xe9";
        std::string section = ica_section(r);
        const std::string password = take_password(section);
        if (length == 253) {
            EXPECT_EQ(password.size(), 512u);
            EXPECT_EQ(password.substr(0, 4), "00fe");
        } else {
            EXPECT_EQ(password, "");
        }
    }
}

std::string header_of(GtkListStore* list)
{
    char* text = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&text, &size);
    write_appsrv_header(file, GTK_TREE_MODEL(list));
    std::fclose(file);
    std::string result(text, size);
    std::free(text);
    return result;
}

TEST_F(appsrv_test, the_header_lists_the_ica_connections_only)
{
    GtkListStore* list = create_master_store();
    const std::pair<const char*, const char*> rows[] = {
        {"Alpha", "Web"}, {"Beta", "ICA"}, {"Beta", "RDP"}, {"Delta", "ica"}, {"Gamma", "ICA"}};
    for (const auto& [name, type] : rows) {
        connection_record r;
        r[MC_NAME] = name;
        r[MC_TYPE] = type;
        insert_master_row(list, -1, r);
    }
    EXPECT_EQ(header_of(list), "[WFClient]\nVersion=1\n\n[ApplicationServers]\nBeta=\nGamma=\n");
    gtk_list_store_clear(list);
    connection_record rdp;
    rdp[MC_NAME] = "Desk";
    rdp[MC_TYPE] = "RDP";
    insert_master_row(list, -1, rdp);
    EXPECT_EQ(header_of(list), "[WFClient]\nVersion=1\n\n[ApplicationServers]\n");
    g_object_unref(list);
}

}  // namespace
