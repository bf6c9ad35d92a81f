#include "shell/startup.h"

#include "keymaps/keymaps.h"
#include "launch/command_line.h"
#include "launch/spawn.h"
#include "platform/log.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "platform/users.h"
#include "shell/early_work.h"
#include "shell/exit.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "shell/options.h"
#include "shell/status_monitor.h"
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/password.h"
#include "store/user_file.h"

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr int status_interval_ms = 3000;

user_entry read_identity()
{
    misc_widgets = g_new0(GtkWidget*, 3);
    std::optional<user_entry> user = user_by_uid(getuid());
    if (!user) {
        // Without a password entry there is no user file to read: nothing to run.
        std::fprintf(stderr, "No password entry for user id %d.\n", static_cast<int>(getuid()));
        std::exit(1);
    }
    current_user_filename = user->home + user_file_name;
    selected_user_name = user->name;
    current_user_name = selected_user_name;
    tmp_dir = root_path("/tmp/.kestrel");
    return *user;
}

void refuse_second_instance()
{
    std::fputs("Another instance of Kestrelle is already running.\n", stdout);
    std::exit(1);
}

void guard_single_instance()
{
    if (path_exists(root_path("/bin/busybox"))) {
        instance_file = tmp_dir + "/running";
        use_instance_file = 1;
    }
    if (use_instance_file) {
        if (path_exists(instance_file))
            refuse_second_instance();
        return;
    }
    // A textual test: a count such as 10 or 21 holds the digit 1 and is taken as
    // meaning that no other copy runs.
    if (run_shell_command("ps -A | grep -c kest | grep -v 1") == 0)
        refuse_second_instance();
}

void read_rights(const user_entry& user)
{
    user_rights rights = rights_of(user.name, user.gid);
    user_has_root = rights.root;
    allow_turnoff = rights.turnoff;
    allow_reboot = rights.reboot;
}

// On failure to make the directory the user is told and the program ends with the
// given status.
void ensure_directory(const std::string& dir, const char* message, int exit_status)
{
    if (!make_missing_directory(dir)) {
        show_error(message);
        std::exit(exit_status);
    }
}

// Of several candidates, the last one that exists wins.
std::string last_existing(std::initializer_list<const char*> candidates, std::string chosen)
{
    for (const char* candidate : candidates)
        if (path_exists(root_path(candidate)))
            chosen = root_path(candidate);
    return chosen;
}

// The administered user's tree starts as the running user's own, and only the Advanced
// window shows or changes it. Rather than loading the file twice at start-up, its rows
// are copied from the user's own tree when the window is first opened, before anything
// else can have changed them.
void (*advanced_dialog_handler)(GtkWidget*, gpointer) = nullptr;

void open_advanced_dialog(GtkWidget* button, gpointer window)
{
    static bool copied = false;
    if (!copied)
        copy_connection_tree(GTK_TREE_MODEL(current_user_connection_tree), selected_user_connection_tree);
    copied = true;
    advanced_dialog_handler(button, window);
}

// Loading leaves freed memory behind in the heap (records, sort keys, file buffers);
// once start-up is over it goes back to the system.
gboolean release_loading_memory(gpointer)
{
    malloc_trim(0);
    return FALSE;
}

void create_admin_directories()
{
    ensure_directory(ica_dir, "\nCouldn't create ICA support directory.\n", 2);
    // Both tests name the same directory today; the second stays for when the Citrix
    // files move elsewhere.
    ensure_directory(root_path(config_dir), "\nCouldn't create Kestrelle directory.\n", 3);
}

}  // namespace

void find_citrix_client()
{
    if (const char* root = std::getenv("ICAROOT")) {
        ica_root = root;
        return;
    }
    ica_root = last_existing({"/opt/ICAClient", "/usr/share/ICAClient", "/usr/lib/ICAClient"}, ica_root);
    // Left in the error label for the next dialog shown without a text of its own.
    set_error_text("\nCitrix ICA configuration error, ICAROOT not set.\n");
}

void find_programs()
{
    firefox = path_exists(root_path("/usr/bin/firefox")) || path_exists(root_path("/opt/firefox/firefox"));
    das = path_exists(root_path("/opt/zarvo/marrow"));
}

user_rights rights_of(const std::string& user, gid_t primary_group)
{
    user_rights rights;
    if (group_lists_member("root", user))
        rights = {true, true, true};
    if (group_lists_member("shutdown", user))
        rights.turnoff = rights.reboot = true;
    if (group_lists_member("turnoff", user))
        rights.turnoff = true;
    if (group_lists_member("reboot", user))
        rights.reboot = true;
    if (primary_group == 0)
        rights = {true, true, true};
    return rights;
}

int start_automatic_connections(GtkTreeStore* tree)
{
    GtkTreeModel* model = GTK_TREE_MODEL(tree);
    int started = 0;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter)) {
        if (!model_flag(model, &iter, TC_AUTOMATIC))
            continue;
        if (started == 0 && model_flag(model, &iter, TC_PROMPT))
            run_reconnect_dialog();
        ++started;
        spawn_connection(model, &iter);
    }
    return started;
}

int kestrelle_main(int argc, char** argv, GCallback advanced_dialog)
{
    user_entry user = read_identity();
    install_signal_handlers();
    debian = is_regular_file(root_path("/etc/debian_version"));
    guard_single_instance();
    start_early_work();
    log_open();
    log_printf("Starting.\n");
    gtk_init(&argc, &argv);
    watch_signals();
    read_rights(user);
    fill_seedchars();
    build_main_window();
    finish_support_files();
    find_citrix_client();
    set_ica_dir(root_path(config_dir));
    parse_zarvooptions();
    find_x_files();
    find_programs();
    make_x_keymap();
    make_rdesktop_keymap();
    take_master_header();
    finish_main_window();
    load_user_tree();
    take_master_list();
    if (user_has_root) {
        create_admin_directories();
        advanced_dialog_handler = reinterpret_cast<void (*)(GtkWidget*, gpointer)>(advanced_dialog);
        add_advanced_button(G_CALLBACK(open_advanced_dialog));
    }
    int started = start_automatic_connections(current_user_connection_tree);
    if (show_gui || user_has_root)
        show_main_window();
    else if (started == 0)
        // A hidden shell with nothing to run restarts the machine.
        run_shell_command("reboot");
    g_timeout_add(status_interval_ms, update_status, current_user_connection_tree);
    g_idle_add(release_loading_memory, nullptr);
    gtk_main();
    return 0;
}
