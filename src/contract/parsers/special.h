#pragma once

#include <cstdint>
#include <span>

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

// Parsers of the formats that do not follow the numeric scheme; their shape is that of `ParseFunction`.

using ParserOf = ConvValue*(ConvValue* out, const char* text, UnitId unit);

// numbers with a rule of their own (special_numbers.cpp)
ParserOf parse_mass, parse_data_size, parse_two_bit_state;

// texts (texts.cpp). Each builds its field in a static area of its own, which holds it until the next call.
ParserOf parse_text_short, parse_text_medium, parse_text_fixed, parse_hex_dump;

/// Values that name their own format (self_described.cpp): the unit chooses the format.
ParserOf parse_self_described;

/// The field that `parse_self_described` made last, as it is sent: format number, then value. It is empty
/// after a unit without a format.
std::span<const std::uint8_t> self_described_field();

}  // namespace pgn_vistel
