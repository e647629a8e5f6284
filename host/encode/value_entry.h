#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "encode/field_cell.h"

namespace vistel {

/// Writes a field's value as somebody typed it, in the form that decoding shows or a shorter one. Returns
/// what is wrong, or an empty text; nothing is entered that would not be read as it was typed.
std::string enter_value(FieldCell& cell, std::string_view typed);

/// What came of reading a text as one kind of value: nothing where it is of another kind, an empty text where
/// it has been entered, else what is wrong.
using Outcome = std::optional<std::string>;

}  // namespace vistel
