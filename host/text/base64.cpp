#include "text/base64.h"

#include <array>

namespace vistel {
namespace {

constexpr std::uint8_t no_digit = 64;

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr auto digit_values = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(no_digit);
    for (std::size_t i = 0; i < digits.size(); ++i)
        values[static_cast<unsigned char>(digits[i])] = static_cast<std::uint8_t>(i);
    return values;
}();

}  // namespace

std::optional<std::size_t> read_base64(std::string_view text, std::span<std::uint8_t> room) {
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    const std::size_t size = text.size() / 4 * 3 - padding;
    if (size > room.size()) return std::nullopt;
    text.remove_suffix(padding);
    std::uint32_t bits = 0;  // of them the lowest `count` are not written
    unsigned count = 0;
    std::size_t at = 0;
    for (const char c : text) {
        const std::uint8_t digit = digit_values[static_cast<unsigned char>(c)];
        if (digit == no_digit) return std::nullopt;
        bits = bits << 6 | digit;
        count += 6;
        if (count >= 8) {
            count -= 8;
            room[at++] = static_cast<std::uint8_t>(bits >> count);
        }
    }
    return size;
}

void append_base64(std::string& text, std::span<const std::uint8_t> bytes) {
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t three = 0;
        for (std::size_t i = at; i < at + 3; ++i) three = three << 8 | (i < bytes.size() ? bytes[i] : 0u);
        for (std::size_t i = 0; i < 4; ++i)
            text += at + i <= bytes.size() ? digits[three >> (18 - 6 * i) & 63] : '=';
    }
}

}  // namespace vistel
