#include "check/checks.h"

#include "keymaps/keymaps.h"
#include "store/password.h"
#include "platform/paths.h"
#include "store/choices.h"
#include "store/master_file.h"
#include "store/models.h"

#include <map>
#include <utility>

std::string file_choice::read_path(const std::string& inside_root) const
{
    auto it = instead.find(inside_root);
    return it == instead.end() ? root_path(inside_root) : it->second;
}

read_observer findings_observer(check_report& report, const std::string& file)
{
    return [&report, file](const read_event& e) {
        switch (e.note) {
        case read_note::line_cut:
        {
            const std::string kept = e.text.substr(0, 100);
            report.fail(file, e.line, "line longer than 101 characters: cut after its 100th character, \"..." +
                                          kept.substr(kept.size() > 10 ? kept.size() - 10 : 0) +
                                          "\", the rest is thrown away");
            break;
        }
        case read_note::line_run_on:
            report.fail(file, e.line, "second line longer than 101 characters: its rest after the 100th "
                                      "character is read as the next line, and every later line is misaligned");
            break;
        case read_note::record_short:
            report.fail(file, e.line, "record " + quoted(e.text) +
                                          " is cut short by the end of the file: its last columns repeat the "
                                          "line before");
            break;
        case read_note::not_a_flag:
            report.fail(file, e.line, quoted(e.text) + " is no flag word and counts as FALSE");
            break;
        case read_note::row_dropped:
            report.warn(file, e.line, "row " + e.text + " names no connection of the master list and is dropped");
            break;
        case read_note::row_promoted:
            report.warn(file, e.line, "secondary row " + e.text + " has no primary row before it and becomes one");
            break;
        case read_note::number_ignored:
            report.fail(file, e.line, quoted(e.text) + " is numbered beyond the 15 hotkeys and is ignored");
            break;
        case read_note::row_kept:
            break;
        }
    };
}

namespace {

bool is_number(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool names_display_name(GtkListStore* list, const std::string& name)
{
    GtkTreeModel* model = GTK_TREE_MODEL(list);
    GtkTreeIter iter;
    for (bool more = list && gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter))
        if (model_text(model, &iter, KM_DESCRIPTION) == name)
            return true;
    return false;
}

template <typename Choices>
bool is_choice(const Choices& choices, const std::string& text)
{
    for (const auto& choice : choices)
        if (text == choice.text)
            return true;
    return false;
}

// A text column whose text is none of the choices the launch compares it with.
bool adds_nothing(connection_type type, int column, const std::string& text)
{
    if (text.empty())
        return false;
    if (type == connection_type::rdp) {
        switch (column) {
        case MC_COLOURS: return !is_choice(rdp_colours, text);
        case MC_SOUND: return !is_choice(rdp_sound, text);
        case MC_RDP_EXPERIENCE: return text != rdp_custom_experience && !is_choice(rdp_experiences, text);
        case MC_KEYBOARD: return text != rdp_use_default && !names_display_name(rdesktop_keymap_list, text);
        }
    }
    if (type == connection_type::xdm && column == MC_XDM_MODE)
        return !is_choice(xdm_modes, text);
    return false;
}

// The number columns a launch or a file writer reads; other text counts as 0.
bool read_as_number(const connection_record& record, connection_type type, int column)
{
    if (column == MC_PING_PORT)
        return record.ping_first;
    return (type == connection_type::rdp && column == MC_RDP_FLAGS) ||
           (type == connection_type::ica && column == MC_ICA_MASK);
}

// A stored password of 32 characters or more is kept without padding, and the reader
// cuts it where its first and last characters point.
void check_password(check_report& report, const std::string& file, int line, const connection_record& record)
{
    const std::string& stored = record[MC_PASSWORD];
    if (stored.empty())
        return;
    const size_t read_back = unpad_password(stored, record[MC_NAME]).size();
    const auto length = static_cast<signed char>(stored.front() ^ stored.back());
    if (stored.size() == 33 && length >= 1 && length <= 31)
        return;
    report.fail(file, line, "password of " + std::to_string(stored.size()) +
                                " characters is not padded: it comes back as " + std::to_string(read_back) +
                                " characters");
}

void check_columns(check_report& report, const std::string& file, int first_line, const connection_record& record)
{
    const connection_type type = parse_connection_type(record[MC_TYPE]);
    if (type == connection_type::unknown) {
        report.warn(file, first_line + MC_TYPE, "connection " + quoted(record[MC_NAME]) + ": type " +
                                                    quoted(record[MC_TYPE]) + " is none of the six: it starts nothing");
        return;
    }
    for (int column = MC_PING_PORT; column < master_file_columns; ++column) {
        const std::string& text = record[column];
        if (adds_nothing(type, column, text))
            report.fail(file, first_line + column, "column " + std::to_string(column) + " " + quoted(text) +
                                                       " matches no choice and adds nothing");
        else if (read_as_number(record, type, column) && !is_number(text))
            report.fail(file, first_line + column, "column " + std::to_string(column) + " " + quoted(text) +
                                                       " is no decimal number and counts as " +
                                                       std::to_string(decimal_column(text)));
    }
    if (type == connection_type::rdp || type == connection_type::ica)
        check_password(report, file, first_line + MC_PASSWORD, record);
}

connection_view launch_of(const connection_record& record)
{
    connection_view view{record[MC_NAME], record[MC_TYPE], plan_reachability(record), {}, {}, {}, {}};
    auto parsed = [](const std::string& line) -> std::optional<std::vector<std::string>> {
        gchar** argv = nullptr;
        if (!g_shell_parse_argv(line.c_str(), nullptr, &argv, nullptr))
            return std::nullopt;
        std::vector<std::string> words(argv, argv + g_strv_length(argv));
        g_strfreev(argv);
        return words;
    };
    switch (parse_connection_type(record[MC_TYPE])) {
    case connection_type::rdp:
        view.command = rdp_command_line(rdp_arguments(record));
        view.argv = parsed(*view.command);
        view.program = "rdesktop";
        break;
    case connection_type::other:
        view.command = other_command_line(record);
        view.argv = parsed(*view.command);
        view.program = view.argv && !view.argv->empty() ? (*view.argv)[0] : "";
        break;
    case connection_type::ica: view.argv = ica_arguments(record); break;
    case connection_type::xdm: view.argv = xdm_arguments(record, &view.xkbcomp); break;
    case connection_type::web: view.argv = web_arguments(record); break;
    case connection_type::das:
        view.program = das_program();
        view.argv = std::vector<std::string>{};  // deliberately empty, not even its own name
        break;
    case connection_type::unknown: break;  // checked for reachability all the same, then nothing starts
    }
    if (!view.program && view.argv && !view.argv->empty())
        view.program = (*view.argv)[0];
    return view;
}

}  // namespace

