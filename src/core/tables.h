#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "core/plan.h"
#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

#include "table_sizes.inc"

extern const DDDef dictionary[dictionary_size];

/// Of fields that no dictionary entry describes.
extern const DDDef no_entry_of_dictionary;

/// Whether a row stands in the table: its place there is what is known of it.
template <class Row, std::size_t size>
bool is_row_of(const Row (&table)[size], const Row& row) {
    return std::less_equal<>()(table, &row) && std::less<>()(&row, table + size);
}

/// The row of a PGN that the binary search of the whole table meets first, or -1. Where a PGN has several
/// rows, names shown to users and the repeating group that serves them all depend on this very order of
/// steps.
template <class Row>
constexpr int binary_search(std::span<const Row> table, std::uint32_t pgn) {
    int low = 0;
    int high = static_cast<int>(table.size()) - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        const Row& row = table[static_cast<std::size_t>(middle)];
        if (row.pgn == pgn) return middle;
        if (row.pgn > pgn)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return -1;
}

}  // namespace pgn_vistel::core
