#include "store/save.h"

#include "platform/file.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "store/appsrv.h"
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"

#include <cstdio>
#include <stdio_ext.h>
#include <string>
#include <unistd.h>

namespace {

constexpr int master_header_lines = 4;

struct save_paths {
    std::string master = root_path(master_file_path);
    std::string backup = root_path(master_backup_path);
    std::string appsrv = ica_dir + "/appsrv.ini";
};

// Puts the backup back in place of the master file and tells the user, starting from
// the base message of what went wrong.
void restore_backup(const save_paths& paths, std::string message)
{
    if (path_exists(paths.backup)) {
        int status = run_shell_command("mv -f " + shell_quote(paths.backup) + " " +
                                       shell_quote(paths.master) + " > /dev/null");
        message += status != 0 ? "\nBackup file could not be restored.\n"
                               : "\nBackup file has been restored.\n";
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
    // A master file cut short by an earlier failure must not replace a backup that still
    // holds a list: the backup is then kept as it is and the save goes on.
    if (!holds_a_header(paths.master) && holds_a_header(paths.backup)) {
        unlink(paths.master.c_str());
        return true;
    }
    if (run_shell_command("cp " + shell_quote(paths.master) + " " + shell_quote(paths.backup) + " > /dev/null") != 0) {
        show_error("\nError backing up master connection list.\n\nChanges have not been saved.\n");
        return false;
    }
    unlink(paths.master.c_str());
    return true;
}

}  // namespace

void save_master_connections()
{
    save_paths paths;
    if (!back_up_master(paths))
        return;
    unique_file master = open_file(paths.master, "we");
    if (!master) {
        restore_backup(paths, "\nError opening master connection list for writing.\n");
        return;
    }
    unique_file appsrv = open_file(paths.appsrv, "we");
    if (!appsrv) {
        master.reset();
        restore_backup(paths, "\nError opening appsrv.ini for writing.\n");
        return;
    }
    GtkTreeModel* list = GTK_TREE_MODEL(master_connection_list);
    write_master_header(master.get());
    write_appsrv_header(appsrv.get(), list);
    master_save_files files{master.get(), appsrv.get()};
    gtk_tree_model_foreach(list, file_master_connection, &files);

    std::fflush(master.get());
    if (std::ferror(master.get())) {
        // The backup goes back while the stream is still open. The unwritten rest is
        // dropped and the new file emptied first: unlinked but open, it would otherwise
        // keep the space the backup needs on a full file system.
        __fpurge(master.get());
        (void)!ftruncate(fileno(master.get()), 0);
        restore_backup(paths, "\nError writing master connection list.\n");
    }
    master.reset();

    std::fflush(appsrv.get());
    if (std::ferror(appsrv.get()))
        show_error("\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n");
}
