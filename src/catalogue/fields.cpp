#include <algorithm>
#include <iterator>

#include "catalogue/tables.h"

namespace pgn_vistel {

namespace {

constinit const FieldDef field_table[] = {
#include "field_table.inc"
};

const FieldDef* const sentinel = std::end(field_table) - 1;

constexpr std::uint32_t product_information = 126996;

// Moves a position forward by a field.
void advance(int* byte, int* bit, int bytes, int bits) {
    *byte += bytes;
    *bit += bits;
    *byte += *bit >> 3;
    *bit &= 7;
}

}  // namespace

const FieldDef* first_field_row(std::uint32_t pgn) {
    const auto row = std::lower_bound(std::begin(field_table), sentinel, pgn,
                                      [](const FieldDef& r, std::uint32_t sought) { return r.pgn < sought; });
    return row->pgn == pgn ? row : sentinel;
}

const FieldDef* first_field_row_keyed(std::uint32_t pgn, std::uint16_t selector) {
    for (const FieldDef* row = first_field_row(pgn); row->pgn == pgn; ++row)
        if (low_half(row->key1) == selector) return row;
    return sentinel;
}

const FieldDef* next_field_row(const FieldDef* row, int delta) {
    const int target = static_cast<int>(row->field) + delta;
    if (target < 1) return nullptr;
    // The first guess is `delta` rows away. Among keyed variants a step forward therefore lands on the first
    // variant of the next field number, whichever variant it started from: the monitor shows the fields
    // behind the first one as those of the first variant, and has always done so.
    const std::ptrdiff_t index = row - field_table + delta;
    if (index < 0 || index >= std::ssize(field_table)) return sentinel;
    const int step = delta < 0 ? -1 : 1;
    for (const FieldDef* at = field_table + index; at->pgn == row->pgn; at += step) {
        if (static_cast<int>(at->field) == target) return at;
        if (at == field_table && step < 0) break;
    }
    return sentinel;
}

void complete_field_size(std::uint32_t pgn, const DDDef* dd, int* bytes, int* bits) {
    if (*bits != 0 || *bytes != 0) return;
    if (pgn == product_information) {
        // For the texts, which are 32 bytes long each. The codes of this PGN fall under it, too, and take as
        // much; hosts know the message so.
        *bytes = 32;
        *bits = 0;
    } else if (dd != nullptr) {
        *bytes = dd->bytes;
        *bits = dd->bits;
    }
}

void normalise_field_size(const FieldDef* row, std::uint32_t pgn, int* bytes, int* bits) {
    *bytes = row->bytes;
    *bits = row->bits;
    if (*bits % 8 == 0) {
        *bytes += *bits / 8;
        *bits = 0;
    } else if (*bytes > 0) {
        *bits += *bytes * 8;
        *bytes = 0;
    }
    complete_field_size(pgn, row->dd, bytes, bits);
}

int field_at(std::uint32_t pgn, int byte_position, int bit_position) {
    if (find_pgn_def(pgn) == nullptr) return -1;
    const RepeatSetDef* const repeat = find_repeat_set(pgn);
    const int first = repeat != nullptr ? repeat->first : 0;
    const int last = repeat != nullptr ? repeat->last : 0;

    const FieldDef* row = first_field_row(pgn);
    int byte = 0;
    int bit = 0;
    int counter = 1;
    int group_start = 0;  // position of the repeating group's latest round, in bits
    while (row->pgn == pgn && byte < byte_position) {
        int bytes;
        int bits;
        normalise_field_size(row, pgn, &bytes, &bits);
        if (counter == first) group_start = byte * 8 + bit;
        advance(&byte, &bit, bytes, bits);
        if (counter == last) {
            if (byte * 8 + bit == group_start) return -1;  // a round of size-less fields would go on for ever
            counter = first;
            row -= last - first;
        } else {
            ++counter;
            const std::uint32_t field = row->field;
            do ++row;
            while (row->pgn == pgn && row->field == field);
        }
    }
    return byte == byte_position && bit == bit_position && row->pgn == pgn ? static_cast<int>(row->field)
                                                                           : -1;
}

std::span<const FieldDef> all_fields() {
    return {field_table, sentinel};
}

}  // namespace pgn_vistel
