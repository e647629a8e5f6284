#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Goes over into the program with the window, which stands beside this one. Returns only when that cannot be
/// started.
int run_monitor(const std::vector<std::string>& arguments);

}  // namespace vistel
