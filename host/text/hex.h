#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vistel {

inline constexpr char hex_digits[] = "0123456789ABCDEF";

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

/// True when the whole of `text` is one to eight hexadecimal digits.
bool parse_hex(std::string_view text, std::uint32_t& value);

/// Appends the lowest `digits` hexadecimal digits of a number.
void append_hex(std::string& text, std::uint32_t value, unsigned digits);

}  // namespace vistel
