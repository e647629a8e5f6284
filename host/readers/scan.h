#pragma once

#include <cstdint>
#include <string_view>

#include "pgn_vistel/n2k_msg.h"
#include "readers/problem.h"

namespace vistel {

/// Payload as `50 C3 FF`: words of two digits, up to `most` of them.
bool read_spaced_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Payload as `50C3FF`, up to `most` bytes.
bool read_packed_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Byte `number` (from 1) is no pair of hexadecimal digits.
void describe_bad_byte(Problem& problem, unsigned number, std::string_view text);

/// Reads `text` as a number from 0 to `most`, which the problem calls `name`.
bool read_number(std::string_view text, const char* name, std::uint32_t most, std::uint32_t& value,
                 Problem& problem);

/// Reads `text` as `digits` hexadecimal digits of something that the problem calls `name`.
bool read_hex_field(std::string_view text, const char* name, unsigned digits, std::uint32_t& value,
                    Problem& problem);

/// Reads `text` as identifier of eight digits within 29 bits.
bool read_identifier(std::string_view text, std::uint32_t& identifier, Problem& problem);

}  // namespace vistel
