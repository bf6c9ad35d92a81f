#include "store/appsrv.h"

#include "store_fixture.h"

namespace {

using columns = std::map<int, std::string>;

// An ICA record as a new connection starts out, with the given columns changed.
connection_record ica(const std::string& name, const columns& set)
{
    columns all = set;  // keeps its own values over the defaults merged in below
    all.merge(columns{{MC_NAME, name}, {MC_TYPE, "ICA"}, {MC_SERVER, "citrix1"},
                      {MC_ICA_LOCATION, "Default"}, {MC_ICA_PROTOCOL, "Default"},
                      {MC_COLOURS, "Default"}, {MC_ICA_PROXY_TYPE, "Default"}, {MC_ICA_MASK, "0"},
                      {MC_ICA_KEYBOARD_LATENCY, "Off"}, {MC_ICA_MOUSE_LATENCY, "Off"}});
    connection_record record;
    for (const auto& [column, value] : all)
        record[column] = value;
    return record;
}

// Replaces the value of the Password line by "*" and returns the value.
std::string take_password(std::string& section)
{
    const size_t value = section.find("Password=") + 9;
    if (value == std::string::npos + 9)
        return "";
    const std::string encoded = section.substr(value, section.find('\n', value) - value);
    section.replace(value, encoded.size(), "*");
    return encoded;
}

// Undoes the appsrv.ini encoding: length, seed, then each byte chained to the one before.
std::string decode(const std::string& hex)
{
    auto byte = [&](size_t i) { return std::stoi(hex.substr(4 + 2 * i, 2), nullptr, 16); };
    const size_t count = std::stoul(hex.substr(0, 4), nullptr, 16);
    EXPECT_EQ(hex.size(), 4 + 2 * count);
    std::string clear;
    for (size_t i = 1; i < count; ++i)
        clear += static_cast<char>(byte(i) ^ (i == 1 ? byte(0) | 0x43 : byte(0) ^ byte(i - 1)));
    return clear;
}

// Desk: full screen without a window manager. Lab, mask 296: compression, audio,
// approximate colours (written only with 256 colours). Apps: a seamless published
// application with every option; mask 0xFBE is all but 0x40.
TEST(appsrv, representative_sections)
{
    fill_seedchars();
    const std::string desk = ica_section(ica("Desk", {{MC_WINDOW_SIZE, "Full Screen"},
                                                      {MC_ICA_KEYBOARD_LATENCY, "On"},
                                                      {MC_ICA_SPEEDSCREEN, "On"}}));
    const std::string lab = ica_section(ica("Lab", {{MC_ICA_LOCATION, "browser.lan"}, {MC_SOUND, "Low"},
                                                    {MC_ICA_PROTOCOL, "TCP browser"}, {MC_COLOURS, "24-bit"},
                                                    {MC_ICA_PROXY_TYPE, "None (direct)"},
                                                    {MC_ICA_PROXY_HOST, "unused"},
                                                    {MC_ICA_AUDIO_INPUT, "Enabled"}, {MC_PROGRAM, "np.exe"},
                                                    {MC_ICA_MOUSE_LATENCY, "Automatic"},
                                                    {MC_WINDOW_SIZE, "1024x768"}, {MC_ICA_MASK, "296"}}));
    connection_record apps = ica(
        "Apps", {{MC_SERVER, "Notepad"}, {MC_ICA_LOCATION, "10.0.0.1,10.0.0.2"},
                 {MC_ICA_PROTOCOL, "SSL/TLS + HTTPS browser"}, {MC_ICA_ENCRYPTION, "RC5 (128 bit)"},
                 {MC_ICA_PROXY_TYPE, "SOCKS"}, {MC_ICA_PROXY_HOST, "proxy.lan"},
                 {MC_ICA_PROXY_PORT, "1080"}, {MC_SOUND, "High"}, {MC_ICA_AUDIO_INPUT, "Disabled"},
                 {MC_ICA_MOUSE_LATENCY, "On"}, {MC_ICA_KEYBOARD_LATENCY, "Automatic"},
                 {MC_COLOURS, "256"}, {MC_WINDOW_SIZE, "80%"}, {MC_WORKDIR, "C:\\work"},
                 {MC_PROGRAM, "not used"}, {MC_DOMAIN, "CORP"}, {MC_USERNAME, "ann"},
                 {MC_ICA_SPEEDSCREEN, "Off"}, {MC_ICA_MASK, "4030"}});
    apps[MC_PASSWORD] = pad_password("secret", "Apps");
    std::string section = ica_section(apps);
    const std::string password = take_password(section);
    EXPECT_EQ(password.substr(0, 4), "0007");
    EXPECT_EQ(decode(password), "secret");
    EXPECT_EQ(desk + lab + section, read_file_text(golden("sections.ini")));
}

// Columns changed from a new connection, and lines the section must hold; a leading "$"
// asks for the end of the section from the colour map line on.
TEST(appsrv, single_keys)
{
    const std::string digits(101, '7');
    const std::pair<columns, std::string> rows[] = {
        {{{MC_ICA_PROXY_TYPE, "Secure (HTTPS)"}, {MC_ICA_PROXY_HOST, "gw.lan"}},
         "ProxyType=Secure (HTTPS)\nProxyHost=gw.lan\nProxyUseDefault=Off\n"},
        // The cut to six characters follows the encryption level, not the proxy type.
        {{{MC_ICA_PROXY_TYPE, "SOCKS/V5"}, {MC_ICA_ENCRYPTION, "Secure (HTTPS)"},
          {MC_ICA_PROXY_HOST, "gw.lan"}, {MC_ICA_PROXY_PORT, "8080"}},
         "ProxyType=SOCKS/\nProxyHost=gw.lan:8080\n"},
        {{{MC_ICA_PROTOCOL, "HTTP browser"}},
         "DisableCtrlAltDel=On\nLocHttpBrowserAddress=Default\nBrowserProtocol=HTTPonTCP\n"},
        {{{MC_COLOURS, "16"}, {MC_ICA_MASK, "768"}}, "DesiredColor=1\nUseDefault"},
        {{{MC_COLOURS, "256"}, {MC_ICA_MASK, "512"}}, "DesiredColor=2\nApproximateColors=Off\nUse"},
        {{{MC_ICA_MASK, "2"}, {MC_SERVER, ""}, {MC_PROGRAM, "x.exe"}}, "$No\nAddress=\n"},
        {{{MC_ICA_MASK, "2048"}}, "$No\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, "50%x%"}}, "$No\nScreenPercent=50\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, "800x600x2"}},
         "$No\nDesiredHRES=800\nDesiredVRES=600x2\nAddress=citrix1\n"},
        {{{MC_WINDOW_SIZE, digits + "%"}}, "$No\nScreenPercent=" + digits + "\nAddress=citrix1\n"},
        // "%" and "x" beyond the first 102 bytes are not seen.
        {{{MC_WINDOW_SIZE, digits + "7%x"}}, "$No\nAddress=citrix1\n"},
        // A mask that is no number counts as 0; only "Off" exactly turns SpeedScreen off.
        {{{MC_ICA_MASK, "x"}, {MC_USERNAME, "ann"}, {MC_ICA_SPEEDSCREEN, "off"}},
         "$No\nAddress=citrix1\nUserName=ann\n"},
    };
    for (const auto& [set, lines] : rows) {
        const std::string section = ica_section(ica("K", set));
        if (lines.starts_with('$'))
            EXPECT_TRUE(section.ends_with("UseDefaultSettingForColormap=" + lines.substr(1)))
                << section;
        else
            EXPECT_NE(section.find(lines), std::string::npos) << section;
    }
}

