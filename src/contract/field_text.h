#pragma once

#include "core/out.h"
#include "core/read.h"
#include "core/value_text.h"
#include "pgn_vistel/formats.h"

namespace pgn_vistel {

// The parts of a field's line as hosts ask for them, one by one and for any field of their own making.

/// "Label: "; see `QV_N2K_PGN_DB_c::print_field_name`.
void put_field_name(core::WideOut& out, int dd, const wchar_t* label, int repeat_index);

/// How a field without a row of the catalogue is shown.
struct FieldContext {
    int dd;
    DispDataType quantity;
    UnitId unit;  ///< resolved
    bool with_unit;
    unsigned long flags;  ///< display flags, `plain_numbers`
    std::uint32_t pgn;
    int field;
};

constexpr unsigned long plain_numbers = 2;  ///< display flag: no hexadecimal forms

/// Value and unit; `value` may be null: then the unit alone.
void put_field_data(core::WideOut& out, const FieldContext& context, const ConvValue* value);
void put_unit(core::WideOut& out, const FieldContext& context);

/// "Data: 01 02", or without the label. Returns the length of the label.
int put_undecoded(core::WideOut& out, const std::uint8_t* data, int length, bool with_label);

}  // namespace pgn_vistel
