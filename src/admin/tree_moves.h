#pragma once
// The rules of the administration tree on plain values: where a row moving up or down
// lands, and what the two rows exchange. A move exchanges contents, not rows: name,
// type, Automatic, Persistent, process id and status travel; Primary, Prompt and the
// poll count stay with the position.
#include "store/record.h"

#include <optional>
#include <vector>

// A row's place: the primary's index, and the secondary's index under it (-1 for the
// primary itself).
struct tree_position {
    int primary = 0;
    int secondary = -1;
    bool is_secondary() const { return secondary >= 0; }
    bool operator==(const tree_position&) const = default;
};

// The tree's shape: how many secondaries each primary has.
using tree_shape = std::vector<int>;

// Up: the previous sibling, or its last secondary when it has some; a first secondary
// goes to its primary. Nothing for the very first row.
std::optional<tree_position> move_up_target(const tree_shape& shape, tree_position selected);
// Down: the first secondary; else the next sibling; else the primary after the
// parent. Moving down onto a primary with secondaries lands on the primary itself.
std::optional<tree_position> move_down_target(const tree_shape& shape, tree_position selected);

// Exchanges the travelling contents of the selected and target rows, with the flag
// rules of the direction.
void exchange_rows(tree_row& selected, tree_row& target, bool up, bool selected_is_secondary,
                   bool target_is_secondary);
