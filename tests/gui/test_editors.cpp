// What every editor shares, run over all of them: the binding round trip and the columns
// of a new connection (the ICA editor's server list is in test_ica).
#include "editors/editors.h"
#include "gui/gui_support.h"
#include "shell/globals.h"

namespace {

// The row stored as 36 columns joined by "|" (see parse_row), what the controls show (see
// shown_values: a swapped column shows here) and the row after the editor's Save.
struct editor_case { editor_opener opener; const char *title, *stored, *shown, *expected; };

// Filled from the row and saved unchanged: the columns an editor owns come back as
// stored, the others as the editor writes them, 0 to 4 and 35 as they were. The
// "Odd" rows hold texts of another program's making that match no choice, and bytes
// that are not UTF-8: they show as Latin-1 and are saved back as they were.
TEST_F(admin_test, every_editor_saves_the_columns_it_shows_unchanged)
{
    const editor_case table[] = {
        {web_dialog, "Web connection",
         "Round|Web|TRUE|3390|7|http://start.example/page|c6|c7|c8|c9|c10|c11|c12|c13|c14|c15|c16|c17|c18|c19|"
         "c20|c21|c22|c23|c24|c25|c26|c27|c28|c29|c30|c31|c32|c33|c34|TRUE",
         "name=Round; value=http://start.example/page",
         "Round|Web|TRUE|3390|7|http://start.example/page||||||||||||||||||||||||||||0|0|TRUE"},
        {other_dialog, "Other connection",
         "Round|Other|TRUE|3390|7|c5|c6|c7|/usr/bin/xterm -e htop|c9|c10|c11|c12|c13|c14|c15|c16|c17|c18|c19|"
         "c20|c21|c22|c23|c24|c25|c26|c27|c28|c29|c30|c31|c32|c33|c34|TRUE",
         "name=Round; value=/usr/bin/xterm -e htop",
         "Round|Other|TRUE|3390|7||||/usr/bin/xterm -e htop|||||||||||||||||||||||||0|0|TRUE"},
        // Every other option bit on, then the others: two boxes whose bits were swapped
        // both ways show here; texts kept only with their bit go.
        {rd_dialog, "rdesktop connection",
         "Round|RDP|TRUE|3390|7|ts.example|c6|c7|notepad.exe|C:\\work|ann|s3cret|CORP|1142x864|High Color (15 bit)|"
         "Do not play|c16|c17|c18|c19|thin7|c21|c22|c23|c24|c25|Danish|Custom|"
         "home=/home/ann|lp=\"HP\"|LPT2=/dev/lp1|COM2=/dev/ttyS1|-T desk|10922|c34|TRUE",
         "backing_store; client_hostname=thin7; colors=High Color (15 bit); computer=ts.example; "
         "disk_value=home=/home/ann; domain=CORP; dragging; experience=Custom; extra_options_value=-T desk; "
         "folder=C:\\work; keyboard=Danish; name=Round; parallel; parallel_value=LPT2=/dev/lp1; password=s3cret; "
         "persistent_caching; printers; printers_value=lp=\"HP\"; program=notepad.exe; serial_value=COM2=/dev/ttyS1; "
         "size=1142x864; sound=Do not play; start_program; themes; username=ann",
         "Round|RDP|TRUE|3390|7|ts.example|||notepad.exe|C:\\work|ann|s3cret|CORP|1142x864|High Color (15 bit)|"
         "Do not play|||||thin7||||||Danish|Custom|home=/home/ann|lp=\"HP\"|LPT2=/dev/lp1|COM2=/dev/ttyS1||10922|0|TRUE"},
        {rd_dialog, "rdesktop connection",
         "Odd|RDP|FALSE|1|1|c5|c6|c7|c8|c9|j\xf6rg|s\xe9" "cret|\xff\xfe|999x1|Weird|c15|c16|c17|c18|c19|c20|c21|c22|c23|c24|"
         "c25|Klingon|Custom|c28|c29|c30|c31|c32|21844|c34|FALSE",
         "animation; background; bitmap_caching; client_hostname=c20; colors=Weird; compression; computer=c5; disk; "
         "disk_value=c28; domain=\u00ff\u00fe; experience=Custom; extra_options; extra_options_value=c32; folder=c9; "
         "keyboard=Klingon; name=Odd; parallel_value=c30; password=s\u00e9cret; printers_value=c29; program=c8; "
         "serial; serial_value=c31; size=999x1; sound=c15; username=j\u00f6rg",
         "Odd|RDP|FALSE|1|1|c5|||||j\xf6rg|s\xe9" "cret|\xff\xfe|999x1|Weird|c15|||||c20||||||Klingon|Custom|c28||c30|c31|c32|"
         "21844|0|FALSE"},
        {xdm_dialog, "XDM connection",
         "Lab|XDM|TRUE|177|1|lab.example|c6|Query|c8|c9|c10|c11|7|2|c14|c15|c16|c17|c18|c19|c20|c21|c22|c23|"
         "c24|c25|belgian|c27|c28|c29|c30|c31|c32|c33|c34|TRUE",
         "Direct; display=2; host=lab.example; keymap=belgian; name=Lab; vt=7",
         "Lab|XDM|TRUE|177|1|lab.example||Query|||||7|2|||||||||||||belgian|||||||0|0|TRUE"},
        {xdm_dialog, "XDM connection",  // a mode word of another case is Indirect
         "Caf\xe9|XDM|FALSE|0|3|Z\xfcrich|c6|query|c8|c9|c10|c11|vt9|12|c14|c15|c16|c17|c18|c19|c20|c21|c22|"
         "c23|c24|c25|Kling\xf6n|c27|c28|c29|c30|c31|c32|c33|c34|FALSE",
         "Indirect; display=12; host=Z\u00fcrich; keymap=Kling\u00f6n; name=Caf\u00e9; vt=vt9",
         "Caf\xe9|XDM|FALSE|0|3|Z\xfcrich||Indirect|||||vt9|12|||||||||||||Kling\xf6n|||||||0|0|FALSE"},
        {ica_opener, "ICA connection",  // published, smartcard, disk cache, alternate address, exact colours, seamless
         "Round|ICA|FALSE|1495|7|Mail|srv1:1494|TCP browser|mail.exe|C:\\work|ann|s3cret|CORP|1024x768|256|Low|"
         "Enabled|2599|Off|RC5 (128 bit)|c20|SOCKS|proxy.lan|1080|relay.lan|443|On|Off|c28|c29|c30|c31|c32|c33|"
         "02710|TRUE",
         "alternate-address; colours-256; disk-cache; domain=CORP; encryption=RC5 (128 bit); "
         "mapping-Private - Exact Colors; microphone=Enabled; mouse-feedback=Off; name=Round; password=s3cret; "
         "program=mail.exe; proxy-address=proxy.lan; proxy-port=1080; proxy-type=SOCKS; published-radio; "
         "relay-address=relay.lan; relay-port=443; reliability-port=2599; seamless; server=Mail; smartcard; "
         "sound-quality=Low; speedscreen=Off; text-echo=On; username=ann; window-size=1024x768; workdir=C:\\work",
         "Round|ICA|FALSE|1495|7|Mail|srv1:1494|TCP browser|mail.exe|C:\\work|ann|s3cret|CORP|1024x768|256|Low|"
         "Enabled|2599|Off|RC5 (128 bit)||SOCKS|proxy.lan|1080|relay.lan|443|On|Off||||||0|02710|TRUE"},
    };
    for (const auto& c : table) {
        SCOPED_TRACE(c.stored);
        const connection_record stored = parse_row(c.stored);
        gtk_list_store_clear(master_connection_list);
        insert_master_row(master_connection_list, -1, stored);
        GtkWidget* editor = open(c.opener, c.title, stored[MC_NAME], stored[MC_TYPE]);
        ASSERT_NE(editor, nullptr);
        EXPECT_FALSE(gtk_widget_is_sensitive(named(editor, "name")));
        EXPECT_EQ(shown_values(editor), c.shown);
        EXPECT_FALSE(gtk_widget_get_visible(root_window));
        EXPECT_EQ(find_window("Printers"), nullptr) << "a box turned on by loading opens no window";
        click(editor, "_Save");
        EXPECT_EQ(find_window(c.title), nullptr);
        EXPECT_TRUE(gtk_widget_get_visible(root_window));
        EXPECT_EQ(row_text(master_row(stored[MC_NAME], stored[MC_TYPE])), c.expected);
    }
    EXPECT_TRUE(messages->shown.empty());
}

// A new connection saved as the editor opens.
TEST_F(admin_test, new_connections_are_saved_with_the_editors_defaults)
{
    const std::pair<editor_opener, const char*> table[] = {
        {other_dialog, "New|Other|FALSE|80|1|||||||||||||||||||||||||||||0|0|FALSE"},
        {rd_dialog, "New|RDP|TRUE|3389|1|||||||||Use Default|Use Default|Bring to this computer|||||||||||"
                    "International Europe|Modem (56 Kbps)|shared=/tmp/shared||LPT1=/dev/lp0|COM1=/dev/ttyS0||"
                    "04608|0|FALSE"},
        {xdm_dialog, "New|XDM|TRUE|0|1|||Indirect|||||Automatic|3|||||||||||||Use Local Settings|||||||0|0|FALSE"},
        // The designed flag word: server, compression, sound, default colour map and 1024.
        {ica_opener, "New|ICA|TRUE|1494|1||Default|Default||||||Default|Default|Med|Disabled|2598|On|Basic||"
                     "Default||||441|Off|Auto||||||0|01065|FALSE"},
    };
    for (const auto& [opener, expected] : table) {
        const std::string type = parse_row(expected)[MC_TYPE];
        GtkWidget* editor = open(opener, ((type == "RDP" ? "rdesktop" : type) + " connection").c_str());
        ASSERT_NE(editor, nullptr) << type;
        type_text(editor, "name", "New");
        click(editor, "_Save");
        EXPECT_EQ(row_text(master_row("New", type)), expected);
    }
    EXPECT_TRUE(messages->shown.empty());
}

}  // namespace
