#include <iterator>

#include "catalogue/tables.h"
#include "values/format_table.h"

namespace pgn_vistel {

constinit const DDDef dictionary[] = {
#include "dictionary_table.inc"
};
static_assert(std::size(dictionary) == dictionary_size);

namespace {

// Quantity by dictionary number, one table for each of the three ranges of numbers.
constexpr std::int8_t standard_quantities[] = {
#include "dd_class_0.inc"
};
constexpr std::int8_t ac_quantities[] = {
#include "dd_class_2436.inc"
};
constexpr std::int8_t maker_quantities[] = {
#include "dd_class_10000.inc"
};

struct Range {
    int first;
    std::span<const std::int8_t> quantities;
};

constexpr Range ranges[] = {{0, standard_quantities}, {2436, ac_quantities}, {10000, maker_quantities}};

}  // namespace

DispDataType quantity_of_dd(int dd) {
    for (const Range& range : ranges)
        if (dd >= range.first && dd - range.first < static_cast<int>(range.quantities.size()))
            return range.quantities[static_cast<std::size_t>(dd - range.first)];
    return -1;
}

DispDataType quantity_of_dd(int dd, const std::uint8_t* raw) {
    // The format number of these two travels in the payload: in the field itself, or right before it.
    constexpr int format_then_value = 10057;
    constexpr int value_behind_format = 10059;
    if ((dd == format_then_value || dd == value_behind_format) && raw != nullptr) {
        const std::uint8_t* const at = dd == format_then_value ? raw : raw - 2;
        const DispDataType quantity = quantity_of_format(static_cast<DF>(at[0] | at[1] << 8));
        if (quantity >= 0) return quantity;
    }
    return quantity_of_dd(dd);
}

std::span<const DDDef> all_dictionary_entries() {
    return dictionary;
}
std::span<const DFDef> all_formats() {
    return format_table;
}

}  // namespace pgn_vistel
