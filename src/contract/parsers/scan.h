#pragma once

#include <cstdint>

namespace pgn_vistel {

// Numbers at the start of a typed text. White space and one sign may stand before, anything behind the number
// is ignored; the locale has no say. A text may have any length and is never read beyond its terminator.

enum class [[nodiscard]] Scanned{
    number,
    nothing,  ///< the text starts with something else
    end,      ///< the text is over before anything starts: empty, or white space alone
};

// Unless a number is found, `number` is left as it was.

/// Digits, a point, an exponent: no names for infinity or NaN, no hexadecimal. An exponent without digits is
/// not part of the number. What is too large becomes infinite, what is too small zero.
Scanned scan_real(const char* text, float& number);
Scanned scan_real(const char* text, double& number);

/// Whole numbers of base 10 or 16; with base 16 a "0x" may stand before. A minus sign makes the complement,
/// as it does in C. What does not fit becomes the nearest number that does; unsigned this is all ones,
/// whatever the sign, so that a field of any width then reads as not available.
Scanned scan_whole(const char* text, std::int32_t& number);
Scanned scan_whole(const char* text, std::uint32_t& number, int base = 10);
Scanned scan_whole(const char* text, std::uint64_t& number, int base = 10);

}  // namespace pgn_vistel
