#pragma once

#include "pgn_vistel/decode.h"
#include "values/wide_format.h"

namespace pgn_vistel {

// The parts of a field's line, appended to a writer. See pgn_db.h for what they show.

/// The label is wide from hosts, 8-bit from the catalogue.
void put_field_name(WideWriter& out, int dd, const wchar_t* label, int repeat_index);
void put_field_name(WideWriter& out, int dd, const char* label, int repeat_index);

/// Where and how a field is shown.
struct FieldPlace {
    int field;
    const DDDef* dd;
    int bytes, bits;  // normalised size
    bool with_unit;
    unsigned long flags;
    UnitId unit;  // above 139 or negative: the selected one
};

/// The value part of a field of a message, as `get_field_str` shows it. `value` may be null. Returns the
/// position behind the field.
PayloadPosition put_field(WideWriter& out, QV_N2K_PGN_DB_c& db, const N2KMsg& msg, const FieldPlace& place,
                          PayloadPosition at, ConvValue* value);

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

/// Returns the length of the label, 0 without.
int put_undecoded(WideWriter& out, const std::uint8_t* data, int length, bool with_label);

}  // namespace pgn_vistel
