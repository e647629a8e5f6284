#pragma once

#include <string>
#include <vector>

#include "pgn_vistel/core/catalogue.h"

namespace vistel {

/// Names of the tables that `run_catalogue` prints.
std::vector<std::string> catalogue_tables();

/// Prints the named table of the catalogue as tab-separated text with a header line, in stored order, on
/// standard output: of these definitions, where they have one of their own. Returns the exit status.
int run_catalogue(const std::string& name, pgn_vistel::core::Definitions definitions);

}  // namespace vistel
