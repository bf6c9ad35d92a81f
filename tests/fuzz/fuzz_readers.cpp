// The simple readers and writers, crash-only: every input is the whole text of each in
// turn: a printcap file, an ICA record's columns (one a line) written to appsrv.ini's
// header, the shell options file read and written back, each keyboard map source alone,
// and the display manager's Xsetup.
#include "editors/rdp_rules.h"
#include "fuzz_support.h"
#include "keymaps/keymaps.h"
#include "launch/command_line.h"
#include "shell/options.h"
#include "store/appsrv.h"
#include "store/models.h"
#include "store/password.h"

#include <cstdlib>
#include <sstream>

namespace {

void write_appsrv(const std::string& input)
{
    connection_record record;
    std::istringstream lines(input);
    for (std::string& column : record.col)
        std::getline(lines, column);
    record[MC_TYPE] = "ICA";
    ica_section(record);
    GtkListStore* list = create_master_store();
    insert_master_row(list, -1, record);
    fuzz_written([&](FILE* out) { write_appsrv_header(out, GTK_TREE_MODEL(list)); });
    g_object_unref(list);
}

// The X layouts come from the first source that opens: each is given the input alone.
void read_keymaps(const std::string& input)
{
    for (const char* source : {"/etc/X11/xkb/rules/xfree86.lst", "/etc/X11/xkb/keymap/xfree86",
                               "/etc/xfce4/applets/keyboard.conf"}) {
        fuzz_write_file(fuzz_scratch() + source, input);
        make_x_keymap();
        std::remove((fuzz_scratch() + source).c_str());
    }
    fuzz_write_file(fuzz_scratch() + "/usr/share/rdesktop/keymaps/keymap.lst", input);
    make_rdesktop_keymap();
    fuzz_write_file(fuzz_scratch() + "/Xsetup", input);
    local_xkb_map(fuzz_scratch() + "/Xsetup");
}

}  // namespace

void fuzz_setup()
{
    setenv("KESTRELLE_ROOT", fuzz_scratch().c_str(), 1);
    fill_seedchars();
    fuzz_write_file(fuzz_scratch() + "/tmp/.keep", "");
    for (const char* map : {"de", "fr", "common"})  // maps for keymap.lst to name
        fuzz_write_file(fuzz_scratch() + "/usr/share/rdesktop/keymaps/" + map, "");
}

void fuzz_one(const std::string& input)
{
    if (FILE* printcap = fmemopen(const_cast<char*>(input.data()), input.size(), "r")) {  // none when empty
        printcap_names(printcap);
        std::fclose(printcap);
    }
    write_appsrv(input);
    fuzz_write_file(fuzz_scratch() + "/etc/zarvooptions", input);
    parse_zarvooptions();
    show_taskbar = input.size() % 2;
    kiosk_mode = input.size() % 3 == 0;
    write_zarvooptions();
    read_keymaps(input);
}
