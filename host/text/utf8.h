#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vistel {

/// The 16-bit units of a UTF-8 text; nothing where it is not well-formed.
std::optional<std::u16string> utf16_of(std::string_view text);

/// Appends a character.
void append_utf8(std::string& text, char32_t character);

}  // namespace vistel
