#pragma once

#include <cstdint>

namespace vistel {

/// Packets of a socket, a handle of the system's, that the system dropped because they were not taken in
/// time; 0 where it does not tell.
std::uint64_t dropped_by_system(std::intptr_t socket);

}  // namespace vistel
