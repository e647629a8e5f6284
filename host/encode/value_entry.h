#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "encode/field_cell.h"
#include "text/result.h"

namespace vistel {

/// Writes a field's value as somebody typed it, in the form that decoding shows or a shorter one. Nothing is
/// entered that would not be read as it was typed.
Result<> enter_value(FieldCell& cell, std::string_view text);

/// What came of reading a text as one kind of value: nothing where it is of another kind.
using Outcome = std::optional<Result<>>;

}  // namespace vistel
