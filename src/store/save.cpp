#include "store/save.h"

#include "ica/paths.h"
#include "platform/file.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "store/appsrv.h"
#include "store/master_file.h"
#include "store/models.h"

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
    if (std::ferror(master.get()))
        // The backup goes back while the stream is still open; closing it afterwards
        // writes nothing more into the restored file.
        restore_backup(paths, "\nError writing master connection list.\n");
    master.reset();

    std::fflush(appsrv.get());
    if (std::ferror(appsrv.get()))
        show_error("\nError writing appsrv.ini.\n\nYou may be able to free some disk space and try again.\n");
}
