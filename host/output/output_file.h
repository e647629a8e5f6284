#pragma once

#include <string>
#include <vector>

#include "text/result.h"

namespace vistel {

/// Opens a file to be written anew, or standard output for "-". Fails where it is one of the `inputs`, "-"
/// for standard input, which would be emptied before it is read. Returns the descriptor.
Result<int> open_output(const std::string& path, const std::vector<std::string>& inputs);

/// Whether it is a file that something would be lost of, were it written anew: no pipe or device, not empty.
bool holds_something(const std::string& path);

}  // namespace vistel
