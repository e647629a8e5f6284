#pragma once

#include "pgn_vistel/decode.h"
#include "values/wide_format.h"

namespace pgn_vistel {

// The parts of a field's line, appended to a writer. See pgn_db.h for what they show.

void put_field_name(WideWriter& out, int dd, const wchar_t* label, int repeat_index);

struct FieldContext {
    int dd;
    DispDataType quantity;
    UnitId unit;  // resolved
    bool with_unit;
    unsigned long flags;
    std::uint32_t pgn;
    int field;
};

constexpr unsigned long plain_numbers = 2;  // display flag: no hexadecimal forms

/// `value` may be null: then the unit alone.
void put_field_data(WideWriter& out, const FieldContext& context, const ConvValue* value);

/// "-" for a number that the message cuts off.
void put_cut_off(WideWriter& out, const FieldContext& context);

/// Returns the length of the label, 0 without.
int put_undecoded(WideWriter& out, const std::uint8_t* data, int length, bool with_label);

}  // namespace pgn_vistel
