#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/units.h"
#include "text/result.h"

namespace vistel {

/// Applies "QUANTITY=UNIT" to the selection.
Status select_unit(pgn_vistel::core::UnitSelection& selection, std::string_view choice);

/// Applies a named choice for every quantity: "default", "metric" or "si".
Status select_units(pgn_vistel::core::UnitSelection& selection, std::string_view name);

/// The units that a command line asks for.
struct UnitOptions {
    std::string set;                 ///< a named set of units, applied before single ones; empty for none
    std::vector<std::string> units;  ///< QUANTITY=UNIT
};

/// Applies both.
Status select_units(pgn_vistel::core::UnitSelection& selection, const UnitOptions& options);

}  // namespace vistel
