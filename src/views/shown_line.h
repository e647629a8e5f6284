#pragma once

#include <cstdint>

namespace pgn_vistel {

/// Makes a line fit for a control, in place: texts of devices hold whatever was sent. Control characters,
/// what would break the line and halves of UTF-16 pairs become U+FFFD; where a `wchar_t` holds any character,
/// pairs become the one that they stand for.
inline void make_fit(wchar_t* line) {
    constexpr auto replacement = static_cast<wchar_t>(0xFFFD);
    const auto is_high = [](std::uint32_t c) { return c >= 0xD800 && c < 0xDC00; };
    const auto is_low = [](std::uint32_t c) { return c >= 0xDC00 && c < 0xE000; };
    wchar_t* to = line;
    for (; *line != 0; ++line) {
        const auto c = static_cast<std::uint32_t>(*line);
        const auto next = static_cast<std::uint32_t>(line[1]);
        if (is_high(c) && is_low(next)) {
            ++line;
            if constexpr (sizeof(wchar_t) == 2) {
                *to++ = line[-1];
                *to++ = line[0];
            } else {
                *to++ = static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00));
            }
            continue;
        }
        const bool is_control = c < 0x20 || (c >= 0x7F && c < 0xA0);
        const bool is_break = c == 0x2028 || c == 0x2029;
        const bool is_unfit = is_control || is_break || is_high(c) || is_low(c) || c > 0x10FFFF;
        *to++ = is_unfit ? replacement : static_cast<wchar_t>(c);
    }
    *to = 0;
}

}  // namespace pgn_vistel
