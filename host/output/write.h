#pragma once

#include <cstddef>
#include <string>

namespace vistel {

/// Writes some of the bytes, one at least, and says how many; waits for room, even where the descriptor is
/// not to block. 0 or less where it cannot, with the reason in errno, which is EPIPE when the reader has
/// gone.
std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size);

/// Opens a file to be written anew. Negative where it cannot, with the reason in errno.
int open_to_write(const std::string& path);

void close_written(int descriptor);

}  // namespace vistel