TEST(appsrv, the_password_line_holds_up_to_253_characters)
{
    fill_seedchars();
    // The end characters 'a' ^ 0xE9 point before the start: the stored text is not cut.
    for (const size_t length : {253u, 254u}) {
        std::string section = ica_section(ica("Big", {{MC_PASSWORD, std::string(length - 1, 'a') + "\xe9"}}));
        const std::string password = take_password(section);
        EXPECT_EQ(password.substr(0, 4) + " " + std::to_string(password.size()), length == 253 ? "00fe 512" : " 0");
    }
}

// Listed in list order, the type compared exactly.
TEST(appsrv, the_header_lists_the_ica_connections_only)
{
    GtkListStore* list = create_master_store();
    for (const auto& [name, type] : {std::pair{"Alpha", "Web"}, {"Delta", "ica"}, {"Zed", "ICA"}, {"Beta", "ICA"}})
        insert_master_row(list, -1, ica(name, {{MC_TYPE, type}}));
    char* text = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&text, &size);
    write_appsrv_header(file, GTK_TREE_MODEL(list));
    std::fclose(file);
    EXPECT_EQ(std::string(text, size), "[WFClient]\nVersion=1\n\n[ApplicationServers]\nZed=\nBeta=\n");
    std::free(text);
    g_object_unref(list);
}

}  // namespace
