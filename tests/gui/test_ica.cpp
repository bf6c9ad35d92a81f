// The ICA editor's own rules, the Server Location dialog and the Citrix global
// settings, driven through their windows.
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "gui/gui_support.h"
#include "ica/global_settings.h"
#include "platform/paths.h"
#include "store/ica_paths.h"
#include "ui/binding.h"
#include "ui/widgets.h"

namespace {

class ica_test : public admin_test {
protected:
    GtkWidget* open_ica(const std::string& name = "") { return window = open(ica_opener, "ICA connection", name, "ICA"); }
    GtkWidget* w(const char* name) { return named(window, name); }

    GtkWidget* window = nullptr;
};

TEST_F(ica_test, controls_follow_their_rules)
{
    ASSERT_TRUE(open_ica());
    screenshot_pages(window, "pages", "ica-editor-");
    // Which of these can be used, and the option bits, after each step.
    auto usable = [&] {
        std::string on;
        for (const char* name : {"seamless", "program", "workdir", "window-size", "mapping-Default", "sound-quality",
                                 "microphone", "reliability-port", "proxy-address", "proxy-port"})
            on += sensitive(window, name) ? "1" : "0";
        return on;
    };
    const struct { const char* control; const char* value; const char* usable; const char* flags; } steps[] = {
        {"name", "Desk", "0111011000", "01065"},
        {"published-radio", "on", "1000011000", "03114"},  // seamless is turned on with it
        {"seamless", "off", "1001011000", "01066"},        // and may still be turned off
        {"server-radio", "on", "0111011000", "01065"},
        {"colours-256", "on", "0111111000", "01065"},
        {"sound", "off", "0111100000", "01033"},
        {"reliability", "on", "0111100000", "01033"},  // no handler: no bit, the port stays off
        {"proxy-type", "SOCKS", "0111100011", "01033"},
        {"proxy-address", "proxy.lan", "0111100011", "01033"},
        {"proxy-port", "1080", "0111100011", "01033"},
        {"proxy-type", "None (direct)", "0111100000", "01033"},
    };
    for (const auto& step : steps) {
        if (std::string(step.value) == "on" || std::string(step.value) == "off")
            set_box(window, step.control, std::string(step.value) == "on");
        else
            type_text(window, step.control, step.value);
        EXPECT_EQ(usable(), step.usable) << step.control << " " << step.value;
        EXPECT_EQ(five_digits(connect_info.flags), step.flags) << step.control << " " << step.value;
    }
    EXPECT_EQ(text_of(window, "proxy-address") + text_of(window, "proxy-port"), "");
    click(window, "_Save");
    // Server, compression and the default colour map; no sound, and no 64.
    EXPECT_EQ(master_row("Desk", "ICA")[MC_ICA_MASK], "01033");
}

TEST_F(ica_test, refresh_lists_what_pnabrowse_writes)
{
    add_program(ica_root + "/pnabrowse",
                "printf '%s\\n' \"$@\" > " + root / "pnabrowse.args" + "\n"
                "case \"$2\" in fail) exit 3;; quiet) exit 0;;\n"
                "  many) seq -f '\"App %g\"' 10000; printf '\"Caf\\351\"\\n'; exit 0;; esac\n"
                "printf '\"%s\"\\n' Word 'Mail \"Pro\"' 'Excel 2003'");
    ASSERT_TRUE(open_ica());
    click(window, "refresh");  // no default server location in the file
    EXPECT_EQ(messages->shown, std::vector<std::string>{"\nPlease specify a default server location.\n"});

    std::string& group = connect_info.text[MC_ICA_LOCATION];
    const auto choices = [&] { return gtk_combo_box_get_model(GTK_COMBO_BOX(w("server"))); };
    group = "it's; touch " + root / "injected";
    set_box(window, "published-radio", true);
    click(window, "refresh");
    EXPECT_EQ(read_file_text(root / "pnabrowse.args"), "-A\n" + group + "\n");
    EXPECT_FALSE(path_exists(root / "injected"));
    ASSERT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 3);
    gtk_combo_box_set_active(GTK_COMBO_BOX(w("server")), 1);
    EXPECT_EQ(combo_text(w("server")), "Mail \"Pro\"");

    for (const char* address : {"fail", "quiet"}) {
        group = address;
        set_box(window, "server-radio", true);
        click(window, "refresh");
        EXPECT_EQ(read_file_text(root / "pnabrowse.args"), std::string("-S\n") + address + "\n");
    }
    // A failing run changes nothing; one that writes nothing leaves no choices.
    EXPECT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 0);
    EXPECT_EQ(messages->shown.size(), 1u);

    // A long list, whose Latin-1 name is chosen and saved as pnabrowse wrote it.
    group = "many";
    click(window, "refresh");
    ASSERT_EQ(gtk_tree_model_iter_n_children(choices(), nullptr), 10001);
    gtk_combo_box_set_active(GTK_COMBO_BOX(w("server")), 10000);
    EXPECT_EQ(text_of(window, "server"), "Caf\u00e9");
    type_text(window, "name", "Long");
    click(window, "_Save");
    EXPECT_EQ(master_row("Long", "ICA")[MC_SERVER], "Caf\xe9");
}

