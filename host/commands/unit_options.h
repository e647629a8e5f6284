#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/units.h"
#include "text/result.h"

namespace vistel {

/// Applies "QUANTITY=UNIT" to the selection. All quantities have a name: that of `quantity_rows()`, or the
/// one in the tables.
Status select_unit(pgn_vistel::core::UnitSelection& selection, std::string_view choice);

/// The name of a quantity for users.
std::string quantity_name(pgn_vistel::core::DispDataType quantity);

/// "default", those of data/unit_sets.tsv, "si".
std::vector<std::string> unit_set_names();

/// Applies a named choice for every quantity.
Status select_units(pgn_vistel::core::UnitSelection& selection, std::string_view name);

/// The units that a command line asks for, and those that its user usually has.
struct UnitOptions {
    std::string set;                 ///< a named set of units, applied before single ones; empty for none
    std::vector<std::string> units;  ///< QUANTITY=UNIT

    std::string usual_set;                 ///< @{ the same of the configuration, applied before all of these
    std::vector<std::string> usual_units;  ///< @}

    bool is_empty() const { return set.empty() && units.empty() && usual_set.empty() && usual_units.empty(); }
    /// Leaves those of the command line.
    void drop_usual() {
        usual_set.clear();
        usual_units.clear();
    }
};

/// Applies all of them.
Status select_units(pgn_vistel::core::UnitSelection& selection, const UnitOptions& options);

}  // namespace vistel
