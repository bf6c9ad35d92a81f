#include "admin/tree_moves.h"

#include <utility>

namespace {

bool valid_primary(const tree_shape& shape, int primary)
{
    return primary >= 0 && primary < static_cast<int>(shape.size());
}

void swap_contents(tree_row& a, tree_row& b)
{
    std::swap(a.name, b.name);
    std::swap(a.type, b.type);
    std::swap(a.automatic, b.automatic);
    std::swap(a.persistent, b.persistent);
    std::swap(a.pid, b.pid);
    std::swap(a.status, b.status);
}

void keep_start_flags(tree_row& row, const tree_row& before)
{
    row.automatic = before.automatic;
    row.persistent = before.persistent;
}

void clear_start_flags(tree_row& row)
{
    row.automatic = false;
    row.persistent = false;
}

}  // namespace

std::optional<tree_position> move_up_target(const tree_shape& shape, tree_position selected)
{
    if (selected.is_secondary()) {
        if (selected.secondary > 0)
            return tree_position{selected.primary, selected.secondary - 1};
        return tree_position{selected.primary, -1};
    }
    const int previous = selected.primary - 1;
    if (!valid_primary(shape, previous))
        return std::nullopt;
    if (shape[previous] > 0)
        return tree_position{previous, shape[previous] - 1};
    return tree_position{previous, -1};
}

std::optional<tree_position> move_down_target(const tree_shape& shape, tree_position selected)
{
    if (!valid_primary(shape, selected.primary))
        return std::nullopt;
    if (!selected.is_secondary() && shape[selected.primary] > 0)
        return tree_position{selected.primary, 0};
    if (selected.is_secondary() && selected.secondary + 1 < shape[selected.primary])
        return tree_position{selected.primary, selected.secondary + 1};
    if (valid_primary(shape, selected.primary + 1))
        return tree_position{selected.primary + 1, -1};
    return std::nullopt;
}

void exchange_rows(tree_row& selected, tree_row& target, bool up, bool selected_is_secondary,
                   bool target_is_secondary)
{
    const tree_row selected_before = selected;
    const tree_row target_before = target;
    swap_contents(selected, target);
    if (up) {
        // The connection arriving at the target takes the target's start flags.
        if (selected_is_secondary) {
            keep_start_flags(target, target_before);
            clear_start_flags(selected);
        }
        if (target_is_secondary)
            clear_start_flags(target);
    } else if (target_is_secondary) {
        keep_start_flags(selected, selected_before);
        clear_start_flags(target);
    }
}
