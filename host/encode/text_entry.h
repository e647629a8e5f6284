#pragma once

#include <vector>

#include "encode/value_entry.h"

namespace vistel {

/// Enters a text into a field of texts, or bytes into one that is shown as bytes. `text` is UTF-8.
Status enter_text(FieldCell& cell, std::string_view text);

/// The bytes of "01 02 FF" or "0102FF"; nothing where the text is something else.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> bytes_of(std::string_view text);

}  // namespace vistel
