#pragma once

#include <string_view>

namespace vistel {

/// What a file that is no recording seems to be by its first bytes: "a PNG picture"; empty when there is no
/// telling.
std::string_view guess_file(std::string_view head);

}  // namespace vistel
