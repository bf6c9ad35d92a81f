#include "keymaps/keymaps.h"

#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <vector>

GtkListStore* keymap_list = nullptr;           // X layouts offered by the XDM editor
int x11_keymap = 1;                            // the launcher compiles xkb maps unless XFCE's list was used
GtkListStore* rdesktop_keymap_list = nullptr;  // rdesktop maps offered by the RDP editor
std::string rdesktop_keymap_dir;               // set by make_rdesktop_keymap

// The names are data: the two Dutch rows stay as they have always been.
const rdesktop_keymap_name rdesktop_keymaps[rdesktop_keymap_count] = {
    {"xx", "Use Default"},
    {"ar", "Arabic"},
    {"da", "Danish"},
    {"de", "German (Germany)"},
    {"de-ch", "German (Switzerland)"},
    {"en-gb", "English (United Kingdom)"},
    {"en-us", "English (United States)"},
    {"es", "Spanish"},
    {"et", "Estonian"},
    {"fi", "Finnish"},
    {"fo", "Faeroese"},
    {"fr", "French (France)"},
    {"fr-be", "French (Belgium)"},
    {"fr-ca", "French (Canada)"},
    {"fr-ch", "French (Switzerland)"},
    {"hr", "Croatian"},
    {"hu", "Hungarian"},
    {"intl", "International Europe"},
    {"is", "Icelandic"},
    {"it", "Italian"},
    {"it-ch", "Italian (Switzerland)"},
    {"ja", "Japanese"},
    {"ko", "Korean"},
    {"lt", "Lithuanian"},
    {"lv", "Latvian"},
    {"mk", "FYRO Macedonian"},
    {"nl", "Dutch (Belgium)"},
    {"nl-be", "Dutch (Netherlands)"},
    {"no", "Norwegian (Bokmal)"},
    {"pl", "Polish"},
    {"pt", "Portuguese (Portugal)"},
    {"pt-br", "Portuguese (Brazil)"},
    {"ru", "Russian"},
    {"sl", "Slovenian"},
    {"sv", "Swedish"},
    {"th", "Thai"},
    {"tr", "Turkish"},
};

namespace {

constexpr const char* xkb_rules_path = "/etc/X11/xkb/rules/xfree86.lst";
constexpr const char* xkb_keymap_path = "/etc/X11/xkb/keymap/xfree86";
constexpr const char* xfce_keyboard_path = "/etc/xfce4/applets/keyboard.conf";
constexpr const char* rdesktop_folder_path = "/usr/share/rdesktop/keymaps";
constexpr const char* rdesktop_list_name = "keymap.lst";
constexpr const char* layout_marker = "! layout";
constexpr const char* variant_marker = "! variant";
constexpr const char* xkb_keymap_marker = "xkb_keymap \"";
constexpr const char* no_keymap_message = "\nCouldn't open keymap file.\n";
constexpr const char* default_code = "xx";
constexpr const char* default_name = "Use Default";
// Files of the rdesktop folder that are not keyboard maps of their own.
constexpr const char* non_map_entries[] = {"common", "modifiers", "keymap.lst"};
// A listed layout's code ends at a space among its first characters.
constexpr size_t code_width = 15;

struct keymap_entry {
    std::string code;
    std::string description;
};
using keymap_entries = std::vector<keymap_entry>;

bool is_space(char c) { return std::isspace(static_cast<unsigned char>(c)); }

std::string trim_trailing(std::string text)
{
    while (!text.empty() && is_space(text.back()))
        text.pop_back();
    return text;
}

std::string strip(const std::string& text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), is_space);
    return trim_trailing(std::string(first, text.end()));
}

void cut_at(std::string& text, size_t position)
{
    if (position != std::string::npos)
        text.resize(position);
}

// A "code description" line of the rules list or keymap.lst. A line without a space
// among its first characters names no description and is skipped.
std::optional<keymap_entry> listed_entry(const std::string& line)
{
    std::string text = strip(line);
    std::replace(text.begin(), text.end(), '\t', ' ');
    const size_t space = text.find(' ');
    if (space == std::string::npos || space >= code_width)
        return std::nullopt;
    return keymap_entry{text.substr(0, space), strip(text.substr(space))};
}

// The layouts between the "! layout" and "! variant" lines of the rules list.
keymap_entries read_xkb_rules(FILE* file)
{
    keymap_entries entries;
    line_reader reader(file, long_line::pieces);
    bool in_layouts = false;
    while (reader.read()) {
        const std::string line = reader.text();
        if (!in_layouts) {
            in_layouts = contains(line, layout_marker);
            continue;
        }
        if (contains(line, variant_marker))
            break;
        if (line == "\n")
            continue;
        if (auto entry = listed_entry(line))
            entries.push_back(*entry);
    }
    return entries;
}

// A line such as: xkb_keymap "de" {  -- the map name is both code and description.
std::optional<keymap_entry> xkb_keymap_entry(std::string line)
{
    cut_at(line, line.rfind('"'));
    const size_t marker = line.find(xkb_keymap_marker);
    if (marker == std::string::npos)
        return std::nullopt;
    const std::string name = trim_trailing(line.substr(marker + std::strlen(xkb_keymap_marker)));
    return keymap_entry{name, name};
}

