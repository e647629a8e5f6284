#pragma once

#include <cstdint>

#include "can/record.h"

namespace vistel {

/// Makes times of day go on rising over midnight.
class DayClock {
  public:
    void unroll(RecordTime& time) {
        if (time.origin != RecordTime::Origin::day) return;
        time.nanoseconds += midnight_;
        if (last_ - time.nanoseconds > most_disorder && midnight_ < last_midnight) {
            midnight_ += day;
            time.nanoseconds += day;
        } else if (midnight_ > 0 && time.nanoseconds - last_ > day - most_disorder) {
            time.nanoseconds -= day;  // a straggler from before the midnight just passed
            return;
        }
        last_ = time.nanoseconds;
    }

  private:
    static constexpr std::int64_t hour = 3'600'000'000'000;
    static constexpr std::int64_t day = 24 * hour;
    /// Clocks that are put back, for winter time or by their receiver, and records out of order stay within
    /// this. A time that falls by more is another day's, so that the trips of several days rise too.
    static constexpr std::int64_t most_disorder = 2 * hour;

    /// A century. A recording that pretends to be longer must not overflow.
    static constexpr std::int64_t last_midnight = 36525 * day;

    std::int64_t midnight_ = 0;
    std::int64_t last_ = 0;
};

}  // namespace vistel
