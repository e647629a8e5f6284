#pragma once

#include <string>
#include <string_view>

namespace vistel {

/// Bytes of a recording between backticks, for messages: at most 32 of them, unprintable ones as \xNN. Dots
/// stand for what is left out, and for the mark that a line was cut there, which nobody sent.
std::string quoted(std::string_view bytes);

/// A typed text between quotes, for messages: shortened and without control characters.
std::string in_quotes(std::string_view typed);

}  // namespace vistel
