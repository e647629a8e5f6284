#pragma once

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/units.h"
#include "pgn_vistel/formats.h"

class QV_N2K_PGN_DB_c;

namespace pgn_vistel {

/// Units of the text interface. The core has more, for programs.
constexpr UnitId unit_count = 140;
constexpr bool is_unit(UnitId u) {
    return u >= 0 && u < unit_count;
}

int count_available_units(DispDataType quantity, UnitId* units, int max);

/// A new selection of default units, on the heap for the life of the process; null without memory.
core::UnitSelection* new_selection();

/// A selection, or the default units for null.
const core::UnitSelection& selection_or_default(const core::UnitSelection* selection);

int select_unit(core::UnitSelection* selection, DispDataType quantity, UnitId unit);
int selected_unit(const core::UnitSelection* selection, DispDataType quantity);

/// The selection of a database, for those who decode with it.
struct SelectionAccess {
    static const core::UnitSelection& of(const QV_N2K_PGN_DB_c& db);
};

int print_unit_name(wchar_t* buf, int size, UnitId unit);
int print_unit_name(char* buf, int size, UnitId unit);

/// What is to be printed: a format and the quantity whose selected unit a negative unit asks for.
struct Printable {
    DF df;
    DispDataType quantity;

    static Printable of_format(DF df) { return {df, core::quantity_of_format(df)}; }
    static Printable of_quantity(DispDataType quantity) {
        return {core::format_of_quantity(quantity), quantity};
    }
};

// Buffers of 256 characters (value and unit: 513); -1 on failure.
int print_unit_of(const core::UnitSelection* selection, wchar_t* buf, Printable what, UnitId unit);
int print_value(const core::UnitSelection* selection, wchar_t* buf, Printable what, const void* raw,
                UnitId unit);
int print_value_and_unit(const core::UnitSelection* selection, wchar_t* buf, Printable what, const void* raw,
                         UnitId unit);

}  // namespace pgn_vistel
