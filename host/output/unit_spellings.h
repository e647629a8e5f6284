#pragma once

#include <string_view>

namespace vistel {

/// Whether a text is another spelling of a unit's name: "deg C" and "celsius" of "°C", "knots" of "kt".
bool is_spelling_of(std::string_view text, std::string_view unit);

}  // namespace vistel
