// The ICA editor, the Server Location dialog and the Citrix global settings, driven
// through their windows in a private root.
#include "editors/connect_info.h"
#include "editors/editors.h"
#include "editors/form.h"
#include "gui/gui_support.h"
#include "ica/global_settings.h"
#include "ica/paths.h"
#include "launch/password.h"
#include "launch/spawn.h"
#include "platform/log.h"
#include "platform/paths.h"
#include "shell/globals.h"
#include "shell/widgets.h"
#include "store/models.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class ica_test : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/user", "bin"})
            make_dirs(root / dir);
        write_file(root / "etc/passwd", "tester:x:" + std::to_string(getuid()) + ":" +
                                            std::to_string(getgid()) + "::/home/user:/bin/sh\n");
        fill_seedchars();
        tmp_dir = root / "tmp/.kestrel";
        ica_dir = root / "etc/.kestrel";
        wfclient_file = ica_dir + "/wfclient.ini";
        ica_root = root / "opt/ICAClient";
        selected_user_name = "tester";
        current_user_filename = root / "home/user/kestrel.inf";
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
        selected_user_connection_tree = create_user_tree_store();
        misc_widgets = g_new0(GtkWidget*, 3);
    }

    void TearDown() override
    {
        for (const char* title : {"ICA connection", "Server Location", "Settings", "Add Server Address"})
            while (GtkWidget* window = find_window(title))
                gtk_widget_destroy(window);
        pump_events(20);
        g_object_unref(master_connection_list);
        g_object_unref(current_user_connection_tree);
        g_object_unref(selected_user_connection_tree);
        g_free(misc_widgets);
        misc_widgets = nullptr;
    }

    GtkWidget* open_editor_on(const char* row)
    {
        GtkTreePath* path = row ? gtk_tree_path_new_from_string(row) : nullptr;
        ica_dialog(path);
        if (path)
            gtk_tree_path_free(path);
        window = find_window("ICA connection");
        return window;
    }
    GtkWidget* w(const char* name, GtkWidget* in = nullptr) { return find_named_widget(in ? in : window, name); }
    void set_on(const char* name, bool on = true)
    {
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(w(name)), on);
    }
    bool sensitive(const char* name) { return gtk_widget_is_sensitive(w(name)); }
    void type(const char* name, const char* text) { gtk_entry_set_text(GTK_ENTRY(w(name)), text); }
    void click(GtkWidget* in, const char* label) { gtk_button_clicked(GTK_BUTTON(find_button(in, label))); }
    connection_record master_row(const char* row)
    {
        GtkTreeIter iter;
        gtk_tree_model_get_iter_from_string(GTK_TREE_MODEL(master_connection_list), &iter, row);
        return read_master_row(GTK_TREE_MODEL(master_connection_list), &iter);
    }
    void add_program(const std::string& path, const std::string& body)
    {
        write_file(path, "#!/bin/sh\n" + body + "\n");
        chmod(path.c_str(), 0755);
    }

    temp_dir root;
    scoped_root rooted{root.path()};
    message_recorder messages;
    GtkWidget* window = nullptr;
};

TEST_F(ica_test, new_connection_saved_with_defaults)
{
    ASSERT_TRUE(open_editor_on(nullptr));
    GtkWidget* pages = w("pages");
    for (int i = 0; i < gtk_notebook_get_n_pages(GTK_NOTEBOOK(pages)); ++i) {
        gtk_notebook_set_current_page(GTK_NOTEBOOK(pages), i);
        save_screenshot(window, "ica-editor-" + std::to_string(i + 1));
    }
    type("name", "Desk");
    click(window, "_Save");
    EXPECT_FALSE(find_window("ICA connection"));
    const connection_record r = master_row("0");
    const std::string expected[] = {
        "Desk", "ICA", "", "1494", "1", "", "Default", "Default", "", "", "", "", "", "Default",
        "Default", "Med", "Disabled", "2598", "On", "Basic", "", "Default", "", "", "", "441",
        "Off", "Auto", "", "", "", "", "", "0", "01065"};
    for (int c = 0; c < 35; ++c)
        EXPECT_EQ(r[c], expected[c]) << "column " << c;
    EXPECT_TRUE(r.ping_first);
    EXPECT_TRUE(messages.shown.empty());
    // The wfclient.ini that opening the editor made: no client copy, so the nine lines.
    EXPECT_EQ(read_file_text(wfclient_file).substr(0, 24), "[WFClient]\nVersion = 2\n\n");
}

