#pragma once

#include <cstddef>
#include <string_view>

namespace vistel {

/// Most bytes that one wide character comes to.
constexpr std::size_t utf8_most = 4;

/// Writes `text` as UTF-8 to `out`, which has room for `utf8_most` bytes a character, and returns the end of
/// what was written. Pairs of surrogates become one character; what cannot be encoded becomes U+FFFD.
char* put_utf8(char* out, std::wstring_view text);

}  // namespace vistel
