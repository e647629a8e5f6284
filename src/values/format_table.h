#pragma once

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

// The catalogued formats, ascending; dictionary entries point into it.
constexpr int format_count = 177;
extern const DFDef format_table[format_count];

}  // namespace pgn_vistel
