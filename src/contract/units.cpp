#include "contract/units.h"

#include <atomic>
#include <new>

#include "contract/text_copy.h"
#include "contract/value_printer.h"

namespace pgn_vistel {

namespace {

// The unit to use for an argument, or -1.
UnitId resolve(const core::UnitSelection* selection, DispDataType quantity, UnitId u) {
    if (u < 0) u = selected_unit(selection, quantity);
    return u < unit_count ? u : -1;
}

}  // namespace

int count_available_units(DispDataType q, UnitId* units, int max) {
    if (!core::is_quantity(q) || units == nullptr) return -1;
    int count = 0;
    for (const UnitId* u = core::available_units(q); *u < core::unit::count; ++u, ++count)
        if (count < max) units[count] = *u;
    return count;
}

core::UnitSelection* new_selection() {
    // The first is the global database's. It lies within the library, so that loading and unloading again and
    // again leaves nothing behind.
    static core::UnitSelection first;
    static std::atomic_flag is_first_taken;
    return is_first_taken.test_and_set() ? new (std::nothrow) core::UnitSelection : &first;
}

const core::UnitSelection& selection_or_default(const core::UnitSelection* selection) {
    static const core::UnitSelection defaults;
    return selection != nullptr ? *selection : defaults;
}

int select_unit(core::UnitSelection* selection, DispDataType q, UnitId u) {
    return selection != nullptr && u < unit_count && selection->select(q, u) ? 0 : -1;
}

int selected_unit(const core::UnitSelection* selection, DispDataType q) {
    return core::is_quantity(q) ? selection_or_default(selection)[q] : -1;
}

int print_unit_name(wchar_t* buf, int size, UnitId u) {
    return buf == nullptr || size <= 0 || !is_unit(u) ? 0 : copy_wide(buf, core::unit_name(u), size);
}

int print_unit_name(char* buf, int size, UnitId u) {
    return buf == nullptr || size <= 0 || !is_unit(u) ? 0 : copy_w2n(buf, core::unit_name(u), size);
}

int print_unit_of(const core::UnitSelection* selection, wchar_t* buf, Printable what, UnitId u) {
    if (buf == nullptr) return -1;
    u = resolve(selection, what.quantity, u);
    return u < 0 ? -1 : print_unit_name(buf, print_limit, u);
}

int print_value(const core::UnitSelection* selection, wchar_t* buf, Printable what, const void* raw,
                UnitId u) {
    if (buf == nullptr || raw == nullptr) return -1;
    u = resolve(selection, what.quantity, u);
    if (u < 0) return -1;
    ConvValue value{CV_NOT_AVAILABLE, {}};
    if (convert_field(what.df, &value, raw, u) < 1) return -1;
    return print_conv_value(buf, nullptr, value);
}

int print_value_and_unit(const core::UnitSelection* selection, wchar_t* buf, Printable what, const void* raw,
                         UnitId u) {
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
