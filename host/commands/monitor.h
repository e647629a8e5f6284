#pragma once

#include <string>
#include <vector>

namespace vistel {

/// Replaces this program by the one with the window, which lies beside it. `name` is that by which this one
/// was started. Returns only when the window cannot be started.
int run_monitor(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace vistel
