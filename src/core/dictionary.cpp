#include <algorithm>
#include <array>
#include <cassert>
#include <iterator>

#include "core/tables.h"

namespace pgn_vistel::core {

constexpr DDDef no_entry_of_dictionary{0, "", 0, 0, 0};

constexpr DDDef dictionary[] = {
#include "dictionary_table.inc"
};
static_assert(std::ranges::is_sorted(dictionary, {}, &DDDef::dd));

// The formats of the base by number; those of the corrected definitions have none.
constexpr FormatPlan format_plans[] = {
#include "format_plans.inc"
};
static_assert(std::ranges::is_sorted(format_plans, {}, &FormatPlan::df));

constexpr Measure measures[] = {
#include "measures.inc"
};

namespace {

// Quantity by dictionary number, one table for each of the three ranges of numbers.
constexpr std::int8_t standard_quantities[] = {
#include "dd_class_0.inc"
};
constexpr std::int8_t ac_quantities[] = {
#include "dd_class_2436.inc"
};
constexpr std::int8_t proprietary_quantities[] = {
#include "dd_class_10000.inc"
};

struct Range {
    int first;
    std::span<const std::int8_t> quantities;
};

constexpr Range ranges[] = {{0, standard_quantities}, {2436, ac_quantities}, {10000, proprietary_quantities}};

struct FormatClass {
    DF df;
    DispDataType quantity;
};

// Not sorted: the first row of a quantity is its representative format.
constexpr FormatClass class_table[] = {
#include "format_class_table.inc"
};

constexpr DF catalogued_formats[] = {
#include "catalogued_formats.inc"
};

constexpr ValueText enum_pairs[] = {
#include "enum_pairs.inc"
};

}  // namespace

// Ascending, but for the sets that are terminated, which stand behind; then those of the corrected
// definitions.
constexpr DDstrings enum_sets[] = {
#include "enum_sets.inc"
};

constexpr SetPlan set_plans[] = {
#include "enum_plans.inc"
};
static_assert(std::size(set_plans) == std::size(enum_sets) && std::size(enum_sets) < no_set);

constexpr EntryTexts entry_texts[] = {
#include "enum_texts.inc"
};

constexpr std::uint16_t entry_index[] = {
#include "enum_index.inc"
};

namespace {

constexpr auto sorted_sets = [] {
    std::size_t count = 0;
    while (count < std::size(enum_sets) && enum_sets[count].count > 0) ++count;
    return count;
}();
static_assert(std::is_sorted(enum_sets, enum_sets + sorted_sets,
                             [](const DDstrings& a, const DDstrings& b) { return a.dd < b.dd; }));

}  // namespace

const DDDef* find_dictionary_entry(std::uint32_t dd) {
    const auto entry = std::ranges::lower_bound(dictionary, dd, {}, &DDDef::dd);
    return entry != std::end(dictionary) && entry->dd == dd ? entry : nullptr;
}

const FormatPlan* find_format_plan(DF df) {
    const std::span<const FormatPlan> base(format_plans, base_formats);
    const auto plan = std::ranges::lower_bound(base, df, {}, &FormatPlan::df);
    return plan != base.end() && plan->df == df ? &*plan : nullptr;
}

DispDataType quantity_of_dd(int dd) {
    for (const Range& range : ranges)
        if (dd >= range.first && dd - range.first < static_cast<int>(range.quantities.size()))
            return range.quantities[static_cast<std::size_t>(dd - range.first)];
    return -1;
}

DispDataType quantity_of_dd(int dd, const std::uint8_t* raw) {
    const SpecialField* const special =
        dd > 0 && raw != nullptr ? find_special_field(static_cast<std::uint32_t>(dd), 0, 0) : nullptr;
    if (special != nullptr && special->quantity != 0) {
        const std::uint8_t* const at =
            special->quantity == quantity_of_format_inside ? raw : raw - sizeof(DF);
        const DispDataType quantity = quantity_of_format(static_cast<DF>(at[0] | at[1] << 8));
        if (quantity >= 0) return quantity;
    }
    return quantity_of_dd(dd);
}

DispDataType quantity_of_format(DF df) {
    const auto row = std::ranges::find(class_table, df, &FormatClass::df);
    return row != std::end(class_table) ? row->quantity : -1;
}

DF format_of_quantity(DispDataType quantity) {
    const auto row = std::ranges::find(class_table, quantity, &FormatClass::quantity);
    return row != std::end(class_table) ? row->df : DF{65535};
}

std::uint16_t find_set(std::uint32_t dd) {
    const DDstrings* const last = enum_sets + sorted_sets;
    auto set = std::lower_bound(enum_sets, last, dd,
                                [](const DDstrings& s, std::uint32_t sought) { return s.dd < sought; });
    if (set == last || set->dd != dd)
        set = std::ranges::find(last, enum_sets + base_sets, dd, &DDstrings::dd);
    return set != enum_sets + base_sets ? static_cast<std::uint16_t>(set - enum_sets) : no_set;
}

const DDstrings* find_enumeration(std::uint32_t dd) {
    const std::uint16_t set = find_set(dd);
    return set != no_set ? &enum_sets[set] : nullptr;
}

std::uint16_t search_entry(std::uint16_t index, std::uint32_t value) {
    const DDstrings& set = enum_sets[index];
    const ValueText* entry = set.pairs;
    if (set.count == 0) {
        while (entry->text != nullptr && entry->value != value) ++entry;
        return entry->text != nullptr ? static_cast<std::uint16_t>(entry - set.pairs) : no_entry;
    }
    const ValueText* const last = set.pairs + set.count;
    entry = std::lower_bound(set.pairs, last, value,
                             [](const ValueText& pair, std::uint32_t sought) { return pair.value < sought; });
    if (entry != last && entry->value == value) return static_cast<std::uint16_t>(entry - set.pairs);
    if (set.kind == ENUM_ENTRY_BELOW && entry != set.pairs)
        return static_cast<std::uint16_t>(entry - set.pairs - 1);
    return no_entry;
}

const char* enumeration_text(const DDstrings& set, std::uint32_t value) {
    assert(is_row_of(enum_sets, set));
    const std::uint16_t entry = find_entry(static_cast<std::uint16_t>(&set - enum_sets), value);
    if (entry != no_entry) return set.pairs[entry].text;
    return word_of(set).data();
}

std::span<const DDDef> all_dictionary_entries() {
    return dictionary;
}

std::span<const DDstrings> all_enumerations() {
    return {enum_sets, sorted_sets};
}

std::span<const DF> all_formats() {
    return catalogued_formats;
}

}  // namespace pgn_vistel::core
