#include "pgn_vistel/core/units.h"

#include <iterator>

#include "core/plan.h"

namespace pgn_vistel::core {

namespace {

constexpr const wchar_t* unit_names[] = {
#include "unit_names.inc"
};
static_assert(std::size(unit_names) == unit::count);

constexpr UnitId availability[][8] = {
#include "availability.inc"
};
static_assert(std::size(availability) == quantity::no_quantity + 1);

constexpr UnitId si_table[] = {
#include "si_units.inc"
};
static_assert(std::size(si_table) == quantity::count);

constexpr QuantityRow quantity_table[] = {
#include "quantity_rows.inc"
};

}  // namespace

constexpr UnitTexts unit_texts[] = {
#include "unit_texts.inc"
};
static_assert(std::size(unit_texts) == unit::count);

// Single precision. Several factors differ in the last digits from what a textbook gives (a knot is taken as
// 0.514444 m/s, for example): displays that stand side by side have to agree.
constexpr float unit_factors[][unit::count] = {
#include "unit_factors.inc"
};

const wchar_t* unit_name(UnitId u) {
    return is_unit(u) ? unit_names[u] : L"";
}

std::string_view unit_text(UnitId u) {
    if (!is_unit(u)) return {};
    const UnitTexts& texts = unit_texts[u];
    return {text_pool + texts.line + 1, texts.line_size - std::size_t{1}};  // less the blank
}

std::string_view unit_ascii(UnitId u) {
    if (!is_unit(u)) return {};
    const UnitTexts& texts = unit_texts[u];
    return {text_pool + texts.csv + 1, texts.csv_size - std::size_t{2}};  // less the commas
}

const UnitId* available_units(DispDataType q) {
    return availability[is_quantity(q) ? q : DispDataType{quantity::no_quantity}];
}

UnitId default_unit(DispDataType q) {
    return is_quantity(q) ? *available_units(q) : UnitId{unit::raw_count};
}

UnitId si_unit(DispDataType q) {
    return is_quantity(q) && si_table[q] < unit::count ? si_table[q] : UnitId{unit::raw_count};
}

std::span<const QuantityRow> quantity_rows() {
    return quantity_table;
}

UnitSelection::UnitSelection() {
    for (DispDataType q = 0; q <= quantity::no_quantity; ++q)
        units_[static_cast<std::size_t>(q)] = default_unit(q);
}

UnitSelection UnitSelection::si() {
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q) units.select(q, si_unit(q));
    return units;
}

}  // namespace pgn_vistel::core
