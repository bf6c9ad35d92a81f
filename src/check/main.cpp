// kestrelle-check: shows what every terminal with this configuration will show and
// start, and where the program reads its files differently from what they seem to say.
// It reads through the program's own readers and writes nothing.
#include "check/checks.h"
#include "store/ica_paths.h"
#include "keymaps/keymaps.h"
#include "launch/command_line.h"
#include "store/password.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/users.h"
#include "store/user_file.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

constexpr const char* usage =
    "usage: kestrelle-check [--root DIR] [--user NAME | --home DIR] [--file PATH=FILE]... [--json]\n";

struct options {
    std::string root = "/";
    std::optional<std::string> user;
    std::optional<std::string> home;
    bool json = false;
    file_choice files;
};

bool parse_options(int argc, char** argv, options* o)
{
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool has_value = i + 1 < argc;
        if (word == "--json")
            o->json = true;
        else if (word == "--root" && has_value)
            o->root = argv[++i];
        else if (word == "--user" && has_value)
            o->user = argv[++i];
        else if (word == "--home" && has_value)
            o->home = argv[++i];
        else if (word == "--file" && has_value && std::strchr(argv[i + 1], '=')) {
            const std::string pair = argv[++i];
            o->files.instead[pair.substr(0, pair.find('='))] = pair.substr(pair.find('=') + 1);
        } else
            return false;
    }
    return true;
}

// Messages the readers would show in the error dialog are findings here, never a line
// in the program's log.
void ignore_text(const std::string&) {}
void ignore_run() {}

// What start-up sets before any connection is read, on the chosen root.
void set_up(const std::string& root)
{
    if (root == "/" || root.empty())
        unsetenv("KESTRELLE_ROOT");
    else
        setenv("KESTRELLE_ROOT", root.c_str(), 1);
    set_message_handlers({ignore_text, ignore_run});
    fill_seedchars();
    set_ica_dir(root_path(config_dir));
    find_x_files();
    make_x_keymap();
    make_rdesktop_keymap();
}

void check_user(check_report& report, const master_view& master, const user_entry& user, const file_choice& files)
{
    const std::string file = user.database_home + user_file_name;
    // The home directory as the users database gives it, root prefix applied.
    const auto candidate = files.instead.find(file);
    const std::string path = candidate == files.instead.end() ? user.home + user_file_name : candidate->second;
    check_user_tree(report, master, user.name, file, path);
}

void check_users(check_report& report, const master_view& master, const options& o)
{
    if (o.home) {
        const std::string file = *o.home + user_file_name;
        check_user_tree(report, master, o.user.value_or(""), file, file);
    } else if (o.user) {
        if (std::optional<user_entry> user = user_by_name(*o.user))
            check_user(report, master, *user, o.files);
        else
            report.fail("/etc/passwd", 0, "no user " + quoted(*o.user));
    } else {
        for (const user_entry& user : all_users())
            if (is_regular_file(user.home + user_file_name) ||
                o.files.instead.count(user.database_home + user_file_name))
                check_user(report, master, user, o.files);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    options o;
    if (!parse_options(argc, argv, &o)) {
        std::fputs(usage, stderr);
        return 2;
    }
    set_up(o.root);
    check_report report;
    check_options(report, o.files);
    const master_view master = check_master_list(report, o.files);
    check_appsrv(report, master, o.files);
    check_wfclient(report, o.files);
    check_users(report, master, o);
    if (o.json)
        print_json(report, stdout);
    else
        print_report(report, stdout);
    return report.exit_status();
}
