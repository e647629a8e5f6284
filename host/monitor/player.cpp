#include "monitor/player.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "network/stream_text.h"
#include "sources/source_name.h"
#include "text/path_of.h"
#include "text/printable.h"

namespace vistel {

using namespace std::chrono_literals;

namespace {

bool is_regular_file(const std::string& name) {
    std::error_code error;
    return std::filesystem::is_regular_file(path_of(name), error);
}

/// Whether a file is there, where a name is that of one. What is no regular file cannot be tried.
Status try_file(const std::string& name) {
    auto source = parse_source(name);
    if (!source) return source.error();
    std::error_code error;
    const bool is_special = std::filesystem::exists(path_of(name), error) && !is_regular_file(name);
    if (source->is_live() || name == "-" || is_special) return done;
    return Recording().open(name);
}

/// "can0: nothing received for 30.0 s" of "vistel: can0: nothing ..."
std::string_view without_program(std::string_view line) {
    constexpr std::string_view program = "vistel: ";
    return line.starts_with(program) ? line.substr(program.size()) : line;
}

}  // namespace

// What a live source says. It is over with the next record that comes when the source is well.
void Player::hear(std::string_view line) {
    const std::vector<std::string>& names = options_.input.names;
    const auto name =
        std::ranges::find_if(names, [line](const std::string& n) { return line.starts_with(n + ": "); });
    const std::size_t place = name != names.end() ? static_cast<std::size_t>(name - names.begin()) : 0;
    const std::string_view text = name != names.end() ? line.substr(name->size() + 2) : line;
    if (is_sending_)
        send_failure_ = names.size() > 1 ? line : text;
    else
        notices_[place] = names.size() > 1 ? line : text;
}

std::string Player::notice() const {
    std::string all;
    if (gap_ > 0 && clock_() < gap_told_until_) all = concat("nothing for ", age_text(gap_), ", skipped");
    for (const auto& [place, text] : notices_) all += (all.empty() ? "" : " · ") + text;
    return all;
}

Status Player::open() {
    const std::vector<std::string>& names = options_.input.names;
    for (const std::string& name : names)
        if (const Status there = try_file(name); !there)
            return failure(printable(name), ": ", there.error().text);
    const PlayTime present = now();  // 0 before the first recording
    options_.input.patience_ms = 0;
    Inputs::Hooks hooks;
    hooks.tell = [this](const std::string& line) { hear(without_program(line)); };
    auto before = std::exchange(inputs_, std::make_unique<Inputs>(options_.input, std::move(hooks)));
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
    begin(present);
    // Of a file the first record is read at once, which tells whether it is one.
    bool has_begun = false;
    while (!has_record_ && !ended_ && (!has_begun || inputs_->is_file()) && !inputs_->would_wait()) {
        const Inputs::Event event = inputs_->next(record_);
        has_begun = has_begun || event == Inputs::Event::begins;
        if (event == Inputs::Event::problem && inputs_->problem().place == Problem::Place::whole) {
            Failure why{
                std::string(without_program(described(inputs_->problem(), inputs_->recording_of_problem())))};
            inputs_ = std::move(before);
            return why;
        }
        if (event == Inputs::Event::end)
            ended_ = true;
        else
            note(event);
    }
    can_repeat_ = inputs_->is_file() && (names.size() == 1 || std::ranges::all_of(names, is_regular_file));
    return done;
}

PlayTime Player::now() const {
    if (!inputs_) return 0;
    const bool stands_still = paced_ && (paused_ || ended_);
    if (stands_still || (paced_ && speed() <= 0)) return base_;
    const std::chrono::duration<double, std::nano> passed = clock_() - since_;
    return base_ + static_cast<PlayTime>(passed.count() * (paced_ ? speed() : 1));
}

void Player::continue_at(PlayTime time) {
    base_ = time;
    since_ = clock_();
}

// What has begun plays from here on, in its own time.
void Player::begin(PlayTime present) {
    paced_ = inputs_->is_file() || (options_.speed.has_value() && inputs_->links().empty());
    start_.reset();
    times_.fill({});
    continue_at(present);
}

void Player::note(Inputs::Event event) {
    switch (event) {
        case Inputs::Event::begins:
            if (listener_ != nullptr) reassembler_->finish();
            begin(now());
            break;
        case Inputs::Event::record: note_record(); break;
        case Inputs::Event::problem:
            if (counters_.problems++ == 0)
                first_problem_ = described(inputs_->problem(), inputs_->recording_of_problem());
            has_failed_ = has_failed_ || inputs_->problem().place == Problem::Place::whole;
            break;
        case Inputs::Event::nothing: break;
        case Inputs::Event::end: rewind(); break;
    }
}

void Player::note_record() {
    has_record_ = true;
    while (buses_.size() < inputs_->bus_count())
        buses_.emplace_back(inputs_->bus_label(static_cast<std::uint8_t>(buses_.size())));
    if (!notices_.empty())
        std::erase_if(notices_, [this](const auto& notice) {
            const auto& links = inputs_->links();
            const auto link = std::ranges::find(links, options_.input.names[notice.first],
                                                [](const auto& l) { return l.name; });
            return link == links.end() || link->counters->is_well;
        });
    RecordTime& latest = times_[record_.bus];
    if (record_.time.origin == latest.origin && record_.time.nanoseconds < latest.nanoseconds)
        ++counters_.steps_back;
    latest = record_.time;
}

/// Whether there is one, read now or before.
bool Player::has_record() {
    while (!has_record_ && !ended_ && !inputs_->would_wait()) {
        const Inputs::Event event = inputs_->next(record_);
        note(event);
        if (event == Inputs::Event::end) return false;  // a round is over, whatever the next one begins with
    }
    return has_record_;
}

// At the end: from the start again, or over.
void Player::rewind() {
    if (listener_ != nullptr) reassembler_->finish();
    const PlayTime end = now();
    const bool again = options_.loop && can_repeat_ && counters_.messages > 0 && open();
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
    gap_ = record_played_ - present;
    gap_told_until_ = clock_() + 5s;
    continue_at(record_played_);
    return true;
}

Player::Clock::duration Player::until_due() const {
    if (!has_record_ || !paced_ || speed() <= 0) return {};
    const std::chrono::duration<double, std::nano> left(static_cast<double>(record_played_ - now()) /
                                                        speed());
    return std::max(std::chrono::ceil<Clock::duration>(left), Clock::duration{});
}

Result<bool> Player::send(const Record& frame) {
    if (inputs_->links().empty()) return Failure{"only a live source can be sent something"};
    is_sending_ = true;
    const bool sent = inputs_->send(frame);
    is_sending_ = false;
    if (!sent && !send_failure_.empty()) return Failure{std::exchange(send_failure_, {})};
    return sent;
}

LinkCounters Player::links() const {
    LinkCounters sum;
    for (const auto& [name, counters] : inputs_->links()) {
        sum.losses += counters->losses;
        sum.silences += counters->silences;
        sum.error_frames += counters->error_frames;
        sum.dropped += counters->dropped;
    }
    return sum;
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
        if (!has_record()) return;
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
    return static_cast<double>(inputs_->bytes_read()) / static_cast<double>(inputs_->bytes_total());
}

void Player::step(PlayListener& listener) {
    listener_ = &listener;
    for (const std::uint64_t before = counters_.messages; counters_.messages == before;) {
        if (!has_record()) return;
        if (!is_due()) continue_at(record_played_);
        hand_over();
    }
}

void Player::seek(double place, PlayListener& listener) {
    if (!can_seek()) return;
    const auto wanted =
        static_cast<std::uint64_t>(std::clamp(place, 0.0, 1.0) * static_cast<double>(inputs_->bytes_total()));
    if (wanted < inputs_->bytes_read()) {
        reassembler_->finish();
        if (!open()) ended_ = true;
    }
    listener_ = &listener;
    while (!ended_ && inputs_->bytes_read() < wanted) {
        if (!has_record()) break;
        if (!is_due()) continue_at(record_played_);
        hand_over();
    }
    continue_at(now());
}

}  // namespace vistel
