#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/fixed_digits.h"

namespace vistel {

inline constexpr char hex_digits[] = "0123456789ABCDEF";

/// Above the value of any digit or pair of digits.
constexpr unsigned not_hex = 0x100;

/// What each character is worth as a hexadecimal digit, `times` over, or `not_hex`.
template <unsigned times>
inline constexpr auto hex_values = [] {
    std::array<std::uint16_t, 256> values{};
    values.fill(not_hex);
    for (unsigned i = 0; i < 10; ++i) values['0' + i] = static_cast<std::uint16_t>(i * times);
    for (unsigned i = 10; i < 16; ++i) {
        values['A' + i - 10] = static_cast<std::uint16_t>(i * times);
        values['a' + i - 10] = static_cast<std::uint16_t>(i * times);
    }
    return values;
}();

/// Value of a hexadecimal digit, or `not_hex`.
constexpr unsigned hex_digit(char c) {
    return hex_values<1>[static_cast<unsigned char>(c)];
}

/// Value of the two hexadecimal digits at `p`; `not_hex` or more where they are something else.
constexpr unsigned hex_pair(const char* p) {
    return unsigned{hex_values<16>[static_cast<unsigned char>(p[0])]} | hex_digit(p[1]);
}

/// Reads `count` pairs of hexadecimal digits, each `stride` characters behind the last one. The loops have no
/// exit of their own: pairs that are none are rare. False then, with something in `out`.
template <unsigned stride>
bool read_hex_bytes(const char* p, unsigned count, std::uint8_t* out) {
    constexpr unsigned group = 8;  // as many as most messages have
    unsigned all = 0;
    for (; count >= group; count -= group, p += stride * group, out += group) {
#pragma GCC unroll 8
        for (unsigned i = 0; i < group; ++i) {
            const unsigned pair = hex_pair(p + stride * i);
            all |= pair;
            out[i] = static_cast<std::uint8_t>(pair);
        }
    }
    for (; count > 0; --count, p += stride) {
        const unsigned pair = hex_pair(p);
        all |= pair;
        *out++ = static_cast<std::uint8_t>(pair);
    }
    return all < not_hex;
}

/// Whether each of `count` pairs of characters has this one before it.
inline bool lead_pairs(char separator, const char* p, unsigned count) {
    const std::uint64_t separators = 0x0101010101010101 * static_cast<unsigned char>(separator);
    constexpr unsigned group = 8;  // pairs in three times eight characters
    std::uint64_t other = 0;
    for (; count >= group; count -= group, p += 3 * group) {
        other |= (characters_at<std::uint64_t>(p) ^ separators) & 0x00FF0000FF0000FF;
        other |= (characters_at<std::uint64_t>(p + 8) ^ separators) & 0xFF0000FF0000FF00;
        other |= (characters_at<std::uint64_t>(p + 16) ^ separators) & 0x0000FF0000FF0000;
    }
    for (; count > 0; --count, p += 3) other |= static_cast<unsigned char>(*p ^ separator);
    return other == 0;
}

/// True when the whole of `text` is one to eight hexadecimal digits.
bool parse_hex(std::string_view text, std::uint32_t& value);

/// Reads the eight hexadecimal digits at `p`.
constexpr bool read_hex_number(const char* p, std::uint32_t& value) {
    const unsigned a = hex_pair(p), b = hex_pair(p + 2), c = hex_pair(p + 4), d = hex_pair(p + 6);
    value = a << 24 | b << 16 | c << 8 | d;
    return (a | b | c | d) < not_hex;
}

/// Appends the lowest `digits` hexadecimal digits of a number.
void append_hex(std::string& text, std::uint32_t value, unsigned digits);

}  // namespace vistel
