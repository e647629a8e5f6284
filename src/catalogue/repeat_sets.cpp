#include "catalogue/halving.h"
#include "pgn_vistel/catalogue.h"

namespace pgn_vistel {

namespace {

constexpr RepeatSetDef repeat_set_table[] = {
#include "repeat_set_table.inc"
};

}  // namespace

const RepeatSetDef* find_repeat_set(std::uint32_t pgn) {
    return find_by_halving(repeat_set_table, pgn);
}

std::span<const RepeatSetDef> all_repeat_sets() {
    return repeat_set_table;
}

}  // namespace pgn_vistel
