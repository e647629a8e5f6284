#include <iterator>

#include "catalogue/halving.h"
#include "pgn_vistel/catalogue.h"
#include "values/text_copy.h"

namespace pgn_vistel {

namespace {

// Sorted by PGN but for the closing row, which breaks the order on purpose: the search never ends on it.
constexpr PgnDef pgn_table[] = {
#include "pgn_table.inc"
};

}  // namespace

const PgnDef* find_pgn_def(std::uint32_t pgn) {
    return find_by_halving(pgn_table, pgn);
}

const wchar_t* pgn_def_name(const PgnDef* row) {
    if (row == nullptr) return L"Unknown";
    switch (row->pgn) {
        // Where the variants' names differ, a name for all of them.
        case 126464: return L"PGN List";
        case 61184: return L"Single-Frame Proprietary";
        case 126208: return L"NMEA Group Function";
        case 126720: return L"Fast-Package Proprietary";
        default: break;
    }
    static wchar_t name[1024];
    return widen(name, row->name, std::size(name));
}

std::span<const PgnDef> all_pgns() {
    return pgn_table;
}

}  // namespace pgn_vistel
