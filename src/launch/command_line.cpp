#include "launch/command_line.h"

#include "keymaps/keymaps.h"
#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "store/choices.h"
#include "store/ica_paths.h"
#include "store/password.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

std::string x_setup_file;   // found at start-up

void find_x_files()
{
    for (const char* setup : {"/etc/X11/xdm/Xsetup", "/etc/X11/wdm/Xsetup"})
        if (path_exists(root_path(setup))) {
            x_setup_file = root_path(setup);
            break;
        }
}

namespace {

constexpr std::pair<unsigned long, const char*> rdp_switches[] = {
    {rdp_bitmap_caching, "-b"},
    {rdp_persistent_bitmap_caching, "-P"},
    {rdp_compression, "-z"},
    {rdp_backing_store, "-B"},
};

struct redirection {
    unsigned long bit;
    const char* prefix;
    int column;
};
constexpr redirection rdp_redirections[] = {
    {rdp_disk, "-rdisk:", MC_RDP_DISK},
    {rdp_printer, "-rprinter:", MC_RDP_PRINTER},
    {rdp_lpt_port, "-rlptport:", MC_RDP_LPT},
    {rdp_com_port, "-rcomport:", MC_RDP_COM},
};

constexpr const char* xdm_default_local_map = "us_intl";
constexpr const char* xkbmap_marker = "xkbmap=";
constexpr const char* xkm_suffix = ".xkm";
constexpr const char* compiled_keymap = "tmp.xkm";

// The session programs' argument vectors are fixed arrays in which the first empty
// slot ends the vector; an empty column standing alone as an argument ends it too.
argument_vector end_at_first_empty(argument_vector arguments)
{
    for (size_t i = 0; i < arguments.size(); ++i)
        if (arguments[i].empty()) {
            arguments.resize(i);
            break;
        }
    return arguments;
}

void add_prefixed(argument_vector& arguments, const char* prefix, const std::string& value)
{
    if (!value.empty())
        arguments.push_back(prefix + value);
}

template <typename choices>
void add_choice(argument_vector& arguments, const choices& offered, const std::string& text)
{
    for (const auto& c : offered)
        if (text == c.text && *c.argument)
            arguments.push_back(c.argument);
}

// The codes (column 0) of every row of a keyboard map list whose display name
// (column 1) is name.
std::vector<std::string> keymap_codes(GtkListStore* list, const std::string& name)
{
    std::vector<std::string> codes;
    if (!list)
        return codes;
    GtkTreeModel* model = GTK_TREE_MODEL(list);
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter))
        if (model_text(model, &iter, KM_DESCRIPTION) == name)
            codes.push_back(model_text(model, &iter, KM_CODE));
    return codes;
}

// An empty size (a record the editor did not write) gives no geometry: "-g" alone
// would take the server for one.
void add_window_size(argument_vector& arguments, const std::string& size)
{
    if (size == rdp_full_screen)
        arguments.push_back("-f");
    else if (size != rdp_use_default)
        add_prefixed(arguments, "-g", size);
}

// A stored bit means the feature is wanted; rdesktop is told which to switch off.
std::string custom_experience(unsigned long flags)
{
    const long off = (~flags & rdp_experience_bits) >> rdp_experience_shift;
    char text[16];
    std::snprintf(text, sizeof text, "-x0x%02lx", off);
    return text;
}

void add_experience(argument_vector& arguments, const std::string& experience,
                    unsigned long flags)
{
    if (experience == rdp_custom_experience)
        arguments.push_back(custom_experience(flags));
    else
        add_choice(arguments, rdp_experiences, experience);
}

std::string trim(const std::string& text)
{
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && std::isspace(static_cast<unsigned char>(text[begin])))
        ++begin;
    while (end > begin && std::isspace(static_cast<unsigned char>(text[end - 1])))
        --end;
    return text.substr(begin, end - begin);
}

// The map of a setup file line holding "xkbmap=": the text after its last "xkbmap=",
// without a ".xkm" ending. Cutting at ".xkm" can remove the marker itself; the map is
// then left as it was.
void take_setup_line_map(std::string line, std::string* map)
{
    const size_t suffix = line.rfind(xkm_suffix);
    if (suffix != std::string::npos)
        line.resize(suffix);
    line = trim(line);
    const size_t marker = line.rfind(xkbmap_marker);
    if (marker != std::string::npos)
        *map = line.substr(marker + std::char_traits<char>::length(xkbmap_marker));
}

std::string xdm_keymap(const std::string& keyboard)
{
    if (keyboard == xdm_local_keyboard)
        return local_xkb_map(x_setup_file);
    const std::vector<std::string> codes = keymap_codes(keymap_list, keyboard);
    return codes.empty() ? keyboard : codes.back();
}

void add_xdm_keyboard(argument_vector& arguments, const std::string& keyboard,
                      std::string* keymap_command)
{
    if (keyboard == xdm_server_keyboard)
        return;
    const std::string map = xdm_keymap(keyboard);
    arguments.push_back("+kb");
    arguments.push_back("-xkbmap");
    if (x11_keymap) {
        *keymap_command = "xkbcomp -xkm -m " + shell_quote(map) + " " +
                          shell_quote(root_path("/etc/X11/xkb/keymap/xfree86")) + " -o " +
                          shell_quote(compiled_keymap_file());
        arguments.push_back(compiled_keymap);
    } else {
        arguments.push_back(map + xkm_suffix);
    }
}

