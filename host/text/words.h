#pragma once

#include <concepts>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "text/characters.h"

namespace vistel {

/// Without the blanks around it.
constexpr std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    return text;
}

/// Cuts the first run of other than blanks off `text`, together with the blanks around it. Empty at the end.
std::string_view take_word(std::string_view& text);

/// With ASCII letters in lower case.
std::string lower_case(std::string_view text);

/// Texts with commas between them, as in "ft, m, ftm".
std::string joined(const std::vector<std::string>& texts);

/// @{ a text, or a number in decimal digits
inline void append_part(std::string& text, std::string_view part) {
    text += part;
}
inline void append_part(std::string& text, std::unsigned_integral auto part) {
    text += std::to_string(part);
}
/// @}

/// `concat("priority ", 9u, " is above ", 7u)` -> "priority 9 is above 7".
template <class... Parts>
std::string concat(const Parts&... parts) {
    std::string text;
    (append_part(text, parts), ...);
    return text;
}

/// A number or two by a format of `printf`, up to 63 characters.
template <class... Numbers>
std::string formatted(const char* format, Numbers... numbers) {
    char text[64];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

}  // namespace vistel
