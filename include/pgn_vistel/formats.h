#pragma once

/// @file
/// Data formats and dictionary entries as the exported interface has them: raw bits to values and back.
///
/// The types are for hosts that hand such records over or call what `QV_N2K_PGN_DB_c::DF_to_conv_DF` gives.
/// The functions are the library's own: it does not export them, and `QV_N2K_PGN_DB_c` has what they do.

#include <cstdint>
#include <span>

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/core/ids.h"

namespace pgn_vistel {

using core::DF;
using core::DispDataType;
using core::UnitId;
namespace unit = core::unit;
namespace quantity = core::quantity;

/// Turns the raw bytes of a field into a value in a unit.
///
/// `raw` points at the field's first byte; multi-byte numbers are little-endian and may be unaligned. `unit`
/// is a `UnitId` or one of the pseudo units raw_count and raw_bits; a unit that a numeric format does not
/// serve gives `CV_NOT_AVAILABLE`. `count` may be null; otherwise it receives the number of bytes that the
/// field takes. On entry it says how many bytes a bit field, a fixed text or a hex dump has, and keeps that;
/// a bit field is read as 8 bytes where it says nothing from 1 to 8.
///
/// Texts are left in a static area of the format's conversion, so one thread at a time may convert.
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

/// One data dictionary entry as the field operations take it: how a field is encoded and what it means.
struct DDDef {
    std::uint32_t dd;     ///< number of the entry
    const char* name;     ///< Latin-1
    const DFDef* format;  ///< how the bits encode the value
    /// @{ default size: one of them, or both 0 where the format or the value tells
    std::uint16_t bytes, bits;
    /// @}
};

static_assert(sizeof(void*) != 4 || (sizeof(DDDef) == 16 && sizeof(DFDef) == 16));

/// @{ the whole tables, ascending
std::span<const DFDef> all_format_rows();
std::span<const DDDef> all_dictionary_rows();
/// @}

/// The conversion of a format, or null. Formats below 118 always have one.
ConvFunction find_conversion(DF df);

/// Converts one field; see `QV_N2K_PGN_DB_c::conv_DF`.
int convert_field(DF df, ConvValue* out, const void* at, UnitId unit);

}  // namespace pgn_vistel
