#include "store/save.h"

#include "platform/file.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/whole_file.h"
#include "store/appsrv.h"
#include "store/ica_paths.h"
#include "store/master_file.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

constexpr int master_header_lines = 4;

struct save_paths {
    std::string master = root_path(master_file_path);
    std::string backup = root_path(master_backup_path);
    std::string appsrv = ica_dir + "/appsrv.ini";
};

// Makes the master file on disk hold the backup's list again and tells the user,
// starting from the base message of what went wrong. The master file is only ever
// replaced whole, so after a failed write it normally still is the list the backup
// was copied from; it is rewritten only when it is not (a save that began without a
// master file, or with one cut short by an older program).
void restore_backup(const save_paths& paths, std::string message)
{
    if (path_exists(paths.backup)) {
        std::string backup, master;
        const bool restored = read_whole_file(paths.backup, &backup) &&
                              ((read_whole_file(paths.master, &master) && master == backup) ||
                               replace_file(paths.master, backup));
        message += restored ? "\nBackup file has been restored.\n" : "\nBackup file could not be restored.\n";
    }
    show_error(message);
}

// True when the file holds at least the master list's four header lines.
bool holds_a_header(const std::string& path)
{
    unique_file file = open_file(path, "re");
    if (!file)
        return false;
    int line_ends = 0;
    for (int c; line_ends < master_header_lines && (c = std::fgetc(file.get())) != EOF;)
        line_ends += c == '\n';
    return line_ends == master_header_lines;
}

bool back_up_master(const save_paths& paths)
{
    if (!path_exists(paths.master))
        return true;
    // A master file cut short (by an older program) must not replace a backup that
    // still holds a list: the backup is then kept as it is and the save goes on.
    if (!holds_a_header(paths.master) && holds_a_header(paths.backup))
        return true;
    std::string text;
    if (!read_whole_file(paths.master, &text) || !replace_file(paths.backup, text)) {
        show_error("\nError backing up master connection list.\n\nChanges have not been saved.\n");
        return false;
    }
    return true;
}

// A walk stopped by an appsrv.ini error leaves the master file short of the rows after
// it. The master list must never lose a connection for appsrv.ini's sake, so it is
// written again from the start, with the ICA sections going nowhere. False when it
// cannot be.
bool write_master_again(FILE* master, GtkTreeModel* list, const master_settings& settings)
{
    unique_file nowhere = open_file("/dev/null", "we");
    if (!nowhere || std::fflush(master) != 0 || ftruncate(fileno(master), 0) != 0)
        return false;
    std::rewind(master);
    write_master_header(master, settings);
    master_save_files files{master, nowhere.get()};
    gtk_tree_model_foreach(list, file_master_connection, &files);
    return true;
}

}  // namespace

// The old master file stays in place until the new one is whole on disk: a kill at any
// instant leaves one of the two, and the backup is what a failed write is checked
// against.
void save_master_connections(GtkTreeModel* list, const master_settings& settings)
{
    save_paths paths;
    if (!back_up_master(paths))
        return;
    file_replacement master(paths.master);
    if (!master.stream()) {
        restore_backup(paths, "\nError opening master connection list for writing.\n");
        return;
    }
    file_replacement appsrv(paths.appsrv);
    if (!appsrv.stream()) {
        master.discard();
        restore_backup(paths, "\nError opening appsrv.ini for writing.\n");
        return;
    }
    write_master_header(master.stream(), settings);
    write_appsrv_header(appsrv.stream(), list);
    master_save_files files{master.stream(), appsrv.stream()};
    gtk_tree_model_foreach(list, file_master_connection, &files);
    if (std::ferror(appsrv.stream()) && !std::ferror(master.stream()) &&
        !write_master_again(master.stream(), list, settings))
        master.discard();

    if (!master.commit()) {
        // appsrv.ini goes on describing the list that stays on disk.
        appsrv.discard();
        restore_backup(paths, "\nError writing master connection list.\n");
        return;
    }
    if (!appsrv.commit())
        show_error("\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n");
}