void add_xdm_mode(argument_vector& arguments, const std::string& mode, const std::string& host)
{
    for (const xdm_mode& m : xdm_modes)
        if (mode == m.text) {
            arguments.push_back(m.option);
            if (m.names_host)
                arguments.push_back(host);
        }
}

// The host part of a session address: a Web address loses its scheme and path, and
// every address loses a ":port" ending.
std::string session_host(const connection_record& record)
{
    std::string host = record[MC_SERVER];
    if (parse_connection_type(record[MC_TYPE]) == connection_type::web) {
        const size_t scheme = host.find("://");
        if (scheme != std::string::npos) {
            host.erase(0, scheme + 3);
            host = host.substr(0, host.find('/'));
        }
    }
    return host.substr(0, host.rfind(':'));
}

}  // namespace

argument_vector rdp_arguments(const connection_record& record)
{
    const unsigned long flags = decimal_column(record[MC_RDP_FLAGS]);
    argument_vector arguments{"rdesktop"};
    add_prefixed(arguments, "-u", record[MC_USERNAME]);
    add_prefixed(arguments, "-p", unpad_password(record[MC_PASSWORD], record[MC_NAME]));
    add_prefixed(arguments, "-d", record[MC_DOMAIN]);
    add_prefixed(arguments, "-n", record[MC_RDP_CLIENT_HOST]);
    add_prefixed(arguments, "-s", record[MC_PROGRAM]);
    add_prefixed(arguments, "-c", record[MC_WORKDIR]);
    add_window_size(arguments, record[MC_WINDOW_SIZE]);
    add_choice(arguments, rdp_colours, record[MC_COLOURS]);
    add_choice(arguments, rdp_sound, record[MC_SOUND]);
    if (record[MC_KEYBOARD] != rdp_use_default)
        for (const std::string& code : keymap_codes(rdesktop_keymap_list, record[MC_KEYBOARD]))
            arguments.push_back("-k" + code);
    for (const auto& [bit, option] : rdp_switches)
        if (flags & bit)
            arguments.push_back(option);
    add_experience(arguments, record[MC_RDP_EXPERIENCE], flags);
    for (const redirection& r : rdp_redirections)
        if (flags & r.bit)
            arguments.push_back(r.prefix + record[r.column]);
    if (flags & rdp_extra_options)
        arguments.push_back(record[MC_RDP_EXTRA_OPTIONS]);
    arguments.push_back(record[MC_SERVER]);
    return end_at_first_empty(std::move(arguments));
}

std::string rdp_command_line(const argument_vector& arguments)
{
    std::string line;
    for (const std::string& argument : arguments)
        line += " " + argument;
    return line;
}

argument_vector ica_arguments(const connection_record& record)
{
    return end_at_first_empty({"wfica", "-file", ica_dir + "/appsrv.ini", "-clientfile",
                               wfclient_file, "-desc", record[MC_NAME]});
}

std::string local_xkb_map(const std::string& setup_file)
{
    std::string map = xdm_default_local_map;
    if (setup_file.empty())
        return map;
    unique_file file = open_file(setup_file, "re");
    if (!file)
        return map;
    line_reader reader(file.get(), long_line::pieces);
    while (reader.read()) {
        if (reader.text().find(xkbmap_marker) != std::string::npos) {
            take_setup_line_map(reader.text(), &map);
            break;
        }
    }
    return map;
}

argument_vector xdm_arguments(const connection_record& record, std::string* keymap_command)
{
    keymap_command->clear();
    argument_vector arguments{"X", ":" + record[MC_XDM_DISPLAY]};
    if (record[MC_XDM_VT] != xdm_automatic_vt)
        arguments.push_back("vt" + record[MC_XDM_VT]);
    add_xdm_keyboard(arguments, record[MC_KEYBOARD], keymap_command);
    add_xdm_mode(arguments, record[MC_XDM_MODE], record[MC_SERVER]);
    if (path_exists(root_path("/etc/X11/XF86Config.XDM"))) {
        arguments.push_back("-xf86config");
        arguments.push_back("XF86Config.XDM");
    }
    return end_at_first_empty(std::move(arguments));
}

argument_vector web_arguments(const connection_record& record)
{
    return end_at_first_empty({"firefox", record[MC_SERVER]});
}

std::string compiled_keymap_file() { return root_path("/tmp/tmp.xkm"); }

std::string das_program() { return root_path("/opt/zarvo/marrow"); }

std::string other_command_line(const connection_record& record) { return record[MC_PROGRAM]; }

reachability_check plan_reachability(const connection_record& record)
{
    using method = reachability_check::method;
    if (!record.ping_first || record[MC_SERVER].empty())
        return {};
    std::string host;
    std::string ping;
    if (parse_connection_type(record[MC_TYPE]) == connection_type::ica) {
        if ((decimal_column(record[MC_ICA_MASK]) & ica_published_app) ||
            record[MC_ICA_LOCATION] == ica_default)
            return {};
        host = record[MC_ICA_LOCATION];
        // "-1" where the other types have "-q": kept as it has always been.
        ping = "ping -c 1 -1 ";
    } else {
        host = session_host(record);
        ping = "ping -c 1 -q ";
    }
    if (record[MC_PING_PORT] == "0")
        return {method::icmp, ping + shell_quote(host) + " >/dev/null", "", ""};
    return {method::tcp, "", host, record[MC_PING_PORT]};
}
