#include "text/path_of.h"

namespace vistel {

std::filesystem::path path_of(const std::string& name) {
    return name;
}

}  // namespace vistel
