#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/units.h"

namespace vistel {

/// A unit's text in UTF-8; the two clocks, which have no text, by a name of our own.
std::string unit_text(pgn_vistel::core::UnitId unit);

/// Units that a quantity offers, the default first.
std::vector<pgn_vistel::core::UnitId> offered_units(pgn_vistel::core::DispDataType quantity);

/// The unit with this text: letter for letter, else as the only one that it can mean without regard to case
/// and degree signs, by its name in JSON, or in another spelling ("knots"). -1 for none.
pgn_vistel::core::UnitId find_unit(const std::vector<pgn_vistel::core::UnitId>& units, std::string_view text);

/// ASCII lower case without degree signs: what people type for a unit or a quantity.
std::string simplified(std::string_view text);

}  // namespace vistel
