#include "monitor/player.h"

#include <algorithm>

#include "sources/source.h"

namespace vistel {

using namespace std::chrono_literals;

bool Player::open(std::string& error) {
    recording_ = std::make_unique<Recording>();
    RecordingOptions how;
    how.format = options_.format;
    how.patience_ms = 0;
    LinkOptions link;
    link.tell = [this](const std::string& text) { notice_ = text; };
    if (const auto opened = open_source(*recording_, options_.file, how, link); !opened) {
        error = opened.error().text;
        return false;
    }
    reassembler_ = std::make_unique<Reassembler>(
        [this](const N2KMsg& msg, const RecordTime& time) {
            constexpr std::int64_t time_stamp_unit = 10'000'000;  // nanoseconds
            const std::int64_t since_start =
                std::max<std::int64_t>(0, time.nanoseconds - start_->nanoseconds);
            N2KMsg stamped = msg;
            stamped.time_stamp = static_cast<std::uint32_t>(since_start / time_stamp_unit);
            ++counters_.messages;
            if (latest_->put(stamped)) ++counters_.replaced;
        },
        options_.definitions);
    return true;
}

bool Player::read_record() {
    while (!ended_ && !recording_->would_wait()) {
        switch (recording_->next(record_)) {
            case ReadResult::record: notice_.clear(); return true;
            case ReadResult::problem:
                ++counters_.problems;
                if (recording_->problem().place == Problem::Place::whole) ended_ = true;
                break;
            case ReadResult::nothing: break;
            case ReadResult::end: rewind(); return false;
        }
    }
    return false;
}

// At the end: from the start again, or over.
void Player::rewind() {
    reassembler_->finish();
    start_.reset();
    std::string error;
    if (!options_.loop || options_.file == "-" || counters_.messages == 0 || !open(error)) ended_ = true;
}

bool Player::is_due(const RecordTime& time) const {
    if (options_.speed <= 0 || time.origin == RecordTime::Origin::none) return true;
    const std::chrono::duration<double, std::nano> played = (Clock::now() - started_) * options_.speed;
    return static_cast<double>(time.nanoseconds - start_->nanoseconds) <= played.count();
}

void Player::advance(LatestMessages& latest) {
    if (paused_ || ended_) return;
    latest_ = &latest;
    // As fast as possible still leaves the window time to draw and to answer.
    const Clock::time_point until = Clock::now() + 25ms;
    for (unsigned count = 0; count % 256 != 255 || Clock::now() < until; ++count) {
        if (!has_record_ && !read_record()) return;
        has_record_ = true;
        if (!start_) {
            start_ = record_.time;
            started_ = Clock::now();
        }
        if (!is_due(record_.time)) return;
        reassembler_->put(record_);
        has_record_ = false;
    }
}

void Player::pause(bool paused) {
    if (paused == paused_) return;
    paused_ = paused;
    if (paused)
        paused_at_ = Clock::now();
    else
        started_ += Clock::now() - paused_at_;  // the recording's time stood still
}

}  // namespace vistel
