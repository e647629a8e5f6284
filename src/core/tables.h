#pragma once

#include <array>
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

/// Where that search of a table ends, by index for the PGNs that messages have: every message asks.
class PgnIndex {
  public:
    template <class Row>
    explicit consteval PgnIndex(std::span<const Row> table) {
        page_0_.fill(end_row);
        page_1_.fill(end_row);
        for (const Row& row : table) {
            const auto place = static_cast<std::uint16_t>(binary_search(table, row.pgn));
            if (row.pgn - first_0 < page_0_.size()) page_0_[row.pgn - first_0] = place;
            if (row.pgn - first_1 < page_1_.size()) page_1_[row.pgn - first_1] = place;
        }
    }

    /// `end_row` where the table has none, or the PGN is none that messages have.
    std::uint16_t operator[](std::uint32_t pgn) const {
        if (pgn >= 0x10000) return pgn - first_1 < page_1_.size() ? page_1_[pgn - first_1] : end_row;
        return pgn - first_0 < page_0_.size() ? page_0_[pgn - first_0] : end_row;
    }

  private:
    static constexpr std::uint32_t first_0 = 0x0E800, first_1 = 0x1ED00;
    std::array<std::uint16_t, 0x10000 - first_0> page_0_{};
    std::array<std::uint16_t, 0x20000 - first_1> page_1_{};
};

}  // namespace pgn_vistel::core
