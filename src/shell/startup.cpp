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
#include <pango/pangocairo.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int status_interval_ms = 3000;
constexpr int master_lines_per_record = 35;
constexpr int user_lines_per_row = 6;
constexpr const char* tmp_directory_message = "\nCouldn't create tmp support directory.\n";
constexpr const char* instance_file_message = "\nCouldn't create instance file.\n";

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

// Makes a directory with the shell's mkdir when it is missing. False when it cannot.
bool make_missing_directory(const std::string& dir)
{
    return is_directory(dir) || run_shell_command("mkdir " + shell_quote(dir)) == 0;
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

// Work started in a thread of its own at the beginning of start-up and waited for where
// its result is needed.
template <typename Result>
class early_work {
public:
    template <typename Work>
    void start(Work work)
    {
        thread_ = std::thread([this, work] { result_ = work(); });
    }
    bool running() const { return thread_.joinable(); }
    Result& wait()
    {
        if (thread_.joinable())
            thread_.join();
        return result_;
    }

private:
    std::thread thread_;
    Result result_{};
};

// The support directory and the instance file are made by two shell commands of a few
// milliseconds each. A thread makes them while the toolkit starts, and the program waits
// for it where it used to make them itself, so that the commands come before every later
// command and a failure shows the same message at the same point.
class support_files {
public:
    enum result { ready, tmp_directory_missing, instance_file_missing };

    void start()
    {
        work_.start([this] { return make(); });
    }

    result finish() { return work_.wait(); }

    // A program that ends before it would have made the instance file (the display
    // cannot be opened, say) must not leave one made early behind: the next start
    // would be refused.
    void abandon()
    {
        if (!work_.running())
            return;
        work_.wait();
        if (touched_)
            unlink(instance_file.c_str());
    }

private:
    result make()
    {
        // The support directory lives in the shared /tmp, and the save's backup and the
        // instance file are made in it: a link there, another user's directory or one
        // that others may write into would let them choose what those commands write.
        // Such a directory is refused as if it could not be created; a new one is made
        // private.
        const bool made = !is_directory(tmp_dir);
        if (!make_missing_directory(tmp_dir) || (made && !make_directory_private(tmp_dir)) ||
            !is_private_directory(tmp_dir))
            return tmp_directory_missing;
        if (!use_instance_file)
            return ready;
        touched_ = true;
        run_shell_command("touch " + shell_quote(instance_file));
        return path_exists(instance_file) ? ready : instance_file_missing;
    }

    early_work<result> work_;
    bool touched_ = false;
};

support_files support;

// The master list is read in a thread of its own while the toolkit starts. The new list
// is seen by nothing else until the thread has ended, and loading it only builds its rows.
early_work<GtkListStore*> master_loading;

// The list's names and types and its header are read by another thread in a fraction of
// the time the list takes: the header's effects (show_gui, the version message) are
// applied where the list used to be loaded, and the user's tree is loaded with the names
// while the list is still being built.
early_work<master_names> master_names_reading;

void start_early_work()
{
    // Making the font map sets the font configuration up in a thread of its own, which
    // the first text the window lays out waits for; made now, it is ready by then.
    pango_cairo_font_map_get_default();
    support.start();
    const std::string master_path = root_path(master_file_path);
    master_names_reading.start(
        [master_path] { return read_master_names(master_path.c_str(), master_lines_per_record); });
    master_loading.start([master_path] {
        GtkListStore* list = create_master_store();
        load_master_file(list, master_path.c_str(), master_lines_per_record);
        return list;
    });
    // No thread may still run while the program is taken down.
    std::atexit([] {
        master_names_reading.wait();
        master_loading.wait();
        support.abandon();
    });
}

void finish_support_files()
{
    const support_files::result result = support.finish();
    if (result == support_files::ready)
        return;
    show_error(result == support_files::tmp_directory_missing ? tmp_directory_message : instance_file_message);
    std::exit(1);
}

// Of several candidates, the last one that exists wins.
std::string last_existing(std::initializer_list<const char*> candidates, std::string chosen)
{
    for (const char* candidate : candidates)
        if (path_exists(root_path(candidate)))
            chosen = root_path(candidate);
    return chosen;
}

// The master list's header takes effect where the list used to be loaded, and the user
// trees are made still empty: the main window's list is made on them before their rows
// come in.
void take_master_header()
{
    apply_master_header(master_names_reading.wait().header);
    current_user_connection_tree = create_user_tree_store();
    selected_user_connection_tree = create_user_tree_store();
}

// Each group of the user's own tree is expanded in the list as it comes in, at the top
// where the tree store finds it at once; expanding them all afterwards would find every
// primary by counting its siblings.
void load_user_tree()
{
    const master_names names = std::move(master_names_reading.wait());
    make_connection_tree(current_user_connection_tree, current_user_filename.c_str(), user_lines_per_row,
                         expand_connection_group,
                         [&](const std::string& name, const std::string& type) { return names.contains(name, type); });
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

void take_master_list() { master_connection_list = master_loading.wait(); }

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
    ensure_directory(root_path("/etc/.kestrel"), "\nCouldn't create Kestrelle directory.\n", 3);
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
    ica_dir = root_path("/etc/.kestrel");
    wfclient_file = ica_dir + "/wfclient.ini";
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