TEST_F(ica_test, edited_row_comes_back_column_for_column)
{
    connection_record stored;
    const char* columns[] = {
        "Desk", "ICA", "", "1495", "7", "Mail", "srv1:1494", "TCP browser", "mail.exe", "C:\\work",
        "ann", "", "CORP", "1024x768", "256", "Low", "Enabled", "2599", "Off", "RC5 (128 bit)", "",
        "SOCKS", "proxy.lan", "1080", "relay.lan", "443", "On", "Off", "", "", "", "", "", "0",
        // Published application, smartcard, disk cache, alternate address, exact colours,
        // seamless: every bit away from its default.
        "02710"};
    for (int c = 0; c < 35; ++c)
        stored[c] = columns[c];
    stored[MC_PASSWORD] = pad_password("s3cret pass", "Desk");
    stored.from_file = true;
    insert_master_row(master_connection_list, -1, stored);
    ASSERT_TRUE(open_editor_on("0"));
    EXPECT_FALSE(sensitive("name"));
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(w("primary-server"))), "Primary Server: srv1:1494");
    click(window, "_Save");
    const connection_record saved = master_row("0");
    for (int c = 0; c < MC_COUNT; ++c)
        EXPECT_EQ(saved[c], stored[c]) << "column " << c;
    EXPECT_EQ(saved.from_file, stored.from_file);
    EXPECT_EQ(saved.ping_first, stored.ping_first);
}

TEST_F(ica_test, controls_follow_their_rules)
{
    ASSERT_TRUE(open_editor_on(nullptr));
    EXPECT_FALSE(sensitive("seamless"));
    EXPECT_FALSE(sensitive("proxy-address"));
    EXPECT_FALSE(sensitive("reliability-port"));
    EXPECT_FALSE(sensitive("mapping-Default"));

    set_on("published-radio");
    EXPECT_TRUE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(w("seamless"))));
    EXPECT_TRUE(sensitive("seamless"));
    EXPECT_FALSE(sensitive("program") || sensitive("workdir") || sensitive("window-size"));
    EXPECT_EQ(connect_info.flags & (1 | 2 | 2048), 2u | 2048u);
    set_on("seamless", false);  // the user may still turn it off
    EXPECT_TRUE(sensitive("window-size"));
    set_on("server-radio");
    EXPECT_FALSE(sensitive("seamless"));
    EXPECT_TRUE(sensitive("program") && sensitive("workdir"));
    EXPECT_EQ(connect_info.flags & (1 | 2 | 2048), 1u);

    set_on("colours-256");
    EXPECT_TRUE(sensitive("mapping-Default"));
    set_on("sound", false);
    EXPECT_FALSE(sensitive("sound-quality") || sensitive("microphone"));
    const unsigned long before = connect_info.flags;
    set_on("reliability");  // no handler: no bit, the port stays disabled
    EXPECT_EQ(connect_info.flags, before);
    EXPECT_FALSE(sensitive("reliability-port"));

    set_combo_text(w("proxy-type"), "SOCKS");
    EXPECT_TRUE(sensitive("proxy-address") && sensitive("proxy-port"));
    type("proxy-address", "proxy.lan");
    type("proxy-port", "1080");
    set_combo_text(w("proxy-type"), "None (direct)");
    EXPECT_FALSE(sensitive("proxy-address") || sensitive("proxy-port"));
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(w("proxy-address"))), "");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(w("proxy-port"))), "");

    type("name", "Desk");
    click(window, "_Save");
    // Server, compression and the default colour map; no sound, and no 64.
    EXPECT_EQ(master_row("0")[MC_ICA_MASK], "01033");
}

