#pragma once

#include <filesystem>

namespace vistel {

/// Where the settings of a user stand: `pgn-vistel/config` in the folder where a system has such files. Empty
/// where that is not known.
std::filesystem::path settings_file();

}  // namespace vistel
