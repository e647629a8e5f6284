#pragma once

#include <string>
#include <string_view>

#include "pgn_vistel/pgn_db.h"

namespace vistel {

/// Applies "QUANTITY=UNIT" to the database's selection. Returns what is wrong, or an empty text.
std::string select_unit(QV_N2K_PGN_DB_c& db, std::string_view choice);

/// Applies a named choice for every quantity: "default" or "metric". Returns what is wrong, or an empty text.
std::string select_units(QV_N2K_PGN_DB_c& db, std::string_view name);

/// A unit's text in UTF-8; the two clocks, which have no text, by a name of our own.
std::string unit_text(int unit);

}  // namespace vistel