TEST_F(ica_test, server_location_custom_and_default_groups)
{
    load(master_text(master_record("Desk", "ICA", false, "1494", {{6, "srv1:1494"}, {7, "Default"}, {34, "01065"}})));
    ASSERT_TRUE(open_ica("Desk"));
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(w("primary-server"))), "Primary Server: srv1:1494");
    auto add = [&](const char* address, const char* port) {
        click(find_window("Server Location"), "_Add");
        GtkWidget* adder = find_window("Add Server Address");
        type_text(adder, "server-address", address);
        type_text(adder, "server-port", port);
        click(adder, "_Ok");
    };

    click(window, "Server Location");
    GtkWidget* dialog = find_window("Server Location");
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(gtk_widget_get_visible(window));
    type_text(dialog, "server-group", "Custom");
    add("srv1", "1494");
    EXPECT_EQ(choices(dialog, "server-addresses"), "srv1:1494\n");
    add("srv2", "");
    add("", "99");  // no address: nothing added
    EXPECT_EQ(choices(dialog, "server-addresses"), "srv2\n");
    save_screenshot(dialog, "ica-server-location");
    click(dialog, "_Save");
    EXPECT_TRUE(gtk_widget_get_visible(window));
    EXPECT_EQ(connect_info.text[MC_ICA_LOCATION], "srv2");
    EXPECT_EQ(connect_info.text[MC_ICA_PROTOCOL], "TCP + HTTP browser");
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(w("primary-server"))), "Primary Server: srv2");

    click(window, "Server Location");
    dialog = find_window("Server Location");
    type_text(dialog, "server-group", "Default");
    add("h1", "");
    add("h2", "8080");
    type_text(dialog, "server-protocol", "TCP browser");
    add("t1", "");
    click(dialog, "_Save");
    EXPECT_EQ(connect_info.text[MC_ICA_LOCATION], "Default");
    EXPECT_EQ(connect_info.text[MC_ICA_PROTOCOL], "Default");
    EXPECT_EQ(read_file_text(wfclient_file),
              "[WFClient]\nBrowserProtocol=UDP\nSSLEnable=Off\nHttpBrowserAddress=h1\n"
              "HttpBrowserAddress2=h2:8080\nTcpBrowserAddress=t1\nVersion = 2\n\n"
              "KeyboardLayout = (User Profile)\nKeyboardMappingFile = automatic.kbd\n"
              "KeyboardDescription = Automatic (User Profile)\nKeyboardType=(Default)\n"
              "AllowAudioInput=True\nBrowserTimeout=2000\n");
    EXPECT_TRUE(messages->shown.empty());
}

TEST_F(ica_test, global_settings_pages_and_save)
{
    write_file(wfclient_file, "[WFClient]\nKeyboardLayout = (User Profile)\nComPort1=/dev/ttyS0\n"
                              "ComPort2=/dev/ttyS1\nComPort3=/dev/ttyUSB0\nLastComPortNum=3\n"
                              "AllowAudioInput=True\n");
    ica_global_dialog(nullptr, nullptr);
    GtkWidget* settings = window = find_window("Settings");
    ASSERT_TRUE(settings);
    screenshot_pages(settings, "pages", "ica-global-");
    type_text(window, "hotkey-key-1", "+");
    type_text(window, "hotkey-shift-15", "(none)");

    GtkTreeView* drives = GTK_TREE_VIEW(w("drives"));
    GtkTreeModel* drive_model = gtk_tree_view_get_model(drives);
    GtkTreeIter c;
    gtk_tree_model_get_iter_from_string(drive_model, &c, "2");
    gtk_list_store_set(GTK_LIST_STORE(drive_model), &c, DRIVE_PATH, "/home/user", -1);
    for (int column : {1, 2}) {  // "Enable" and "Read" clicked on drive C
        GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(gtk_tree_view_get_column(drives, column)));
        g_signal_emit_by_name(cells->data, "toggled", "2");
        g_list_free(cells);
    }

    select_row(settings, "com-ports", "1");
    click(settings, "com-delete");
    select_row(settings, "com-ports", "0");
    click(settings, "com-down");
    GtkTreePath* moved = gtk_tree_path_new_from_string("1");
    EXPECT_TRUE(gtk_tree_selection_path_is_selected(gtk_tree_view_get_selection(GTK_TREE_VIEW(w("com-ports"))), moved));
    gtk_tree_path_free(moved);
    click(settings, "com-down");  // the last row: nothing to swap with

    click(settings, "_Save");
    EXPECT_FALSE(find_window("Settings"));
    const std::string text = read_file_text(wfclient_file);
    for (const char* lines : {"[WFClient]\nKeyboardLayout=(User Profile)\nHotkey15Char=F12\nHotkey15Shift=(none)\n",
                              "Hotkey1Char=Plus\nHotkey1Shift=Ctrl+Shift\nDriveEnabledC=Yes\nDrivePathC=/home/user\n"
                              "DriveReadAccessC=0\nDriveWriteAccessC=1\nComPort1=/dev/ttyUSB0\n"
                              "ComPort3=/dev/ttyS0\nLastComPortNum=2\nAllowAudioInput=True\n"
                              "BrowserProtocol=HTTPonTCP\nSSLEnable=Off\n"})
        EXPECT_NE(text.find(lines), std::string::npos) << lines << "\n---\n" << text;
    EXPECT_EQ(text.find("ComPort2"), std::string::npos);
    EXPECT_TRUE(messages->shown.empty());
}

// Pasted control characters scramble to anything, NUL included; Save must survive it.
TEST_F(ica_test, any_password_is_saved)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string passwords[] = {"\x14", "\x01\x02", "\t", std::string(300, 'p')};
    for (const std::string& password : passwords) {
        EXPECT_EXIT(
            {
                open_ica();
                type_text(window, "name", "Desk");
                type_text(window, "password", password.c_str());
                click(window, "_Save");
                std::exit(master_row("Desk", "ICA")[MC_NAME] == "Desk" ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << "password of " << password.size() << " characters";
    }
}

}  // namespace
