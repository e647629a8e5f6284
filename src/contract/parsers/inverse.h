#pragma once

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

/// Any record as a single precision number; NaN for texts, for reserved codes and where there is no value.
float conv_to_float(const ConvValue& value);

/// The way back through a conversion that is linear in the raw number, found by probing it: writes the raw
/// bytes of `value`, which is in `unit`, and returns how many, or -1 where the conversion has no way back.
///
/// At most `available` bytes are written. `bits` says how large a raw number the probe may use, 0 or less
/// leaves the choice to the field's width. The raw number is rounded, positive ones to the nearest. It is not
/// tested against the field's range: a number that is too large loses its high bytes.
int value_to_raw(void* out, float value, UnitId unit, int available, ConvFunction conversion, int bits);

}  // namespace pgn_vistel
