#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "pgn_vistel/n2k_msg.h"
#include "readers/problem.h"

namespace vistel {

constexpr std::uint8_t not_hex = 0xFF;

/// Value of a hexadecimal digit, or `not_hex`.
inline constexpr auto hex_value = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(not_hex);
    for (unsigned i = 0; i < 10; ++i) values['0' + i] = static_cast<std::uint8_t>(i);
    for (unsigned i = 0; i < 6; ++i) {
        values['A' + i] = static_cast<std::uint8_t>(10 + i);
        values['a' + i] = static_cast<std::uint8_t>(10 + i);
    }
    return values;
}();

constexpr std::uint8_t hex_digit(char c) {
    return hex_value[static_cast<unsigned char>(c)];
}
constexpr bool is_digit(char c) {
    return static_cast<unsigned>(c - '0') <= 9;
}
/// A carriage return counts too: it stands before many a line end and never within a line.
constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

/// True when the whole of `text` is one to eight hexadecimal digits.
bool parse_hex(std::string_view text, std::uint32_t& value);

inline std::string_view trim_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    return text;
}

/// Cuts the first run of other than blanks off `text`, together with the blanks around it. Empty at the end.
std::string_view take_word(std::string_view& text);

/// Payload as `50 C3 FF`: words of two digits, up to `most` of them.
bool read_spaced_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Payload as `50C3FF`, up to `most` bytes.
bool read_packed_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem);

/// Byte `number` (from 1) is no pair of hexadecimal digits.
void describe_bad_byte(Problem& problem, unsigned number, std::string_view text);

/// Reads `text` as identifier of eight digits within 29 bits.
bool read_identifier(std::string_view text, std::uint32_t& identifier, Problem& problem);

}  // namespace vistel
