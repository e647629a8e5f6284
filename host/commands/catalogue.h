#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Names of the tables that `run_catalogue` prints.
std::vector<std::string> catalogue_tables();

/// Prints the named table of the catalogue as tab-separated text with a header line, in stored order, on
/// standard output. Returns the exit status.
int run_catalogue(const std::string& name);

}  // namespace vistel
