#include "monitor/player.h"

#include <algorithm>
#include <utility>

#include "sources/source.h"

namespace vistel {

using namespace std::chrono_literals;

Status Player::open() {
    auto recording = std::make_unique<Recording>();
    RecordingOptions how;
    how.format = options_.format;
    how.contents = options_.contents;
    how.patience_ms = 0;
    LinkOptions link;
    link.sends = options_.sends;
    link.tell = [this](const std::string& text) { notice_ = text; };
    auto opened = open_source(*recording, options_.file, how, link);
    if (!opened) return opened.error();
    const PlayTime present = now();  // 0 before the first recording
    recording_ = std::move(recording);
    send_ = opened->send;
    paced_ = recording_->is_file() || (options_.speed.has_value() && !opened->is_live());
    if (!reassembler_) {
        reassembler_ = std::make_unique<Reassembler>(
            [this](const N2KMsg& msg, const RecordTime& time) {
                ++counters_.messages;
                listener_->on_message(msg, time, record_.bus, record_played_);
            },
            options_.definitions);
        reassembler_->tell_lost(
            [this](std::uint8_t bus, std::uint8_t source) { listener_->on_lost(bus, source); });
    }
    has_record_ = ended_ = false;
    start_.reset();
    continue_at(present);
    return done;
}

PlayTime Player::now() const {
    if (!recording_) return 0;
    const bool stands_still = paced_ && (paused_ || ended_);
    if (stands_still || (paced_ && speed() <= 0)) return base_;
    const std::chrono::duration<double, std::nano> passed = clock_() - since_;
    return base_ + static_cast<PlayTime>(passed.count() * (paced_ ? speed() : 1));
}

void Player::continue_at(PlayTime time) {
    base_ = time;
    since_ = clock_();
}

bool Player::read_record() {
    while (!ended_ && !recording_->would_wait()) {
        switch (recording_->next(record_)) {
            case ReadResult::record: notice_.clear(); return true;
            case ReadResult::problem:
                if (counters_.problems++ == 0)
                    first_problem_ = described(recording_->problem(), options_.file);
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
    const PlayTime end = now();
    const bool again = options_.loop && recording_->is_file() && counters_.messages > 0 && open();
    ended_ = !again;
    continue_at(end);
}

/// Whether the record is to be played by now; says when it is played.
bool Player::is_due() {
    const PlayTime present = now();
    if (!paced_ || record_.time.origin == RecordTime::Origin::none) {
        record_played_ = present;
        return true;
    }
    if (!start_) {
        start_ = record_.time;
        start_played_ = latest_ = present;
    }
    record_played_ = start_played_ + (record_.time.nanoseconds - start_->nanoseconds);
    early_ = latest_ - record_played_ > longest_gap ? early_ + 1 : 0;
    if (early_ == most_early) {
        start_ = record_.time;
        start_played_ = record_played_ = latest_;
        early_ = 0;
    }
    latest_ = std::max(latest_, record_played_);
    if (record_played_ <= present) return true;
    if (speed() <= 0) {
        continue_at(record_played_);
        return true;
    }
    if (record_played_ - present <= longest_gap) return false;
    ++counters_.skipped_gaps;
    continue_at(record_played_);
    return true;
}

Player::Clock::duration Player::until_due() const {
    if (!has_record_ || !paced_ || speed() <= 0) return {};
    const std::chrono::duration<double, std::nano> left(static_cast<double>(record_played_ - now()) /
                                                        speed());
    return std::max(std::chrono::ceil<Clock::duration>(left), Clock::duration{});
}

void Player::hand_over() {
    reassembler_->put(record_);
    listener_->on_record(record_);
    has_record_ = false;
}

void Player::advance(PlayListener& listener) {
    if (ended_ || (paused_ && paced_)) return;
    listener_ = &listener;
    // As fast as possible still leaves a display time to draw and to answer.
    const Clock::time_point until = Clock::now() + 25ms;
    for (unsigned count = 0; count % 256 != 255 || Clock::now() < until; ++count) {
        if (!has_record_ && !read_record()) return;
        has_record_ = true;
        if (!is_due()) return;
        hand_over();
    }
}

void Player::pause(bool paused) {
    if (paused == paused_) return;
    const PlayTime present = now();
    paused_ = paused;
    continue_at(present);
}

void Player::set_speed(double speed) {
    const PlayTime present = now();
    options_.speed = speed;
    continue_at(present);
}

double Player::place() const {
    if (!can_seek()) return 0;
    return static_cast<double>(recording_->bytes_read()) / static_cast<double>(recording_->bytes_total());
}

void Player::step(PlayListener& listener) {
    listener_ = &listener;
    for (const std::uint64_t before = counters_.messages; counters_.messages == before;) {
        if (!has_record_ && !read_record()) return;
        has_record_ = true;
        if (!is_due()) continue_at(record_played_);
        hand_over();
    }
}

void Player::seek(double place, PlayListener& listener) {
    if (!can_seek()) return;
    const auto wanted = static_cast<std::uint64_t>(std::clamp(place, 0.0, 1.0) *
                                                   static_cast<double>(recording_->bytes_total()));
    if (wanted < recording_->bytes_read()) {
        reassembler_->finish();
        if (!open()) ended_ = true;
    }
    listener_ = &listener;
    const bool loop = std::exchange(options_.loop, false);
    while (!ended_ && recording_->bytes_read() < wanted) {
        if (!has_record_ && !read_record()) break;
        has_record_ = true;
        if (!is_due()) continue_at(record_played_);
        hand_over();
    }
    options_.loop = loop;
    continue_at(now());
}

}  // namespace vistel
