#include <iterator>

#include "pgn_vistel/catalogue.h"

namespace pgn_vistel {

namespace {

constexpr RepeatSetDef repeat_set_table[] = {
#include "repeat_set_table.inc"
};

}  // namespace

const RepeatSetDef* find_repeat_set(std::uint32_t pgn) {
    // By PGN alone: where several selectors have a row, the halving decides which one serves them all.
    int low = 0;
    int high = static_cast<int>(std::size(repeat_set_table)) - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        const RepeatSetDef& row = repeat_set_table[middle];
        if (row.pgn == pgn) return &row;
        if (row.pgn > pgn)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return nullptr;
}

std::span<const RepeatSetDef> all_repeat_sets() {
    return repeat_set_table;
}

}  // namespace pgn_vistel
