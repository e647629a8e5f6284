#pragma once

#include <cstdint>

#include "can/frames.h"
#include "can/record.h"

namespace vistel {

/// Bits that a network of this kind carries in a second.
constexpr double bus_bits_per_second = 250'000;

/// What went over the wire.
struct WireCount {
    std::uint64_t frames = 0;
    std::uint64_t bits = 0;

    WireCount& operator+=(const WireCount& other) {
        frames += other.frames;
        bits += other.bits;
        return *this;
    }
};

/// Bits that a data frame takes, with the gap behind it and the bits stuffed into it: these are counted over
/// the frame's own bits, check sum included. Frames that were sent once more after an error do not show.
[[nodiscard]] unsigned wire_bits(std::uint32_t identifier, FrameBytes bytes);

/// Of a record: of a frame its own, of a whole message those that it was sent in. The sequence of a fast
/// packet is not known then and taken as 0, and what a receiver answers in a transport session is left out.
[[nodiscard]] WireCount wire_count(const Record& record, pgn_vistel::core::Definitions definitions);

}  // namespace vistel
