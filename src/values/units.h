#pragma once

#include "pgn_vistel/formats.h"
#include "pgn_vistel/units.h"

namespace pgn_vistel {

constexpr int selection_size = quantity::count + 1;  // the last entry is for values without a quantity

int count_available_units(DispDataType quantity, UnitId* units, int max);

/// The unit that a quantity is shown in until the user picks another.
UnitId default_unit(DispDataType quantity);

/// A new selection of default units, on the heap for the life of the process.
UnitId* new_selection();

int select_unit(UnitId* selection, DispDataType quantity, UnitId unit);
int selected_unit(const UnitId* selection, DispDataType quantity);

int print_unit_name(wchar_t* buf, int size, UnitId unit);
int print_unit_name(char* buf, int size, UnitId unit);

/// What is to be printed: a format and the quantity whose selected unit a negative unit asks for.
struct Printable {
    DF df;
    DispDataType quantity;

    static Printable of_format(DF df) { return {df, quantity_of_format(df)}; }
    static Printable of_quantity(DispDataType quantity) { return {format_of_quantity(quantity), quantity}; }
};

// Buffers of 256 characters (value and unit: 513); -1 on failure.
int print_unit_of(const UnitId* selection, wchar_t* buf, Printable what, UnitId unit);
int print_value(const UnitId* selection, wchar_t* buf, Printable what, const void* raw, UnitId unit);
int print_value_and_unit(const UnitId* selection, wchar_t* buf, Printable what, const void* raw, UnitId unit);

}  // namespace pgn_vistel
