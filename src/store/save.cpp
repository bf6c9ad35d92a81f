#include "store/save.h"

#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "shell/globals.h"
#include "store/appsrv.h"
#include "store/master_file.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

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
        int status = run_shell_command("mv -f " + paths.backup + " " + paths.master + " > /dev/null");
        message += status != 0 ? "\nBackup file could not be restored.\n"
                               : "\nBackup file has been restored.\n";
    }
    show_error(message);
}

bool back_up_master(const save_paths& paths)
{
    if (!path_exists(paths.master))
        return true;
    if (run_shell_command("cp " + paths.master + " " + paths.backup + " > /dev/null") != 0) {
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
    FILE* master = std::fopen(paths.master.c_str(), "we");
    if (!master) {
        restore_backup(paths, "\nError opening master connection list for writing.\n");
        return;
    }
    FILE* appsrv = std::fopen(paths.appsrv.c_str(), "we");
    if (!appsrv) {
        std::fclose(master);
        restore_backup(paths, "\nError opening appsrv.ini for writing.\n");
        return;
    }
    GtkTreeModel* list = GTK_TREE_MODEL(master_connection_list);
    write_master_header(master);
    write_appsrv_header(appsrv, list);
    master_save_files files{master, appsrv};
    gtk_tree_model_foreach(list, file_master_connection, &files);

    std::fflush(master);
    if (std::ferror(master))
        // The backup goes back while the stream is still open; closing it afterwards
        // writes nothing more into the restored file.
        restore_backup(paths, "\nError writing master connection list.\n");
    std::fclose(master);

    std::fflush(appsrv);
    if (std::ferror(appsrv))
        show_error("\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n");
    std::fclose(appsrv);
}
