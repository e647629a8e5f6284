#include <cstdlib>
#include <string>

#include "commands/settings_file.h"

namespace vistel {

std::filesystem::path settings_file() {
    const auto in = [](const char* folder) {
        return std::filesystem::path(folder) / "pgn-vistel" / "config";
    };
    // One that is not absolute counts as none.
    const char* const folder = std::getenv("XDG_CONFIG_HOME");
    if (folder != nullptr && *folder == '/') return in(folder);
    const char* const home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return {};
    return in((std::string(home) + "/.config").c_str());
}

}  // namespace vistel
