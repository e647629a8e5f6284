#pragma once

#include <vector>

#include "encode/raw_scale.h"
#include "encode/value_entry.h"

namespace vistel {

/// The units of the field's quantity that its format serves, the default first.
std::vector<pgn_vistel::core::UnitId> served_units(FieldCell cell);

/// The field's numbers in a unit. The cell's bits change while it is asked.
RawScale scale_of(FieldCell& cell, pgn_vistel::core::UnitId unit);

/// "from 0 to 42.5 m".
std::string range_text(const RawScale& scale, pgn_vistel::core::UnitId unit);

/// Enters "12.5", "12.5 m", "0x1F", "31 (0x1F)" and "127250 (Vessel Heading)".
Outcome enter_number(FieldCell& cell, std::string_view text);

/// Takes the number at the beginning of the text away from it. Nothing where there is none.
[[nodiscard]] std::optional<double> take_number(std::string_view& text);

/// Whether decoding shows the field so, with its unit or without.
bool shows(const FieldCell& cell, std::string_view text);

}  // namespace vistel
