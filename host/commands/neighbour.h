#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Replaces this program by another, which lies beside it. `name` is that by which this one was started.
/// Returns only when the other cannot be started.
int run_neighbour(const std::string& neighbour, const std::string& name,
                  const std::vector<std::string>& arguments);

}  // namespace vistel
