#include "values/units.h"

#include <atomic>
#include <iterator>
#include <new>

#include "values/text_copy.h"
#include "values/value_printer.h"

namespace pgn_vistel {

namespace {

constexpr const wchar_t* unit_names[] = {
#include "unit_names.inc"
};
static_assert(std::size(unit_names) == unit::count);

constexpr UnitId availability[][8] = {
#include "availability.inc"
};
static_assert(std::size(availability) == selection_size);

constexpr QuantityRow quantity_table[] = {
#include "quantity_rows.inc"
};

constexpr bool is_quantity(DispDataType q) {
    return q >= 0 && q < quantity::count;
}
constexpr bool is_unit(UnitId u) {
    return u >= 0 && u < unit::count;
}

// The unit to use for an argument, or -1.
UnitId resolve(const UnitId* selection, DispDataType quantity, UnitId u) {
    if (u < 0) u = selected_unit(selection, quantity);
    return u < unit::count ? u : -1;
}

}  // namespace

const wchar_t* unit_name(UnitId u) {
    return is_unit(u) ? unit_names[u] : L"";
}

const UnitId* available_units(DispDataType q) {
    return availability[is_quantity(q) ? q : DispDataType{quantity::no_quantity}];
}

std::span<const QuantityRow> quantity_rows() {
    return quantity_table;
}

int count_available_units(DispDataType q, UnitId* units, int max) {
    if (!is_quantity(q) || units == nullptr) return -1;
    int count = 0;
    for (const UnitId* u = available_units(q); *u < unit::count; ++u, ++count)
        if (count < max) units[count] = *u;
    return count;
}

UnitId default_unit(DispDataType q) {
    return is_quantity(q) ? *available_units(q) : UnitId{unit::raw_count};
}

UnitId* new_selection() {
    // The first is the global database's. It lies within the library, so that loading and unloading again and
    // again leaves nothing behind.
    static UnitId first[selection_size];
    static std::atomic_flag is_first_taken;
    UnitId* const selection =
        is_first_taken.test_and_set() ? new (std::nothrow) UnitId[selection_size] : first;
    for (DispDataType q = 0; selection != nullptr && q < selection_size; ++q) selection[q] = default_unit(q);
    return selection;
}

int select_unit(UnitId* selection, DispDataType q, UnitId u) {
    // Any unit goes for any quantity; one that the quantity does not have reads as not available.
    if (selection == nullptr || !is_quantity(q) || !is_unit(u)) return -1;
    selection[q] = u;
    return 0;
}

int selected_unit(const UnitId* selection, DispDataType q) {
    if (!is_quantity(q)) return -1;
    return selection != nullptr ? selection[q] : default_unit(q);
}

int print_unit_name(wchar_t* buf, int size, UnitId u) {
    return buf == nullptr || size <= 0 || !is_unit(u) ? 0 : copy_wide(buf, unit_names[u], size);
}

int print_unit_name(char* buf, int size, UnitId u) {
    return buf == nullptr || size <= 0 || !is_unit(u) ? 0 : copy_w2n(buf, unit_names[u], size);
}

int print_unit_of(const UnitId* selection, wchar_t* buf, Printable what, UnitId u) {
    if (buf == nullptr) return -1;
    u = resolve(selection, what.quantity, u);
    return u < 0 ? -1 : print_unit_name(buf, print_limit, u);
}

int print_value(const UnitId* selection, wchar_t* buf, Printable what, const void* raw, UnitId u) {
    if (buf == nullptr || raw == nullptr) return -1;
    u = resolve(selection, what.quantity, u);
    if (u < 0) return -1;
    ConvValue value{CV_NOT_AVAILABLE, {}};
    if (convert_field(what.df, &value, raw, u) < 1) return -1;
    return print_conv_value(buf, nullptr, value);
}

int print_value_and_unit(const UnitId* selection, wchar_t* buf, Printable what, const void* raw, UnitId u) {
    const int value_length = print_value(selection, buf, what, raw, u);
    if (value_length < 1) return value_length;
    const int unit_length = print_unit_of(selection, buf + value_length + 1, what, u);
    if (unit_length < 1) {
        buf[value_length] = 0;
        return value_length;
    }
    buf[value_length] = L' ';
    return value_length + 1 + unit_length;
}

}  // namespace pgn_vistel
