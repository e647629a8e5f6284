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

/// What each two characters are worth, the first one lowest in the index: one look at a table instead of two.
/// Of its pages those of digits and letters alone are ever touched.
inline constexpr auto hex_pairs = [] {
    std::array<std::uint16_t, 65536> values{};
    values.fill(not_hex);
    constexpr std::string_view digits = "0123456789ABCDEFabcdef";
    for (const char first : digits) {
        for (const char second : digits) {
            const char pair[] = {first, second};
            values[static_cast<std::size_t>(second) << 8 | static_cast<std::size_t>(first)] =
                static_cast<std::uint16_t>(hex_pair(pair));
        }
    }
    return values;
}();

/// Value of the two hexadecimal digits at `p`, or `not_hex`.
inline unsigned quick_hex_pair(const char* p) {
    return hex_pairs[static_cast<unsigned char>(p[0]) | unsigned{static_cast<unsigned char>(p[1])} << 8];
}

/// Pairs that are read without a loop: as many as most messages have.
constexpr unsigned hex_group = 8;

/// Reads pairs of hexadecimal digits, each `stride` characters behind the last one. `not_hex` or more where
/// one is none. There is no exit in between, as those are rare.
template <unsigned stride>
inline unsigned read_hex_group(const char* p, std::uint8_t* out) {
    unsigned all = 0;
#pragma GCC unroll 8
    for (unsigned i = 0; i < hex_group; ++i) {
        const unsigned pair = quick_hex_pair(p + stride * i);
        all |= pair;
        out[i] = static_cast<std::uint8_t>(pair);
    }
    return all;
}

/// Reads `count` pairs. False where one is none, with something in `out`.
template <unsigned stride>
[[nodiscard]] inline bool read_hex_bytes(const char* p, unsigned count, std::uint8_t* out) {
    if (count == hex_group) [[likely]]
        return read_hex_group<stride>(p, out) < not_hex;
    unsigned all = 0;
    for (; count >= hex_group; count -= hex_group, p += stride * hex_group, out += hex_group)
        all |= read_hex_group<stride>(p, out);
#pragma GCC unroll 1
    for (; count > 0; --count, p += stride) {
        const unsigned pair = quick_hex_pair(p);
        all |= pair;
        *out++ = static_cast<std::uint8_t>(pair);
    }
    return all < not_hex;
}

/// What differs of the characters before pairs from the separator that each byte of `separators` is.
inline std::uint64_t not_leading(std::uint64_t separators, const char* p) {
    static_assert(hex_group == 8, "they take three times eight characters");
    return ((characters_at<std::uint64_t>(p) ^ separators) & 0x00FF0000FF0000FF) |
           ((characters_at<std::uint64_t>(p + 8) ^ separators) & 0xFF0000FF0000FF00) |
           ((characters_at<std::uint64_t>(p + 16) ^ separators) & 0x0000FF0000FF0000);
}

/// Whether each of `count` pairs of characters has this one before it.
inline bool lead_pairs(char separator, const char* p, unsigned count) {
    const std::uint64_t separators = 0x0101010101010101 * static_cast<unsigned char>(separator);
    if (count == hex_group) [[likely]]
        return not_leading(separators, p) == 0;
    std::uint64_t other = 0;
    for (; count >= hex_group; count -= hex_group, p += 3 * hex_group) other |= not_leading(separators, p);
    for (; count > 0; --count, p += 3) other |= static_cast<unsigned char>(*p ^ separator);
    return other == 0;
}

/// True when the whole of `text` is one to eight hexadecimal digits.
[[nodiscard]] bool parse_hex(std::string_view text, std::uint32_t& value);

/// Reads the eight hexadecimal digits at `p`.
[[nodiscard]] inline bool read_hex_number(const char* p, std::uint32_t& value) {
    const unsigned a = quick_hex_pair(p), b = quick_hex_pair(p + 2);
    const unsigned c = quick_hex_pair(p + 4), d = quick_hex_pair(p + 6);
    value = a << 24 | b << 16 | c << 8 | d;
    return (a | b | c | d) < not_hex;
}

/// Appends the lowest `digits` hexadecimal digits of a number.
void append_hex(std::string& text, std::uint32_t value, unsigned digits);

}  // namespace vistel
