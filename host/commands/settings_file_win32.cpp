#include <cstdlib>

#include "commands/settings_file.h"

namespace vistel {

std::filesystem::path settings_file() {
    const wchar_t* const folder = _wgetenv(L"APPDATA");
    if (folder == nullptr || *folder == 0) return {};
    return std::filesystem::path(folder) / "pgn-vistel" / "config";
}

}  // namespace vistel
