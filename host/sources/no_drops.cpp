#include "sources/drops.h"

namespace vistel {

std::uint64_t dropped_by_system(std::intptr_t) {
    return 0;
}

}  // namespace vistel
