#include "check/checks.h"

#include "platform/paths.h"
#include "store/models.h"
#include "store/user_file.h"

namespace {

void check_flags(check_report& report, const std::string& file, int line, const tree_row& row, bool secondary)
{
    const std::string who = quoted(row.name) + " (" + row.type + ")";
    if (secondary && (row.automatic || row.persistent || row.prompt))
        report.warn(file, line, "secondary row " + who + " carries flags: only a primary row's take effect");
    else if (row.prompt && !row.persistent)
        report.warn(file, line, "row " + who + " has Prompt without Persistent: Prompt takes no effect");
}

}  // namespace

void check_user_tree(check_report& report, const master_view& master, const std::string& user,
                     const std::string& file, const std::string& path)
{
    const read_observer findings = findings_observer(report, file);
    // The rows the load keeps, in file order, with their first lines: the tree holds them
    // in the same order, depth first.
    std::vector<int> kept_lines;
    const read_observer observer = [&](const read_event& e) {
        if (e.note == read_note::row_kept)
            kept_lines.push_back(e.line);
        else
            findings(e);
    };
    if (!is_regular_file(path))
        report.warn(file, 0, "missing or no file: the user is offered no connection");
    GtkTreeStore* tree = create_user_tree_store();
    const connection_known_fn known = [&](const std::string& name, const std::string& type) {
        return master.contains(name, type);
    };
    make_connection_tree(tree, path.c_str(), user_lines_per_row, nullptr, known, &observer);
    user_view view{user, file, connection_groups(GTK_TREE_MODEL(tree))};
    g_object_unref(tree);
    size_t row = 0;
    auto line_of = [&]() { return row < kept_lines.size() ? kept_lines[row++] : 0; };
    for (primary_group& group : view.rows) {
        check_flags(report, file, line_of(), group.primary, false);
        for (const tree_row& secondary : group.secondaries)
            check_flags(report, file, line_of(), secondary, true);
    }
    report.users.push_back(std::move(view));
}
