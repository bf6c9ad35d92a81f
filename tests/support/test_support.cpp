#include "support/test_support.h"

#include "platform/message.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

full_disk::full_disk(rlim_t room)
{
    signal(SIGXFSZ, SIG_IGN);  // the write fails with EFBIG instead of killing the test
    getrlimit(RLIMIT_FSIZE, &old_);
    struct rlimit small = old_;
    small.rlim_cur = room;
    setrlimit(RLIMIT_FSIZE, &small);
}

full_disk::~full_disk() { setrlimit(RLIMIT_FSIZE, &old_); }

temp_dir::temp_dir() : path_((std::filesystem::temp_directory_path() / "kestrelle-test-XXXXXX").string())
{
    if (!mkdtemp(path_.data()))
        throw std::runtime_error("mkdtemp failed");
}

temp_dir::~temp_dir()
{
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(path_, ignored);
}

scoped_root::scoped_root(const std::string& root)
    : old_(std::getenv("KESTRELLE_ROOT") ? std::getenv("KESTRELLE_ROOT") : ""), had_old_(std::getenv("KESTRELLE_ROOT"))
{
    setenv("KESTRELLE_ROOT", root.c_str(), 1);
}

scoped_root::~scoped_root() { had_old_ ? setenv("KESTRELLE_ROOT", old_.c_str(), 1) : unsetenv("KESTRELLE_ROOT"); }

void write_file(const std::string& path, const std::string& contents)
{
    make_dirs(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
}

std::string read_file_text(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::vector<std::string>> read_records(const std::string& path)
{
    std::vector<std::vector<std::string>> records{{""}};
    std::istringstream text(read_file_text(path));
    for (std::string line; std::getline(text, line);) {
        if (line == "%%")
            records.push_back({""});
        else if (line == "--")
            records.back().push_back("");
        else
            records.back().back() += line + "\n";
    }
    records.pop_back();  // what follows the last record's end
    return records;
}

std::vector<std::vector<std::string>> read_blocks(const std::string& path)
{
    std::vector<std::vector<std::string>> blocks(1);
    std::istringstream text(read_file_text(path));
    for (std::string line; std::getline(text, line);)
        if (line.empty() && !blocks.back().empty())
            blocks.emplace_back();
        else if (!line.empty() && line[0] != '#')
            blocks.back().push_back(line);
    if (blocks.back().empty())
        blocks.pop_back();
    return blocks;
}

void make_dirs(const std::string& path) { std::filesystem::create_directories(path); }

static std::string dump_rows(GtkTreeModel* model, GtkTreeIter* parent, std::initializer_list<int> columns,
                             const std::string& indent)
{
    std::string text;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_iter_children(model, &iter, parent); more; more = gtk_tree_model_iter_next(model, &iter)) {
        text += indent;
        for (int column : columns) {
            GValue value = G_VALUE_INIT, shown = G_VALUE_INIT;
            gtk_tree_model_get_value(model, &iter, column, &value);
            g_value_init(&shown, G_TYPE_STRING);
            if (column != *columns.begin())
                text += "|";
            if (g_value_transform(&value, &shown) && g_value_get_string(&shown))
                text += g_value_get_string(&shown);
            g_value_unset(&shown);
            g_value_unset(&value);
        }
        text += "\n" + dump_rows(model, &iter, columns, indent + "  ");
    }
    return text;
}

std::string dump_model(GtkTreeModel* model, std::initializer_list<int> columns)
{
    return dump_rows(model, nullptr, columns, "");
}

std::string master_text(const std::string& records, const std::string& gui)
{
    return "Version 1.000\n" + gui + "\nDon't show taskbar\nNot kiosk\n" + records;
}

std::string master_record(const std::string& name, const std::string& type, bool ping, const std::string& port,
                          const std::map<int, std::string>& columns)
{
    std::string lines = name + "\n" + type + "\n" + (ping ? "Standard echo" : "Don't ping") + "\n" + port + "\n";
    for (int c = 4; c < 35; ++c)
        lines += (columns.contains(c) ? columns.at(c) : c == 4 ? "1" : c >= 33 ? "0" : "") + "\n";
    return lines;
}

static message_recorder* active_recorder = nullptr;

message_recorder::message_recorder()
{
    active_recorder = this;
    set_message_handlers({[](const std::string& text) { active_recorder->label = text; },
                          [] { active_recorder->shown.push_back(active_recorder->label); },
                          [] { ++active_recorder->prompts; }});
}

message_recorder::~message_recorder()
{
    active_recorder = nullptr;
    set_message_handlers({[](const std::string&) {}, [] {}});
}
