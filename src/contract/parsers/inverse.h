#pragma once

#include <cstdint>
#include <optional>

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

/// The way back through a format of 32 bits that is linear in the raw number, found by probing its
/// conversion: the raw number of `value`, which is in `unit`, or none where the unit is not served. It is
/// rounded, positive ones to the nearest, and not tested against the range: of a number that is too large the
/// low bits are left.
std::optional<std::uint32_t> probed_raw(DF df, float value, UnitId unit);

}  // namespace pgn_vistel
