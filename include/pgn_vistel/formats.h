#pragma once

/// @file
/// Data formats: raw bits to values and back.

#include <cstdint>

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/units.h"

namespace pgn_vistel {

/// Turns the raw bytes of a field into a value in a unit.
///
/// `raw` points at the field's first byte; multi-byte numbers are little-endian and may be unaligned. A
/// number of 3 bytes is read as 4. `unit` is a `UnitId` or one of the pseudo units raw_count and raw_bits; a
/// unit that a numeric format does not serve gives `CV_NOT_AVAILABLE`. `count` may be null; otherwise it
/// receives the number of bytes that the field takes. On entry it says how many bytes a bit field, a fixed
/// text or a hex dump has.
using ConvFunction = void (*)(ConvValue* out, const void* raw, UnitId unit, int* count);

/// The way back: reads a typed, terminated text as a number in `unit` and stores the raw value of a field.
///
/// `out->type` names the raw kind (24-bit kinds are `CV_U32` and `CV_I32`) and the low bytes of `out->value`
/// are the field as it is sent. A text that cannot be read and most units that are not served give the code
/// of "not available", a number beyond the kind's range the code of "out of range". White space may stand
/// before the number, and what follows it is ignored; an empty text is a zero. `unit::raw_count` is one of
/// the real units here, not the number as sent.
///
/// Formats of text build their field in a static area that holds it until their parser's next call: 63 and
/// 3002 the text alone (`CV_TEXT_NARROW`), 51 behind length and encoding (likewise), 50 a whole short text
/// (`CV_RAW_FIELD`). 60003 stores the number, not a raw one; 60007 lets the unit choose the format, and
/// stores a null `CV_RAW_FIELD` for one without. A null text is an unreadable one. Returns `out`, which may
/// be null.
using ParseFunction = ConvValue* (*)(ConvValue* out, const char* text, UnitId unit);

/// One data format.
struct DFDef {
    std::uint32_t df;     ///< number of the format
    const char* name;     ///< "DF" and the number with at least two digits
    ConvFunction conv;    ///< raw bytes to a value; may be null
    ParseFunction parse;  ///< a typed text to the raw value; never null
};

/// The conversion of a format, or null. Formats below 118 always have one.
ConvFunction find_conversion(DF df);

/// The conversion of a format that a self-described value may name, or null.
ConvFunction find_self_described(DF df);

/// Converts one field; see `QV_N2K_PGN_DB_c::conv_DF`.
int convert_field(DF df, ConvValue* out, const void* at, UnitId unit);

/// Quantity of a format by the format's own list, or -1.
DispDataType quantity_of_format(DF df);

/// A format for a quantity, or 65535.
DF format_of_quantity(DispDataType quantity);

}  // namespace pgn_vistel