master_view check_master_list(check_report& report, const file_choice& files)
{
    const std::string file = master_file_path;
    const std::string path = files.read_path(file);
    const read_observer observer = findings_observer(report, file);
    std::map<std::pair<std::string, std::string>, int> first_seen;
    std::vector<connection_record> in_file_order;
    std::vector<int> list_order;
    const master_header header = read_master_records(
        path.c_str(), master_file_columns,
        [&](connection_record&& record, int line) {
            check_columns(report, file, line, record);
            auto [at, fresh] = first_seen.emplace(std::make_pair(record[MC_NAME], record[MC_TYPE]), line);
            if (!fresh)
                report.warn(file, line, "connection " + quoted(record[MC_NAME]) + " (" + record[MC_TYPE] +
                                            ") again, first on line " + std::to_string(at->second) +
                                            ": only the first is ever started");
            if (!in_file_order.empty() &&
                g_ascii_strcasecmp(in_file_order.back()[MC_NAME].c_str(), record[MC_NAME].c_str()) > 0)
                report.warn(file, line, "name " + quoted(record[MC_NAME]) + " comes after " +
                                            quoted(in_file_order.back()[MC_NAME]) + ": the list is shown sorted");
            in_file_order.push_back(std::move(record));
        },
        &observer, master_file_columns, &list_order);
    if (header == master_header::wrong_version)
        report.fail(file, 1, "first line is not \"Version 1.000\": Master connection list version miscompare, "
                             "no connection is loaded");
    if (header == master_header::missing)
        report.warn(file, 0, "missing or unreadable: no connection is offered");

    master_view master;
    for (int number : list_order) {
        master.records.push_back(std::move(in_file_order[number]));
        const connection_record& record = master.records.back();
        master.pairs.insert(record[MC_NAME] + '\n' + record[MC_TYPE]);
        report.connections.push_back(launch_of(record));
    }
    return master;
}
