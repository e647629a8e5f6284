#pragma once

#include <optional>
#include <string_view>

#include "encode/field_cell.h"
#include "text/result.h"

namespace vistel {

/// Writes a field's value as somebody typed it, in the form that decoding shows or a shorter one. Nothing is
/// entered that would not be read as it was typed.
Status enter_value(FieldCell& cell, std::string_view typed);

/// What came of entering a text as one kind of value; nothing where it is of another kind.
using Outcome = std::optional<Status>;

}  // namespace vistel
