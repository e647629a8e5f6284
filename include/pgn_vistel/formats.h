#pragma once

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

/// The way back, from a typed text to raw bytes; null for a format that is only shown.
using ParseFunction = void (*)();

/// One data format.
struct DFDef {
    std::uint32_t df;
    const char* name;  ///< "DF" and the number with at least two digits
    ConvFunction conv;
    ParseFunction parse;
};

/// The conversion of a format, or null. Formats below 118 always have one.
ConvFunction find_conversion(DF df);

/// The conversion of a format that a self-described value may name, or null.
ConvFunction find_self_described(DF df);

/// Converts one field; see `QV_N2K_PGN_DB_c::conv_DF`.
int convert_field(DF df, ConvValue* out, const void* raw, UnitId unit);

/// Quantity of a format by the format's own list, or -1; and a format for a quantity, or 65535.
DispDataType quantity_of_format(DF df);
DF format_of_quantity(DispDataType quantity);

}  // namespace pgn_vistel
