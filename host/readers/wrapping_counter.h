#pragma once

#include <cstdint>

namespace vistel {

/// Makes the counts of a clock go on rising that begins again at 0 after `period`. A count that falls by no
/// more than `most_disorder` is out of order, one that falls by more is of the next round: a pause of a
/// period or longer cannot be seen.
class WrappingCounter {
  public:
    constexpr WrappingCounter(std::int64_t period, std::int64_t most_disorder)
        : period_(period), most_disorder_(most_disorder) {}

    /// `count` is from 0 to below the period. The first count stays what it is.
    constexpr std::int64_t unroll(std::int64_t count) {
        if (!begun_) last_ = count;
        begun_ = true;
        std::int64_t step = (count - last_) % period_;
        if (step < 0) step += period_;
        if (step > 0 && period_ - step <= most_disorder_) step -= period_;
        last_ += step;
        return last_;
    }

  private:
    std::int64_t period_, most_disorder_;
    std::int64_t last_ = 0;
    bool begun_ = false;
};

}  // namespace vistel
