#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Runs the program with the window, which lies beside this one, in place of this one, and gives its exit
/// status. `name` is that by which this one was started.
int run_monitor(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace vistel
