#include <algorithm>
#include <cassert>
#include <iterator>

#include "core/tables.h"

namespace pgn_vistel::core {

namespace {

// The base, which ends with a row of its own; then the corrected definitions.
constexpr FieldDef field_table[] = {
#include "field_table.inc"
};

constexpr const FieldDef* sentinel = field_table + (base_fields - 1);

struct PgnRule {
    std::uint32_t pgn;
    std::uint16_t bytes, bits;  // of fields that have no size of their own; both 0: the dictionary's
    std::uint8_t pressure;      // quantity of pressures; 0: the dictionary's
};

constexpr PgnRule pgn_rules[] = {
#include "pgn_rules.inc"
};

const PgnRule* find_rule(std::uint32_t pgn) {
    const auto rule = std::ranges::find(pgn_rules, pgn, &PgnRule::pgn);
    return rule != std::end(pgn_rules) ? rule : nullptr;
}

constexpr SpecialField special_fields[] = {
#include "special_fields.inc"
};

// Moves a position forward by a field.
void advance(int* byte, int* bit, int bytes, int bits) {
    *byte += bytes;
    *bit += bits;
    *byte += *bit >> 3;
    *bit &= 7;
}

}  // namespace

constexpr FieldPlan field_plans[] = {
#include "field_plans.inc"
};
static_assert(std::size(field_plans) == std::size(field_table));

constexpr FieldExtra field_extras[] = {
#include "field_extras.inc"
};

constexpr char text_pool[] =
#include "text_pool.inc"
    ;

const FieldPlan& plan_of(const FieldDef& row) {
    assert(is_row_of(field_table, row) && &row != sentinel);
    return field_plans[&row - field_table];
}

const FieldDef& field_row(std::uint16_t row) {
    return field_table[row];
}

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

std::uint16_t first_row_keyed(std::uint32_t pgn, std::uint16_t selector) {
    const FieldDef* const row = first_field_row_keyed(pgn, selector);
    return row != sentinel ? static_cast<std::uint16_t>(row - field_table) : end_row;
}

const FieldDef* next_field_row(const FieldDef* row, int delta) {
    const int target = static_cast<int>(row->field) + delta;
    if (target < 1) return nullptr;
    // The first guess is `delta` rows away. Among keyed variants a step forward therefore lands on the first
    // variant of the next field number, whichever variant it started from: the text interface shows the
    // fields behind the first one as those of the first variant.
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
    const PgnRule* const rule = find_rule(pgn);
    if (rule != nullptr && (rule->bytes != 0 || rule->bits != 0)) {
        *bytes = rule->bytes;
        *bits = rule->bits;
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

const SpecialField* find_special_field(std::uint32_t dd, std::uint32_t pgn, std::uint32_t field) {
    for (const SpecialField& row : special_fields)
        if (row.dd == dd && (row.pgn == 0 || row.pgn == pgn) && (row.field == 0 || row.field == field))
            return &row;
    return nullptr;
}

std::uint8_t pressure_quantity(std::uint32_t pgn) {
    const PgnRule* const rule = find_rule(pgn);
    return rule != nullptr ? rule->pressure : std::uint8_t{0};
}

std::span<const FieldDef> all_fields() {
    return {field_table, sentinel};
}

}  // namespace pgn_vistel::core
