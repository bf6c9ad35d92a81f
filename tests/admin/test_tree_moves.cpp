#include "admin/tree_moves.h"

#include <gtest/gtest.h>

namespace {

// Primary 0 with two secondaries, primary 1 alone, primary 2 with one secondary.
const tree_shape shape{2, 0, 1};
constexpr tree_position p(int primary, int secondary = -1) { return {primary, secondary}; }

TEST(tree_moves, targets_up_and_down)
{
    struct move { tree_position from; std::optional<tree_position> up, down; } table[] = {
        {p(0), std::nullopt, p(0, 0)},    // the very first row cannot go up
        {p(0, 0), p(0), p(0, 1)},         // a first secondary goes up to its primary
        {p(0, 1), p(0, 0), p(1)},         // the last secondary goes down to the next primary
        {p(1), p(0, 1), p(2)},            // into the last secondary above; onto the next primary
        {p(2), p(1), p(2, 0)},
        {p(2, 0), p(2), std::nullopt},    // nothing after the last row
    };
    for (const move& m : table) {
        EXPECT_EQ(move_up_target(shape, m.from), m.up) << m.from.primary << "," << m.from.secondary;
        EXPECT_EQ(move_down_target(shape, m.from), m.down) << m.from.primary << "," << m.from.secondary;
    }
}

// Name, pid, status, then Auto, Persistent and Prompt as digits, then the poll count.
std::string shown(const tree_row& r)
{
    return r.name + "|" + r.pid + "|" + r.status + "|" + std::to_string(r.automatic) + std::to_string(r.persistent) +
           std::to_string(r.prompt) + "|" + std::to_string(r.polls);
}

TEST(tree_moves, exchange_keeps_position_flags_and_applies_start_flag_rules)
{
    // The move, then Auto and Persistent at each position afterwards.
    struct exchange { bool up, selected_secondary, target_secondary, selected_after, target_after; } table[] = {
        // Both primaries: the start flags travel with their connections.
        {true, false, false, true, false},
        {false, false, false, true, false},
        // A secondary moving up to its primary takes the primary position's flags.
        {true, true, false, false, true},
        {true, true, true, false, false},
        // Moving down onto a secondary, the connection arriving above takes the flags.
        {false, false, true, false, false},
        {false, true, true, false, false},
    };
    for (const exchange& e : table) {
        tree_row selected{true, "Mover", "RDP", false, false, false, "0", "Not Connected", 0};
        tree_row target{true, "Other", "RDP", true, true, true, "01234", "Active", 7};
        exchange_rows(selected, target, e.up, e.selected_secondary, e.target_secondary);
        SCOPED_TRACE(testing::Message() << e.up << e.selected_secondary << e.target_secondary);
        // Auto and Persistent as the table says; Prompt and the poll count stay with the position.
        EXPECT_EQ(shown(selected), "Other|01234|Active|" + std::string(e.selected_after ? "11" : "00") + "0|0");
        EXPECT_EQ(shown(target), "Mover|0|Not Connected|" + std::string(e.target_after ? "11" : "00") + "1|7");
    }
}

}  // namespace
