#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/pgn_db.h"
#include "text/result.h"

namespace vistel {

/// Applies "QUANTITY=UNIT" to the database's selection.
Result<> select_unit(QV_N2K_PGN_DB_c& db, std::string_view choice);

/// Applies a named choice for every quantity: "default" or "metric".
Result<> select_units(QV_N2K_PGN_DB_c& db, std::string_view name);

/// The units that a command line asks for.
struct UnitOptions {
    std::string set;                 ///< a named set of units, applied before single ones
    std::vector<std::string> units;  ///< QUANTITY=UNIT
};

/// Applies both.
Result<> select_units(QV_N2K_PGN_DB_c& db, const UnitOptions& options);

}  // namespace vistel
