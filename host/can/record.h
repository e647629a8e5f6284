#pragma once

#include <cstdint>

#include "pgn_vistel/n2k_msg.h"

namespace vistel {

/// When a record was seen. What zero means depends on the recording.
struct RecordTime {
    enum class Origin : std::uint8_t {
        none,   ///< the recording tells no time; `nanoseconds` is 0
        start,  ///< since an arbitrary start, such as that of the recording
        day,    ///< since a midnight; goes on rising over the next ones
        epoch,  ///< since 1970-01-01 00:00 UTC
    };

    std::int64_t nanoseconds = 0;
    Origin origin = Origin::none;

    friend bool operator==(const RecordTime&, const RecordTime&) = default;
};

/// What a clock counts from that may not have been set: from 1973 on seconds since 1970, below seconds since
/// an unknown start.
constexpr RecordTime::Origin origin_of_seconds(std::int64_t seconds) {
    constexpr std::int64_t first_absolute = 100'000'000;  // 1973-03-03; no recording lasts three years
    return seconds >= first_absolute ? RecordTime::Origin::epoch : RecordTime::Origin::start;
}

/// One entry of a recording. `msg.time_stamp` is left alone: its origin is the host's choice.
/// The payload bytes behind `msg.length` are 0, so that equal messages are equal in all bytes.
struct Record {
    enum class Kind : std::uint8_t {
        message,  ///< complete
        frame,    ///< one CAN frame, possibly a piece of a message
    };

    Kind kind = Kind::message;
    std::uint8_t bus = 0;  ///< which of the interfaces that the recording tells apart
    N2KMsg msg{};
    RecordTime time;
};

}  // namespace vistel
