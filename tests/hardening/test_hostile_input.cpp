#include "platform/text.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/password.h"
#include "store/save.h"
#include "support/test_support.h"

namespace {

using hostile_input = rooted_test;

// A password whose first character scrambles to NUL has nothing to pad: it is stored as
// no password.
TEST(hostile_password, a_first_character_that_scrambles_to_nul_is_no_password)
{
    fill_seedchars();
    EXPECT_EQ(pad_password("\x14secret", "Desk"), "");
}

TEST_F(hostile_input, options_appended_to_a_last_line_without_its_end_start_a_line_of_their_own)
{
    make_dirs(root / "tmp");
    for (const std::string& before : {std::string("ZARVOSHELL=kestrelle"), std::string(150, 'x')}) {
        write_file(root / "etc/zarvooptions", before);
        show_taskbar = 1;
        kiosk_mode = 0;
        write_zarvooptions();
        EXPECT_EQ(read_file_text(root / "etc/zarvooptions"), before + "\nSHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n");
    }
}

// What windows show of a file: valid UTF-8 as it is, anything else whole as Latin-1.
TEST(hostile_text, texts_that_are_not_utf8_are_read_as_latin1)
{
    const std::pair<std::string, std::string> rows[] = {
        {"Caf\xc3\xa9 \xe2\x82\xac\n", "Caf\xc3\xa9 \xe2\x82\xac\n"},
        {"Caf\xe9\n", "Caf\xc3\xa9\n"},
        {"\xff\xfe\x80", "\xc3\xbf\xc3\xbe\xc2\x80"},
        {"half \xc3", "half \xc3\x83"},
    };
    for (const auto& [line, shown] : rows)
        EXPECT_EQ(shown_text(line), shown) << line;
}

// A master file cut short by an earlier failure never replaces a backup that holds a
// list; a failing save then restores that backup.
TEST_F(hostile_input, a_master_file_shorter_than_its_header_is_not_backed_up_over_a_list)
{
    make_dirs(root / "etc/.kestrel");
    const std::string list = "Version 1.000\nShow GUI\nDon't show taskbar\nNot kiosk\n";
    tmp_dir = root / "tmp/.kestrel";
    ica_dir = root / "no-such-dir";  // appsrv.ini cannot be opened: the save fails
    master_connection_list = create_master_store();
    const std::pair<std::string, std::string> rows[] = {  // master file, backup
        {"Version 1.000\nShow GUI\nDon't", list}, {"", "Version 1.000\n"}, {list, "Version 1.000\n"}};
    for (const auto& [master, backup] : rows) {
        write_file(root / "etc/.kestrel/kestrel.master", master);
        write_file(root / "tmp/.kestrel/kestrel.bak", backup);
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
        const std::string good = backup == list ? backup : master;
        EXPECT_EQ(read_file_text(root / "etc/.kestrel/kestrel.master"), good) << master << "|" << backup;
    }
    EXPECT_EQ(messages.shown, std::vector<std::string>(3, "\nError opening appsrv.ini for writing.\n\nBackup file has been restored.\n"));
    g_clear_object(&master_connection_list);
}

}  // namespace
