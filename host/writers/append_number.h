#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vistel {

/// @{ Appends so many bytes of a number, the lowest or the highest of them first.
inline void append_little_endian(std::string& out, std::uint64_t number, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) out += static_cast<char>(number >> 8 * i & 0xFF);
}
inline void append_big_endian(std::string& out, std::uint64_t number, unsigned bytes) {
    for (unsigned i = bytes; i > 0; --i) out += static_cast<char>(number >> 8 * (i - 1) & 0xFF);
}
/// @}

}  // namespace vistel
