#include "platform/text.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/options.h"
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/password.h"
#include "store/record.h"
#include "store/save.h"
#include "support/test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// Passwords whose first character scrambles to NUL have nothing to pad: they are
// stored as no password. Any other password keeps its stored form.
TEST(hostile_password, a_first_character_that_scrambles_to_nul_is_stored_as_no_password)
{
    fill_seedchars();
    const struct {
        std::string clear;
        const char* name;
        std::string stored;
    } rows[] = {
        {"\x14", "Desk", ""},
        {"\x14secret", "Desk", ""},
        {std::string(40, '\x14'), "Desk", ""},
        {"\x07" "abc", "Office", ""},
        {"K", "Office", "LABCD67892345./01QRSTMNOPIJKLEFGM"},
    };
    for (const auto& r : rows) {
        const std::string stored = pad_password(r.clear, r.name);
        EXPECT_EQ(stored, r.stored) << r.name;
        EXPECT_EQ(unpad_password(stored, r.name), r.stored.empty() ? "" : r.clear) << r.name;
    }
}

TEST(hostile_options, appended_keys_start_a_line_of_their_own)
{
    temp_dir root;
    scoped_root rooted{root.path()};
    make_dirs(root / "tmp");
    const std::pair<std::string, std::string> rows[] = {
        {"ZARVOSHELL=kestrelle", "ZARVOSHELL=kestrelle\nSHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
        {"ZARVOSHELL=kestrelle\n", "ZARVOSHELL=kestrelle\nSHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
        {"KIOSK_BROWSER=TRUE\nX=1", "KIOSK_BROWSER=FALSE\nX=1\nSHOW_TASKBAR=TRUE\n"},
        {"SHOW_TASKBAR=no\nKIOSK_BROWSER=yes", "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
        {"", "SHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
        // A last line longer than one piece.
        {std::string(150, 'x'), std::string(150, 'x') + "\nSHOW_TASKBAR=TRUE\nKIOSK_BROWSER=FALSE\n"},
    };
    for (const auto& [before, after] : rows) {
        write_file(root / "etc/zarvooptions", before);
        show_taskbar = 1;
        kiosk_mode = 0;
        write_zarvooptions();
        EXPECT_EQ(read_file_text(root / "etc/zarvooptions"), after) << before;
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
        {"", ""},
    };
    for (const auto& [line, shown] : rows)
        EXPECT_EQ(shown_text(line), shown) << line;
}

// A master file cut short by an earlier failure never replaces a backup that holds a
// list; a failing save then restores that backup.
TEST(hostile_save, a_master_file_shorter_than_its_header_is_not_backed_up_over_a_list)
{
    temp_dir root;
    scoped_root rooted{root.path()};
    make_dirs(root / "etc/.kestrel");
    const std::string list = "Version 1.000\nShow GUI\nDon't show taskbar\nNot kiosk\n";
    tmp_dir = root / "tmp/.kestrel";
    master_connection_list = create_master_store();
    message_recorder messages;
    const std::pair<std::string, std::string> rows[] = {
        // master file, backup: what the backup holds after the save
        {"", list},
        {"Version 1.000\nShow GUI\nDon't", list},
        {"", "Version 1.000\n"},
        {list, "Version 1.000\n"},
    };
    for (const auto& [master, backup] : rows) {
        write_file(root / "etc/.kestrel/kestrel.master", master);
        write_file(root / "tmp/.kestrel/kestrel.bak", backup);
        ica_dir = root / "no-such-dir";  // appsrv.ini cannot be opened: the save fails
        messages.shown.clear();
        save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings());
        const std::string good = backup.size() == list.size() ? backup : master;
        EXPECT_EQ(read_file_text(root / "etc/.kestrel/kestrel.master"), good) << master << "|" << backup;
        EXPECT_EQ(messages.shown, std::vector<std::string>{
                                      "\nError opening appsrv.ini for writing.\n\nBackup file has been restored.\n"});
    }
    g_object_unref(master_connection_list);
    master_connection_list = nullptr;
}

}  // namespace
