#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Goes over into the program with the window, which stands beside this one. `name` is that by which this one
/// was started. Returns only when the window cannot be started.
int run_monitor(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace vistel
