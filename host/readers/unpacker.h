#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace vistel {

/// How files, and parts of them, are compressed.
enum class Packing : std::uint8_t { gzip, xz, zstd, bzip2, zlib };

/// Unpacks one piece of compressed data: a member of a gzip file, a stream of an xz file, and so on.
class Unpacker {
  public:
    enum class [[nodiscard]] Step{
        more,      ///< goes on with more bytes, or more room
        end,       ///< the piece is complete
        damaged,   ///< the bytes are no such data
        too_large  ///< unpacking takes more memory than a recording is worth
    };

    virtual ~Unpacker() = default;

    /// Takes bytes from the front of `packed` and writes what they hold to the front of `room`. What is left
    /// of both is handed back.
    virtual Step unpack(std::string_view& packed, std::span<char>& room) = 0;
};

/// Null where the program was built without these libraries.
std::unique_ptr<Unpacker> make_unpacker(Packing packing);

}  // namespace vistel
