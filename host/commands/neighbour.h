#pragma once

#include <string>
#include <vector>

#include "text/result.h"

namespace vistel {

/// Runs the program `name` that lies beside this one, in place of this one, and gives its exit status.
/// `own_name` is the name by which this one was started. Fails where it cannot be started.
Result<int> run_neighbour(const std::string& name, const std::string& own_name,
                          const std::vector<std::string>& arguments);

}  // namespace vistel
