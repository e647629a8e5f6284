#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "text/result.h"

namespace vistel {

/// Where bytes come from: a file, a pipe, a link to a gateway.
class ByteInput {
  public:
    enum class [[nodiscard]] Fill{
        data,    ///< there are new bytes
        end,     ///< there will be no more
        failed,  ///< there will be no more, for the reason in error()
        idle,    ///< nothing came: not waited, waited long enough, or interrupted by a signal
    };

    virtual ~ByteInput() = default;

    /// Reads up to room.size() bytes, which is not 0, and sets `size` with `data`. `patience` is the longest
    /// wait in milliseconds, negative for no limit. Behind `end` and `failed` it is not called again.
    virtual Fill read(std::span<char> room, int patience, std::size_t& size) = 0;

    /// Why read() failed.
    virtual const std::string& error() const = 0;

    /// Whether all bytes are there from the first to the last without waiting.
    virtual bool is_file() const = 0;

    /// Bytes there are, 0 when unknown.
    virtual std::uint64_t total() const = 0;

    /// How far the first `given` bytes that read() gave are on the way to total(), about.
    virtual std::uint64_t position(std::uint64_t given) const { return given; }
    /// When the bytes of the last read() arrived, in nanoseconds since 1970-01-01 00:00 UTC; 0 for bytes that
    /// were there before.
    virtual std::int64_t arrival() const { return 0; }
};

/// Opens a file, or standard input for "-".
Result<std::unique_ptr<ByteInput>> open_file(const std::string& path);

/// Reads from an open descriptor, which is closed in the end unless it is standard input.
Result<std::unique_ptr<ByteInput>> attach_descriptor(int descriptor);

}  // namespace vistel
