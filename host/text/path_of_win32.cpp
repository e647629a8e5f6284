#include "text/path_of.h"
#include "text/windows_text.h"

namespace vistel {

// The standard library would take the name for text of the C locale.
std::filesystem::path path_of(const std::string& name) {
    return wide(name);
}

}  // namespace vistel
