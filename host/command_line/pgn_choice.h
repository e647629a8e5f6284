#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "text/result.h"

namespace vistel {

/// The PGNs that a text chooses: numbers and names with commas between them. A number may be hexadecimal, of
/// a PGN that the catalogue does not know, too. A name is one of the catalogue's, in either set of
/// definitions, without regard to case, and may hold commas itself; it stands for all PGNs that have it, the
/// name of a variant for its PGN. Else it is a part of the names of one PGN alone.
Result<std::vector<std::uint32_t>> parse_pgns(std::string_view text);

/// Whether either set of definitions has the PGN.
bool is_catalogued(std::uint32_t number);

}  // namespace vistel
