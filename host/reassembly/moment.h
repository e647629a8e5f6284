#pragma once

#include <cstdint>

#include "can/record.h"

namespace vistel {

/// When a frame came, by the clock of its recording and by the number of frames before it. Recordings may
/// lack the clock, have it stand still for a second or set it back; the number always rises.
struct Moment {
    RecordTime time;
    std::uint64_t frame = 0;
};

constexpr std::int64_t milliseconds = 1'000'000;

namespace detail {
constexpr std::int64_t second = 1000 * milliseconds;

inline bool same_clock(const Moment& a, const Moment& b) {
    return a.time.origin != RecordTime::Origin::none && a.time.origin == b.time.origin;
}

/// Some recordings tell whole seconds only.
inline bool whole_seconds(const Moment& a, const Moment& b) {
    return a.time.nanoseconds % second == 0 && b.time.nanoseconds % second == 0;
}
}  // namespace detail

/// Whether something last heard of `then` has been silent for too long by the number of frames since.
inline bool overdue(const Moment& then, const Moment& now) {
    constexpr std::uint64_t most_frames = 4096;  // two seconds of a bus without a gap
    return now.frame - then.frame > most_frames;
}

/// Whether something last heard of `then` has been silent for longer than `limit` now, or overdue. Times that
/// run backwards tell nothing.
inline bool timed_out(const Moment& then, const Moment& now, std::int64_t limit) {
    if (overdue(then, now)) return true;
    if (!detail::same_clock(then, now)) return false;
    return now.time.nanoseconds - then.time.nanoseconds >
           limit + (detail::whole_seconds(then, now) ? detail::second : 0);
}

/// Whether two frames are so close to each other that they may just have changed places.
inline bool adjacent(const Moment& then, const Moment& now) {
    constexpr std::int64_t most_time = 50 * milliseconds;
    constexpr std::uint64_t most_frames = 16;
    if (!detail::same_clock(then, now) || detail::whole_seconds(then, now)) {
        return now.frame - then.frame <= most_frames;
    }
    const std::int64_t difference = now.time.nanoseconds - then.time.nanoseconds;
    return -most_time <= difference && difference <= most_time;
}

}  // namespace vistel
