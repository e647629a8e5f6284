#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "encode/field_cell.h"

namespace vistel {

/// A coded field's value and what decoding shows for it.
struct CodedChoice {
    std::uint32_t value;
    std::string text;
};

/// What a coded field can be, in order of value; of flags, the value of each. Empty for other fields. A value
/// that the field's bits cannot hold is left out.
std::vector<CodedChoice> choices_of(FieldCell cell);
bool holds_flags(const FieldCell& cell);

/// Enters a coded field by its text; flags as a list with commas. False where the text is none of its texts.
enum class Spelling { exact, any_case };
bool enter_choice(FieldCell& cell, std::string_view text, Spelling spelling);

}  // namespace vistel
