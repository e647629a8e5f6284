#include "sources/link_watch.h"

#include <algorithm>

#include "text/words.h"

namespace vistel {
namespace {

using std::chrono::milliseconds;

milliseconds in_milliseconds(LinkWatch::Clock::duration duration) {
    return std::chrono::duration_cast<milliseconds>(duration);
}

/// "3.2 s"
std::string in_seconds(milliseconds duration) {
    const auto tenths = static_cast<std::uint64_t>(std::max<std::int64_t>(0, duration.count())) / 100;
    return concat(tenths / 10, ".", tenths % 10, " s");
}

}  // namespace

void LinkWatch::opened(Time now) {
    is_open_ = true;
    heard_ = now;
    if (!silence_told_) silent_since_ = now;
}

void LinkWatch::traffic(Time now) {
    if (is_lost_) {
        const milliseconds without = in_milliseconds(now - lost_at_);
        counters_->without += without;
        tell(concat("receiving again after ", in_seconds(without)));
    } else if (silence_told_) {
        tell(concat("receiving again after ", in_seconds(in_milliseconds(now - silent_since_)),
                    " of silence"));
    }
    is_lost_ = silence_told_ = absence_told_ = false;
    counters_->is_well = true;
    pause_ = milliseconds{};
    heard_ = silent_since_ = now;
}

void LinkWatch::lost(Time now, const std::string& reason) {
    reason_ = reason;
    if (!is_lost_) {
        ++counters_->losses;
        lost_at_ = now;
        tell(concat("connection lost: ", reason, "; trying again"));
    }
    is_lost_ = true;
    counters_->is_well = false;
    is_open_ = silence_told_ = false;
    // A link that is made again and brings nothing is no better than none: the pause goes on growing.
    retry_at_ = now + pause_;
    pause_ = std::min(std::max(pause_ * 2, options_.first_pause), options_.longest_pause);
}

void LinkWatch::dropped(Time now, std::uint64_t total, std::string_view what) {
    constexpr std::chrono::seconds between{10};
    counters_->dropped = total;
    if (total == told_dropped_ || (told_dropped_ > 0 && now - dropped_told_at_ < between)) return;
    tell(concat(what, " that the system dropped, because they were not read in time: ", total));
    told_dropped_ = total;
    dropped_told_at_ = now;
}

/// Once, when there was time enough to know it.
void LinkWatch::look_at_format(Time now) {
    if (is_format_looked_at_ || !came_since_ || now - *came_since_ < options_.silence) return;
    is_format_looked_at_ = true;
    if (options_.is_understood && !options_.is_understood())
        tell(concat(counters_->bytes, " bytes received that are none of the known formats", doubt_));
}

void LinkWatch::elapsed(Time now, std::string_view state) {
    if (options_.silence.count() <= 0) return;
    look_at_format(now);
    if (!is_open_) {
        if (!is_lost_ || absence_told_ || now - lost_at_ < options_.silence) return;
        absence_told_ = true;
        tell(concat("not connected for ", in_seconds(in_milliseconds(now - lost_at_)), ": ", reason_));
    } else if (!silence_told_ && now - heard_ >= options_.silence) {
        silence_told_ = true;
        counters_->is_well = false;
        ++counters_->silences;
        tell(concat(connected_, ", nothing received for ", in_seconds(in_milliseconds(now - heard_)),
                    state.empty() ? "" : "; ", state));
    }
}

}  // namespace vistel