// A line such as: us "English"  # comment
std::optional<keymap_entry> xfce_keyboard_entry(std::string line)
{
    cut_at(line, line.rfind('"'));
    cut_at(line, line.find('#'));
    const size_t quote = line.find('"');
    if (quote == std::string::npos)
        return std::nullopt;
    return keymap_entry{trim_trailing(line.substr(0, quote)), trim_trailing(line.substr(quote + 1))};
}

template <typename parse_line>
keymap_entries read_each_line(FILE* file, parse_line parse)
{
    keymap_entries entries;
    line_reader reader(file, long_line::pieces);
    while (reader.read())
        if (auto entry = parse(reader.text()))
            entries.push_back(*entry);
    return entries;
}

keymap_entries read_xkb_keymap(FILE* file) { return read_each_line(file, xkb_keymap_entry); }
keymap_entries read_xfce_keyboard(FILE* file) { return read_each_line(file, xfce_keyboard_entry); }

struct x_keymap_source {
    const char* path;
    int from_xkb;
    keymap_entries (*read)(FILE* file);
};

// Tried in this order; the first that opens is the only one read.
constexpr x_keymap_source x_keymap_sources[] = {
    {xkb_rules_path, 1, read_xkb_rules},
    {xkb_keymap_path, 1, read_xkb_keymap},
    {xfce_keyboard_path, 0, read_xfce_keyboard},
};

// Start-up builds each list once; building again (as the tests do) empties the same
// store, so that a view showing it stays valid.
void reset_list(GtkListStore** list)
{
    if (*list)
        gtk_list_store_clear(*list);
    else
        *list = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
}

void append_row(GtkListStore* list, const std::string& code, const std::string& description)
{
    GtkTreeIter iter;
    gtk_list_store_append(list, &iter);
    gtk_list_store_set(list, &iter, KM_CODE, code.c_str(), KM_DESCRIPTION, description.c_str(), -1);
}

std::string rdesktop_map_path(const std::string& code) { return rdesktop_keymap_dir + "/" + code; }

// keymap.lst pairs whose map file is in the folder.
keymap_entries read_rdesktop_list(FILE* file)
{
    keymap_entries entries;
    line_reader reader(file, long_line::pieces);
    while (reader.read()) {
        if (reader.text() == "\n")
            continue;
        auto entry = listed_entry(reader.text());
        if (entry && path_exists(rdesktop_map_path(entry->code)))
            entries.push_back(*entry);
    }
    return entries;
}

bool is_non_map_entry(const char* name)
{
    return std::any_of(std::begin(non_map_entries), std::end(non_map_entries),
                       [name](const char* other) { return std::strcmp(name, other) == 0; });
}

// The whole table is searched and the last match wins; codes are unique, so it is
// the only match.
std::string built_in_name(const std::string& code)
{
    std::string name = code;
    for (const rdesktop_keymap_name& row : rdesktop_keymaps)
        if (code == row.code)
            name = row.name;
    return name;
}

// A keymap.lst that opened but named none of the folder's maps is trusted over the
// built-in table: every map then shows its file name.
std::string rdesktop_display_name(const std::string& code, bool list_opened, const keymap_entries& listed)
{
    if (list_opened && listed.empty())
        return code;
    for (const keymap_entry& entry : listed)
        if (entry.code == code)
            return entry.description;
    return built_in_name(code);
}

void append_rdesktop_maps(GDir* folder, bool list_opened, const keymap_entries& listed)
{
    while (const char* name = g_dir_read_name(folder))
        if (!is_non_map_entry(name))
            append_row(rdesktop_keymap_list, name, rdesktop_display_name(name, list_opened, listed));
}

}  // namespace

int make_x_keymap()
{
    reset_list(&keymap_list);
    for (const x_keymap_source& source : x_keymap_sources) {
        unique_file file = open_text_file(root_path(source.path));
        if (!file)
            continue;
        x11_keymap = source.from_xkb;
        for (const keymap_entry& entry : source.read(file.get()))
            append_row(keymap_list, entry.code, entry.description);
        return 1;
    }
    set_error_text(no_keymap_message);
    return 0;
}

int make_rdesktop_keymap()
{
    rdesktop_keymap_dir = root_path(rdesktop_folder_path);
    reset_list(&rdesktop_keymap_list);
    append_row(rdesktop_keymap_list, default_code, default_name);
    keymap_entries listed;
    unique_file list_file = open_text_file(rdesktop_map_path(rdesktop_list_name));
    if (list_file)
        listed = read_rdesktop_list(list_file.get());
    GDir* folder = g_dir_open(rdesktop_keymap_dir.c_str(), 0, nullptr);
    if (!folder)
        return 0;
    append_rdesktop_maps(folder, list_file != nullptr, listed);
    g_dir_close(folder);
    return 1;
}

int read_file(const char* path)
{
    gchar* contents = nullptr;
    if (!g_file_get_contents(path, &contents, nullptr, nullptr)) {
        std::printf("Cannot load file: %s\n", path);
        return 0;
    }
    g_free(contents);
    return 1;
}
