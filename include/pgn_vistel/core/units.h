#pragma once

/// @file
/// Units and quantities, and a user's choice of units. Names are constant; any thread may look at any time.

#include <array>
#include <cassert>
#include <span>
#include <string_view>

#include "pgn_vistel/core/ids.h"

namespace pgn_vistel::core {

/// Whether a number is that of a unit. `unit::selected` is none.
constexpr bool is_unit(UnitId u) {
    return u >= 0 && u < unit::count;
}
/// Whether a quantity is one that a user can pick a unit for.
constexpr bool is_quantity(DispDataType q) {
    return q >= 0 && q < quantity::count;
}

/// @{ Name of a unit 0..140 as users see it, "°C" say. The units of plain numbers have none: "", which is the
/// answer for any other number, too. The second one is UTF-8 and not terminated.
[[nodiscard]] const wchar_t* unit_name(UnitId unit);
[[nodiscard]] std::string_view unit_text(UnitId unit);
/// @}

/// Name of a unit as programs see it, in JSON and CSV: ASCII, "degC" say. Empty where there is none. A degree
/// is "deg", whatever it is counted from.
[[nodiscard]] std::string_view unit_ascii(UnitId unit);

/// Units that a quantity offers, the default first, ended by `unit::count`; never null, and empty without a
/// quantity.
[[nodiscard]] const UnitId* available_units(DispDataType quantity);

/// The unit that a quantity is shown in until the user picks another; `unit::raw_count` without a quantity.
[[nodiscard]] UnitId default_unit(DispDataType quantity);

/// The unit that programs get a quantity in: the SI unit, degrees for positions, and otherwise the nearest
/// unit that all formats of the quantity serve. `unit::raw_count` without a quantity.
[[nodiscard]] UnitId si_unit(DispDataType quantity);

/// A quantity as users know it when they pick units.
struct QuantityRow {
    const char* label;      ///< for users; ASCII, terminated
    DispDataType quantity;  ///< what a unit is picked for
};

/// The quantities that a user picks a unit for, in the order of display.
[[nodiscard]] std::span<const QuantityRow> quantity_rows();

/// A unit for each quantity: a value, copied and passed like any other. Decoding only reads it, so any number
/// of threads may share one that nobody changes.
class UnitSelection {
  public:
    UnitSelection();            ///< the default units
    static UnitSelection si();  ///< `si_unit` of each quantity

    /// False where either is out of range. Any unit goes for any quantity; in one that the quantity does not
    /// have, values are not available.
    bool select(DispDataType q, UnitId u) {
        if (!is_quantity(q) || !is_unit(u)) return false;
        units_[static_cast<std::size_t>(q)] = u;
        return true;
    }

    /// The unit of a quantity 0 .. 65, where 65 (no quantity) has `unit::raw_count`. Any other number is an
    /// error of the caller's: `quantity_of_dd` and `quantity_of_format` have -1 for what they do not know.
    [[nodiscard]] UnitId operator[](DispDataType q) const {
        assert(q >= 0 && q <= quantity::no_quantity);
        return units_[static_cast<std::size_t>(q)];
    }

  private:
    std::array<UnitId, quantity::no_quantity + 1> units_;
};

}  // namespace pgn_vistel::core
