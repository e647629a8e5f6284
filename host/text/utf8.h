#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vistel {

/// Most bytes that one wide character comes to.
constexpr std::size_t utf8_most = 4;

/// Writes `text` as UTF-8 to `out`, which has room for `utf8_most` bytes a character, and returns the end of
/// what was written. Pairs of surrogates become one character; what cannot be encoded becomes U+FFFD.
char* put_utf8(char* out, std::wstring_view text);

std::string utf8_of(std::wstring_view text);

/// The 16-bit units of a UTF-8 text; nothing where it is not well-formed.
std::optional<std::u16string> utf16_of(std::string_view text);

}  // namespace vistel
