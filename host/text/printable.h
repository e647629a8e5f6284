#pragma once

#include <string>
#include <string_view>

namespace vistel {

/// UTF-8 text with U+FFFD for each control character, and without blanks around it.
std::string printable(std::string_view text);

}  // namespace vistel
