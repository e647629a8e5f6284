#pragma once

#include <string>
#include <string_view>

namespace vistel {

/// UTF-8 text with U+FFFD for each control character, and without blanks around it.
std::string printable(std::string_view text);

/// The same with all its blanks, of any bytes: where they are no UTF-8 text, those that are no ASCII become
/// question marks. Names of files and arguments may hold what would steer the terminal or forge lines.
std::string harmless(std::string_view bytes);

}  // namespace vistel
