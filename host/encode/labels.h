#pragma once

#include <string_view>

namespace vistel {

/// A label without the number of its round, and that number; 0 for none.
struct NumberedLabel {
    std::string_view text;
    int round;
};
NumberedLabel numbered(std::string_view label);

/// Without regard to case and blanks around.
bool same_label(std::string_view a, std::string_view b);

/// Whether the typed label is the one that decoding shows. The number of a round may be left out.
bool means_label(std::string_view typed, std::string_view shown);

}  // namespace vistel
