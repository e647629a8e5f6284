#pragma once

#include <cstddef>

namespace vistel {

/// Writes some of the bytes, one at least, and says how many; 0 or less where it cannot, with the reason in
/// errno, which is EPIPE when the reader has gone.
std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size);

}  // namespace vistel
