#pragma once

#include <cstdint>
#include <string_view>

#include "can/record.h"
#include "pgn_vistel/n2k_msg.h"
#include "readers/line_format.h"
#include "readers/problem.h"

namespace vistel {

/// Payload as `50 C3 FF`: words of two digits, up to `most` of them.
[[nodiscard]] bool read_spaced_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Payload as `50C3FF`, up to `most` bytes.
[[nodiscard]] bool read_packed_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Cuts the text up to the next comma off `text`; returned without the blanks around it.
std::string_view take_cell(std::string_view& text);

/// True when the whole of `text` is a number in decimal digits, up to `most`.
[[nodiscard]] bool parse_number(std::string_view text, std::uint32_t most, std::uint32_t& value);

/// The same in `base`, 10 or 16.
[[nodiscard]] bool parse_number(std::string_view text, unsigned base, std::uint32_t most,
                                std::uint32_t& value);

/// Reads `text` as a number from 0 to `most`, which the problem calls `name`.
[[nodiscard]] bool read_number(std::string_view text, std::string_view name, std::uint32_t most,
                               std::uint32_t& value, Problem& problem);

/// Reads the length of a frame.
[[nodiscard]] bool read_frame_length(std::string_view text, unsigned& length, Problem& problem);

/// Cuts `count` bytes off `text`, words in `base`, for a payload of that length.
[[nodiscard]] bool take_bytes(std::string_view& text, unsigned count, unsigned base, N2KMsg& msg,
                              Problem& problem);

/// A frame whose text ends with its bytes: no more of them than were announced.
LineResult read_frame_bytes(std::string_view text, unsigned length, unsigned base, N2KMsg& msg,
                            Problem& problem);

/// Byte `number` (from 1) is no pair of hexadecimal digits.
void describe_bad_byte(Problem& problem, unsigned number, std::string_view text);

/// Reads `text` as `digits` hexadecimal digits of something that the problem calls `name`.
[[nodiscard]] bool read_hex_field(std::string_view text, const char* name, unsigned digits,
                                  std::uint32_t& value, Problem& problem);

/// Reads `text` as identifier of eight digits within 29 bits.
[[nodiscard]] bool read_identifier(std::string_view text, std::uint32_t& identifier, Problem& problem);

/// The same of an identifier without leading zeros, in `base`, where 16 may show by `0x`.
[[nodiscard]] bool read_number_as_identifier(std::string_view text, unsigned base, std::uint32_t& identifier,
                                             Problem& problem);

/// Header and kind of a frame.
void set_frame(Record& record, std::uint32_t identifier);

}  // namespace vistel
