#pragma once

#include <cstdint>

namespace vistel {

constexpr std::int64_t milliseconds = 1'000'000;

/// When a frame came, by the clock of its source and by the number of frames on its bus before it. Recordings
/// may lack the clock or have it stand still for a second; the number always rises.
struct Moment {
    std::int64_t spoken;   ///< time for which the source has been heard, its pauses left out
    std::uint64_t frame;   ///< on the bus
    std::uint32_t pauses;  ///< of the source so far
};

namespace detail {
constexpr std::int64_t second = 1000 * milliseconds;

/// Times come from outside and may lie as far apart as they can.
inline std::int64_t difference(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

inline bool longer(std::int64_t from, std::int64_t to, std::int64_t limit) {
    const std::int64_t length = difference(to, from);
    return length > limit && (length > limit + second || from % second != 0 || to % second != 0);
}
}  // namespace detail

/// The clock by which the frames of one source are timed. It runs on while the source is heard. Where the
/// source as a whole is silent for longer than a message may be, the recording stalled or its clock was
/// set: that is a pause, for which the clock stands still, however long it seems and whether forward or
/// back.
class SourceClock {
  public:
    static constexpr std::int64_t longest_step = 750 * milliseconds;

    /// The source is heard at `time` of the recording, as frame number `frame` of its bus.
    Moment tick(std::int64_t time, std::uint64_t frame) {
        if (is_pause(time)) [[unlikely]] {
            if (pauses_++ > 0) offset_ = detail::difference(time, detail::difference(last_, offset_));
        }
        last_ = time;
        return {detail::difference(time, offset_), frame, pauses_};
    }

    /// What it shows at `time` while another source is heard.
    Moment look(std::int64_t time, std::uint64_t frame) const {
        return {detail::difference(is_pause(time) ? last_ : time, offset_), frame, pauses_};
    }

  private:
    bool is_pause(std::int64_t time) const {
        const std::int64_t step = detail::difference(time, last_);
        if (-longest_step <= step && step <= longest_step) [[likely]]
            return false;
        return step < 0 || detail::longer(last_, time, longest_step);
    }

    std::int64_t last_ = INT64_MIN / 2;  // long ago
    std::int64_t offset_ = 0;            // between the recording's clock and this one
    std::uint32_t pauses_ = 0;           // the first one is that before the source was heard at all
};

/// More frames than a bus without a gap holds in two seconds. What has not been heard of for as many is over,
/// whatever the clock says.
constexpr std::uint64_t longest_absence = 4096;

/// As many may lie between two frames that have changed places.
constexpr std::uint64_t few_frames = 16;

/// Some recordings tell whole seconds only, and some no time at all.
inline bool whole_seconds(const Moment& a, const Moment& b) {
    return a.spoken % detail::second == 0 && b.spoken % detail::second == 0;
}

/// Whether the clock tells two moments apart.
inline bool clock_tells(const Moment& a, const Moment& b) {
    return a.spoken != b.spoken && !whole_seconds(a, b);
}

/// Whether something last heard of `then` has been silent for longer than `limit` now, while its source was
/// heard, or for too many frames. Times that run backwards tell nothing.
inline bool timed_out(const Moment& then, const Moment& now, std::int64_t limit) {
    return now.frame - then.frame > longest_absence || detail::longer(then.spoken, now.spoken, limit);
}

/// Which frames may belong to a message that was last heard of some time ago.
enum class Following {
    none,
    next,  ///< the one behind those that are there
    any,   ///< one that comes late, too
};

/// The same for a message last heard of `then`. Recordings that stall and clocks that are set go on where
/// they stopped, or else frames are missing, and those that follow may be another message's. The same holds
/// where many frames have come while the clock stood still.
inline Following following(const Moment& then, const Moment& now, std::int64_t limit) {
    if (timed_out(then, now, limit) || now.pauses - then.pauses > 1) return Following::none;
    const bool told = now.frame - then.frame <= few_frames || clock_tells(then, now);
    return now.pauses == then.pauses && told ? Following::any : Following::next;
}

/// Whether two frames are so close to each other that they may just have changed places.
inline bool adjacent(const Moment& then, const Moment& now) {
    constexpr std::int64_t most_time = 50 * milliseconds;
    if (now.frame - then.frame > few_frames) return false;
    const std::int64_t difference = detail::difference(now.spoken, then.spoken);
    return !clock_tells(then, now) || (-most_time <= difference && difference <= most_time);
}

}  // namespace vistel
