#pragma once

#include <cstdint>

namespace vistel {

/// What became of the frames and messages that went in. Nothing is lost without being counted here.
struct ReassemblyCounters {
    std::uint64_t frames = 0;    ///< frames taken
    std::uint64_t messages = 0;  ///< messages emitted: whole, single-frame and reassembled ones
    std::uint64_t incomplete_fast_packets = 0;
    std::uint64_t incomplete_transports = 0;
    std::uint64_t orphan_frames = 0;    ///< pieces that belong to no announced message
    std::uint64_t repeated_frames = 0;  ///< pieces that were there already

    friend bool operator==(const ReassemblyCounters&, const ReassemblyCounters&) = default;
};

}  // namespace vistel
