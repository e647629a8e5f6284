#pragma once

#include <string>
#include <string_view>

namespace vistel {

/// Bytes of a recording between backticks, for messages: at most 32 of them, unprintable ones as \xNN.
std::string quoted(std::string_view bytes);

/// A typed text between quotes, for messages: shortened and without control characters.
std::string in_quotes(std::string_view typed);

}  // namespace vistel