TEST_F(ica_test, refresh_lists_what_pnabrowse_writes)
{
    add_program(ica_root + "/pnabrowse",
                "printf '%s\\n' \"$@\" > " + root / "pnabrowse.args" + "\n"
                "case \"$2\" in fail) exit 3;; quiet) exit 0;; esac\n"
                "printf '\"%s\"\\n' Word 'Mail \"Pro\"' 'Excel 2003'");
    ASSERT_TRUE(open_editor_on(nullptr));
    GtkWidget* refresh = w("refresh");
    gtk_button_clicked(GTK_BUTTON(refresh));  // no default server location in the file
    EXPECT_EQ(messages.shown, std::vector<std::string>{"\nPlease specify a default server location.\n"});

    std::string& group = connect_info.text[MC_ICA_LOCATION];
    GtkTreeModel* choices = gtk_combo_box_get_model(GTK_COMBO_BOX(w("server")));
    group = "it's; touch " + root / "injected";
    set_on("published-radio");
    gtk_button_clicked(GTK_BUTTON(refresh));
    EXPECT_EQ(read_file_text(root / "pnabrowse.args"), "-A\n" + group + "\n");
    EXPECT_FALSE(path_exists(root / "injected"));
    ASSERT_EQ(gtk_tree_model_iter_n_children(choices, nullptr), 3);
    gtk_combo_box_set_active(GTK_COMBO_BOX(w("server")), 1);
    EXPECT_EQ(combo_text(w("server")), "Mail \"Pro\"");

    for (const char* address : {"fail", "quiet"}) {
        group = address;
        set_on("server-radio");
        gtk_button_clicked(GTK_BUTTON(refresh));
        EXPECT_EQ(read_file_text(root / "pnabrowse.args"), std::string("-S\n") + address + "\n");
    }
    // A failing run changes nothing; one that writes nothing leaves no choices.
    EXPECT_EQ(gtk_tree_model_iter_n_children(choices, nullptr), 0);
    EXPECT_EQ(messages.shown.size(), 1u);
}

