#pragma once

#include "pgn_vistel/catalogue.h"

namespace pgn_vistel {

// Field rows point into the dictionary; its size is part of the contract between the two tables.
constexpr int dictionary_size = 535;
extern const DDDef dictionary[dictionary_size];

}  // namespace pgn_vistel
