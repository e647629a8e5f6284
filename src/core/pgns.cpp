#include <cassert>
#include <iterator>

#include "core/tables.h"

namespace pgn_vistel::core {

namespace {

// The base is sorted by PGN but for its closing row, which breaks the order on purpose: the search never ends
// on it. The corrected definitions stand behind it.
constexpr PgnDef pgn_table[] = {
#include "pgn_table.inc"
};
constexpr std::span<const PgnDef> base{pgn_table, base_pgns};

constexpr RepeatSetDef repeat_set_table[] = {
#include "repeat_set_table.inc"
};

constexpr PgnIndex index{base};

}  // namespace

constexpr PgnPlan pgn_plans[] = {
#include "pgn_plans.inc"
};
static_assert(std::size(pgn_plans) == std::size(pgn_table));

std::uint16_t find_pgn_row(std::uint32_t pgn) {
    return index[pgn];
}

const PgnDef* find_pgn_def(std::uint32_t pgn) {
    const std::uint16_t row = find_pgn_row(pgn);
    if (row != end_row) return &pgn_table[row];
    const int found = binary_search(base, pgn);
    return found >= 0 ? &pgn_table[found] : nullptr;
}

const PgnDef& pgn_row(std::uint16_t row) {
    return pgn_table[row];
}

const PgnPlan& plan_of(const PgnDef& row) {
    assert(is_row_of(pgn_table, row));
    return pgn_plans[&row - pgn_table];
}

std::string_view pgn_name(const PgnDef* row) {
    if (row == nullptr) return "Unknown";
    const PgnPlan& plan = plan_of(*row);
    return {text_pool + plan.texts + PgnPlan::name_at,
            static_cast<std::size_t>(plan.line_size - PgnPlan::name_at)};
}

const RepeatSetDef* find_repeat_set(std::uint32_t pgn) {
    const int found = binary_search(std::span<const RepeatSetDef>(repeat_set_table), pgn);
    return found >= 0 ? &repeat_set_table[found] : nullptr;
}

std::span<const PgnDef> all_pgns() {
    return base;
}

std::span<const PgnDef> all_corrected_pgns() {
    return std::span(pgn_table).subspan(base_pgns);
}

std::span<const RepeatSetDef> all_repeat_sets() {
    return repeat_set_table;
}

}  // namespace pgn_vistel::core