TEST_F(ica_test, server_location_custom_and_default_groups)
{
    ASSERT_TRUE(open_editor_on(nullptr));
    auto add = [&](const char* address, const char* port) {
        click(find_window("Server Location"), "_Add");
        GtkWidget* adder = find_window("Add Server Address");
        gtk_entry_set_text(GTK_ENTRY(w("server-address", adder)), address);
        gtk_entry_set_text(GTK_ENTRY(w("server-port", adder)), port);
        click(adder, "_Ok");
    };
    auto rows = [&](GtkWidget* dialog) {
        GtkTreeModel* model = gtk_tree_view_get_model(GTK_TREE_VIEW(w("server-addresses", dialog)));
        std::vector<std::string> texts;
        GtkTreeIter iter;
        for (bool more = gtk_tree_model_get_iter_first(model, &iter); more; more = gtk_tree_model_iter_next(model, &iter))
            texts.push_back(model_text(model, &iter, 0));
        return texts;
    };

    click(window, "Server Location");
    GtkWidget* dialog = find_window("Server Location");
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(gtk_widget_get_visible(window));
    set_combo_text(w("server-group", dialog), "Custom");
    add("srv1", "1494");
    EXPECT_EQ(rows(dialog), std::vector<std::string>{"srv1:1494"});
    add("srv2", "");
    add("", "99");  // no address: nothing added
    EXPECT_EQ(rows(dialog), std::vector<std::string>{"srv2"});
    save_screenshot(dialog, "ica-server-location");
    click(dialog, "_Save");
    EXPECT_TRUE(gtk_widget_get_visible(window));
    EXPECT_EQ(connect_info.text[MC_ICA_LOCATION], "srv2");
    EXPECT_EQ(connect_info.text[MC_ICA_PROTOCOL], "TCP + HTTP browser");
    EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(w("primary-server"))), "Primary Server: srv2");

    click(window, "Server Location");
    dialog = find_window("Server Location");
    set_combo_text(w("server-group", dialog), "Default");
    add("h1", "");
    add("h2", "8080");
    set_combo_text(w("server-protocol", dialog), "TCP browser");
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
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(ica_test, global_settings_pages_and_save)
{
    write_file(wfclient_file, "[WFClient]\nKeyboardLayout = (User Profile)\nComPort1=/dev/ttyS0\n"
                              "ComPort2=/dev/ttyS1\nComPort3=/dev/ttyUSB0\nLastComPortNum=3\n"
                              "AllowAudioInput=True\n");
    ica_global_dialog(nullptr, nullptr);
    GtkWidget* settings = find_window("Settings");
    ASSERT_TRUE(settings);
    window = settings;
    GtkWidget* pages = w("pages");
    for (int i = 0; i < gtk_notebook_get_n_pages(GTK_NOTEBOOK(pages)); ++i) {
        gtk_notebook_set_current_page(GTK_NOTEBOOK(pages), i);
        save_screenshot(settings, "ica-global-" + std::to_string(i + 1));
    }
    EXPECT_EQ(combo_text(w("keyboard-layout")), "(User Profile)");
    set_combo_text(w("hotkey-key-1"), "+");
    set_combo_text(w("hotkey-shift-15"), "(none)");

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

    GtkTreeView* ports = GTK_TREE_VIEW(w("com-ports"));
    GtkTreeSelection* selection = gtk_tree_view_get_selection(ports);
    GtkTreePath* second = gtk_tree_path_new_from_string("1");
    gtk_tree_selection_select_path(selection, second);
    gtk_tree_path_free(second);
    gtk_button_clicked(GTK_BUTTON(w("com-delete")));
    GtkTreePath* first = gtk_tree_path_new_from_string("0");
    gtk_tree_selection_select_path(selection, first);
    gtk_tree_path_free(first);
    gtk_button_clicked(GTK_BUTTON(w("com-down")));
    GtkTreePath* moved = gtk_tree_path_new_from_string("1");
    EXPECT_TRUE(gtk_tree_selection_path_is_selected(selection, moved));
    gtk_tree_path_free(moved);
    gtk_button_clicked(GTK_BUTTON(w("com-down")));  // the last row: nothing to swap with

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
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(ica_test, missing_client_file_that_cannot_be_made)
{
    ica_dir = root / "no-such-dir";
    wfclient_file = ica_dir + "/wfclient.ini";
    EXPECT_FALSE(open_editor_on(nullptr));
    EXPECT_EQ(messages.shown, (std::vector<std::string>{
                                  "\nCitrix wfclient.ini file not found and can't be created.\n",
                                  "\nCouldn't create Citrix wfclient.ini file.\n"}));
}

// Pasted control characters scramble to anything, NUL included; Save must survive it.
TEST_F(ica_test, any_password_is_saved)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string passwords[] = {"\x14", "\x01\x02", "\t", std::string(300, 'p')};
    for (const std::string& password : passwords) {
        EXPECT_EXIT(
            {
                open_editor_on(nullptr);
                type("name", "Desk");
                type("password", password.c_str());
                click(window, "_Save");
                std::exit(master_row("0")[MC_NAME] == "Desk" ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << "password of " << password.size() << " characters";
    }
}

// Saved through the window, started as a user would: wfica gets the two files and the
// connection's name, and appsrv.ini holds its section.
TEST_F(ica_test, saved_connection_starts_wfica_on_its_section)
{
    symlink(RECORD_ARGV, (root / "bin/wfica").c_str());
    const std::string old_path = std::getenv("PATH");
    setenv("PATH", (root / "bin:" + old_path).c_str(), 1);
    setenv("KEST_FAKE_LOG", (root / "argv.log").c_str(), 1);
    log_open();

    ASSERT_TRUE(open_editor_on(nullptr));
    type("name", "Apps");
    set_on("published-radio");
    gtk_entry_set_text(GTK_ENTRY(gtk_bin_get_child(GTK_BIN(w("server")))), "Notepad");
    type("username", "ann");
    click(window, "_Save");

    GtkTreeIter row;
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(current_user_connection_tree), &row);
    ASSERT_EQ(model_text(GTK_TREE_MODEL(current_user_connection_tree), &row, TC_NAME), "Apps");
    spawn_connection(GTK_TREE_MODEL(current_user_connection_tree), &row);
    EXPECT_TRUE(wait_for([&] { return !read_file_text(root / "argv.log").empty(); }));
    const pid_t child = session_process_id(std::stoi(model_text(GTK_TREE_MODEL(current_user_connection_tree), &row, TC_PID)));
    if (child > 0)
        waitpid(child, nullptr, 0);
    log_close();
    setenv("PATH", old_path.c_str(), 1);
    unsetenv("KEST_FAKE_LOG");

    EXPECT_EQ(read_file_text(root / "argv.log"),
              "wfica|wfica|-file|" + root / "etc/.kestrel/appsrv.ini" + "|-clientfile|" +
                  root / "etc/.kestrel/wfclient.ini" + "|-desc|Apps\n");
    EXPECT_EQ(read_file_text(root / "etc/.kestrel/appsrv.ini"),
              "[WFClient]\nVersion=1\n\n[ApplicationServers]\nApps=\n"
              "\n[Apps]\nWinStationDriver=ICA 3.0\nTransportDriver=TCP/IP\nDisableCtrlAltDel=On\n"
              "EncryptionLevelSession=Basic\nCompress=On\nProxyUseDefault=On\nEnableAudioInput=No\n"
              "AudioBandwidthLimit=1\nClientAudio=On\nZLMouseMode=2\nZLKeyboardMode=0\n"
              "UseDefaultSettingForColormap=Yes\nAddress=Notepad\nTWIMode=On\n"
              "InitialProgram=#Notepad\nUserName=ann\n");
}

}  // namespace
