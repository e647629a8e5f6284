#pragma once

#include <filesystem>
#include <string>

namespace vistel {

/// The file that a name stands for, which is UTF-8 where the system's names are characters and not bytes.
/// There, one that is not well-formed is the name of no file (an empty path).
std::filesystem::path path_of(const std::string& name);

}  // namespace vistel
