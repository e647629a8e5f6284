#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vistel {

/// A name as it is compared: without regard to case, several blanks as one.
std::string comparable_name(std::string_view name);

/// What could have been meant: "did you mean 'a' or 'b'?", or "there are: a, b, c" where there are few, or
/// `otherwise`.
std::string suggestion(std::string_view typed, const std::vector<std::string>& choices,
                       std::string_view otherwise);

}  // namespace vistel
