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
// approximate colours (written only with 256 colours). Office: a seamless published
// application with every option; mask 0xFBE is all but 0x40. The list holds other types
// ("ica" too): only ICA connections are listed, in list order, not by name. Loaded, the
// list is sorted; with Desk moved back to the end it is saved as the file was, with the
// Web row's every column and the header's GUI line.
TEST_F(store_test, a_loaded_list_saves_back_byte_for_byte_and_describes_its_ica_rows)
{
    fill_seedchars();
    show_gui = 0;
    make_connection_list(master_connection_list, golden("ica.master").c_str(), 35);
    GtkTreeIter desk;
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(master_connection_list), &desk);
    gtk_list_store_move_before(master_connection_list, &desk, nullptr);
    save();
    std::string appsrv = read_file_text(root / "etc/.kestrel/appsrv.ini");
    const std::string password = take_password(appsrv);
    EXPECT_EQ(decode(password), "K");
    EXPECT_EQ(appsrv, read_file_text(golden("appsrv.ini")));
    EXPECT_EQ(master_file(), read_file_text(golden("ica.master")));
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
        // The password line holds up to 253 characters. The end characters 'a' ^ 0xE9 point
        // before the start: the stored text is not cut.
        {{{MC_PASSWORD, std::string(252, 'a') + "\xe9"}}, "\nPassword=00fe"},
        {{{MC_PASSWORD, std::string(253, 'a') + "\xe9"}}, "$No\nAddress=citrix1\n"},
    };
    fill_seedchars();
    for (const auto& [set, lines] : rows) {
        const std::string section = ica_section(ica("K", set));
        if (lines.starts_with('$'))
            EXPECT_TRUE(section.ends_with("UseDefaultSettingForColormap=" + lines.substr(1)))
                << section;
        else
            EXPECT_NE(section.find(lines), std::string::npos) << section;
    }
}

std::string scramble(std::string text, const char* key)
{
    encrypt_password(text.data(), key);
    return text;
}

TEST(password, scrambling_is_symmetric_keyed_and_stops_at_position_22)
{
    fill_seedchars();
    EXPECT_EQ(scramble("secret", "Office"), "t`kber");
    EXPECT_EQ(scramble("t`kber", "Office"), "secret");
    const std::string text = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcd";
    for (const char* key : {"Office", "A much longer connection name"})
        EXPECT_EQ(scramble(text, key).substr(22), text.substr(22)) << key;
    // "Office" scrambles position 0 with 7: 0x07 becomes 0 and the rest is not touched.
    EXPECT_EQ(scramble(std::string("\x07" "abc", 4), "Office"), std::string("\0abc", 4));
}

// Short passwords are padded to 33 characters, the first and last telling the length;
// longer ones are stored as they are and cut back where their end characters point.
TEST(password, stored_forms_by_password_length)
{
    fill_seedchars();
    const std::string p = "Kestrel-Pass-0123456789abcdefgh";  // 31 characters
    const struct { std::string clear; size_t stored_length; std::string comes_back; } rows[] = {
        {"K", 33, "K"}, {p.substr(0, 22), 33, p.substr(0, 22)}, {p.substr(0, 23), 33, p.substr(0, 23)},
        {p, 33, p}, {"", 0, ""},
        // 'L' ^ 'P' = 28, 'L' ^ 'D' = 8; 'L' ^ 'i' points past the end: not cut.
        {p + "P", 32, "Kestrel-Pass-0123456789abcde"}, {p + "ijklmnopD", 40, "Kestrel-"}, {p + "i", 32, p + "i"},
    };
    for (const auto& r : rows) {
        const std::string stored = pad_password(r.clear, "Office");
        ASSERT_EQ(stored.size(), r.stored_length) << r.clear;
        EXPECT_EQ(unpad_password(stored, "Office"), r.comes_back) << r.clear;
    }
    EXPECT_EQ(pad_password("K", "Office"), "LABCD67892345./01QRSTMNOPIJKLEFGM");
    EXPECT_EQ(pad_password(p.substr(0, 22), "Office"), "L`{drch*Vqvw93 <:0'3=*AVtbqaihSsZ");
    // Stored by others: cut to nothing, cut, the length itself, past the end, negative.
    const std::pair<std::string, std::string> foreign[] = {
        {"a", ""}, {"aabc", "fd"}, {"aaae", "fdiu"}, {"a\x7f", "fz"}, {"a\xe1", "f\xe4"}};
    for (const auto& [stored, clear] : foreign)
        EXPECT_EQ(unpad_password(stored, "Office"), clear) << stored;
}

}  // namespace
