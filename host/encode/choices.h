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
/// that the field cannot hold is left out.
std::vector<CodedChoice> choices_of(FieldCell cell);
bool holds_flags(const FieldCell& cell);

/// Enters a coded field by its number or its text as it is; or by the text in upper or lower case, and, of
/// `[Yes, On, Enabled, Set, "1"]` by any word. Flags are a list with commas, in any case. False where the
/// text is none of these.
enum class Spelling { exact, alike };
[[nodiscard]] bool enter_choice(FieldCell& cell, std::string_view text, Spelling spelling);

}  // namespace vistel
