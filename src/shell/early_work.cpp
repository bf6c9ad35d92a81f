#include "shell/early_work.h"

#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "shell/globals.h"
#include "shell/main_window.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/user_file.h"

#include <cstdlib>
#include <pango/pangocairo.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* tmp_directory_message = "\nCouldn't create tmp support directory.\n";
constexpr const char* instance_file_message = "\nCouldn't create instance file.\n";

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

// The master list is read in a thread of its own while the toolkit starts. A list store
// is a plain GObject, with no display or main loop behind it, and GLib makes making
// objects safe from any thread; the new list is seen by nothing else until the thread
// has ended, and loading it only builds its rows. So it may be made and filled here.
early_work<GtkListStore*> master_loading;

// The list's names and types and its header are read by another thread in a fraction of
// the time the list takes: the header's effects (show_gui, the version message) are
// applied where the list used to be loaded, and the user's tree is loaded with the names
// while the list is still being built.
early_work<master_names> master_names_reading;

}  // namespace

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

void take_master_list() { master_connection_list = master_loading.wait(); }

