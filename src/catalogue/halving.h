#pragma once

#include <cstddef>
#include <cstdint>

namespace pgn_vistel {

/// The row of a PGN that the halving of the whole table meets first, or null. Where a PGN has several rows,
/// names shown to users and the repeating group that serves them all depend on this very order of steps.
template <class Row, std::size_t size>
const Row* find_by_halving(const Row (&table)[size], std::uint32_t pgn) {
    int low = 0;
    int high = static_cast<int>(size) - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        const Row& row = table[middle];
        if (row.pgn == pgn) return &row;
        if (row.pgn > pgn)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return nullptr;
}

}  // namespace pgn_vistel
