#pragma once

#include <cstdint>
#include <string_view>

#include "can/record.h"
#include "readers/problem.h"

namespace vistel {

enum class [[nodiscard]] ReadResult{
    record,
    problem,  ///< something cannot be understood; reading goes on behind it
    nothing,  ///< a piece without a record was passed, or the wait for input was cut short
    end,
};

/// Takes records out of a byte source in one format.
class RecordReader {
  public:
    virtual ~RecordReader() = default;

    /// Fills `record` or `problem`. Of the record, `nothing` leaves the payload and its length as they were,
    /// `problem` may leave anything.
    virtual ReadResult next(Record& record, Problem& problem) = 0;

    /// Whether next() will have to wait for input.
    virtual bool would_wait() = 0;

    /// Frames passed over because they are not NMEA 2000.
    virtual std::uint64_t foreign_frames() const = 0;

    /// Frames that the recording itself says it lacks.
    virtual std::uint64_t dropped_frames() const { return 0; }

    /// How the recording names the interface that `Record::bus` numbers; empty where it does not. Valid until
    /// the next call.
    virtual std::string_view bus_name(std::uint8_t bus) const = 0;
};

/// What a format says of frames that are missing: one whose recordings tell may have `dropped_frames()`.
template <class Format>
std::uint64_t dropped_frames_of(const Format& format) {
    if constexpr (requires { format.dropped_frames(); }) {
        return format.dropped_frames();
    } else {
        return 0;
    }
}

/// What a format says of an interface: one that tells several apart may have `bus_name(std::uint8_t)`, by
/// which each is known from its first record on.
template <class Format>
std::string_view bus_name_of(const Format& format, std::uint8_t bus) {
    if constexpr (requires { format.bus_name(bus); }) {
        return format.bus_name(bus);
    } else {
        return {};
    }
}

}  // namespace vistel
