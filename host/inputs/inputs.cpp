#include "inputs/inputs.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <utility>

#include "sources/source_name.h"
#include "text/path_of.h"
#include "text/printable.h"
#include "text/words.h"

namespace vistel {

namespace {

using Origin = RecordTime::Origin;

/// The bytes of several files; 0 where that is not known of one of them.
std::uint64_t size_of(const std::vector<std::string>& names) {
    std::uint64_t sum = 0;
    for (const std::string& name : names) {
        std::error_code error;
        const std::filesystem::path file = path_of(name);
        if (!std::filesystem::exists(file, error)) continue;
        if (!std::filesystem::is_regular_file(file, error)) return 0;
        const std::uintmax_t size = std::filesystem::file_size(file, error);
        if (!error) sum += size;
    }
    return sum;
}

std::string_view kind_of_times(Origin origin) {
    switch (origin) {
        case Origin::none: return "no times";
        case Origin::start: return "times since a start of its own";
        case Origin::day: return "times of day";
        case Origin::epoch: break;
    }
    return "dates and times";
}

/// A name as outputs may show it: well-formed UTF-8 without control characters.
std::string shown(std::string_view name) {
    return printable(harmless(name));
}

/// Between two looks at what is due with links.
constexpr std::chrono::milliseconds slice{100};

bool is_live(const std::string& name) {
    auto source = parse_source(name);
    return source && source->is_live();
}

/// Live sources never end and stand behind recordings. What they bring is in order by itself.
InputOptions in_order(InputOptions options) {
    if (std::ranges::all_of(options.names, is_live)) options.merge = false;
    if (!options.merge)
        std::stable_partition(options.names.begin(), options.names.end(), std::not_fn(is_live));
    return options;
}

}  // namespace

Inputs::Inputs(const InputOptions& options, Hooks hooks)
    : options_(in_order(options)), hooks_(std::move(hooks)), first_beside_(options_.names.size()) {
    const auto live = options_.merge ? options_.names.end() : std::ranges::find_if(options_.names, is_live);
    if (options_.names.end() - live > 1)
        first_beside_ = static_cast<std::size_t>(live - options_.names.begin());
    how_.format = options_.format;
    how_.contents = options_.contents;
    how_.patience_ms = options_.patience_ms;  // a signal may come between the look at its flag and the wait
    how_.before_wait = hooks_.before_wait;
    for (const std::string& name : options_.names)
        names_.push_back(name == "-" ? "standard input" : harmless(name));
}

/// Behind the last result of the current input, which is no record.
Inputs::Event Inputs::go_on(ReadResult result) {
    if (result == ReadResult::nothing) return Event::nothing;
    if (result == ReadResult::problem) return pass_problem(*current_);
    close(*current_);
    current_ = nullptr;
    open_.clear();
    return begin_next();
}

bool Inputs::is_file() const {
    return std::ranges::all_of(open_, [](const auto& input) { return input->recording.is_file(); });
}

bool Inputs::is_left_unknown() {
    for (const auto& input : open_) {
        if (!input->recording.is_left_unknown()) continue;
        (void)pass_problem(*input);
        return true;
    }
    return false;
}

bool Inputs::would_wait() {
    if (current_ != nullptr) return current_->recording.would_wait();
    if (is_beside_)
        return std::ranges::all_of(open_, [](const auto& input) { return input->recording.would_wait(); });
    if (!options_.merge) return false;
    return opened_ == names_.size() && std::ranges::any_of(open_, [](const auto& input) {
               return !input->has_record && input->recording.would_wait();
           });
}

// ---- opening and closing ----

bool Inputs::open_next() {
    auto input = std::make_unique<Input>(opened_++);
    LinkOptions link;
    RecordingOptions how = how_;
    if (input->place >= first_beside_) {
        if (!loop_) loop_ = std::make_shared<EventLoop>();
        link.loop = loop_;
        how.patience_ms = 0;
    }
    link.silence = std::chrono::milliseconds(static_cast<std::int64_t>(options_.timeout * 1000));
    link.sends = options_.sends;
    link.tell = [this, place = input->place](const std::string& text) {
        if (hooks_.tell) hooks_.tell(concat("vistel: ", names_[place], ": ", text));
    };
    auto opened = open_source(input->recording, options_.names[input->place], how, link);
    if (!opened) {
        fail(input->place, opened.error().text);
        return false;
    }
    if (opened->is_live()) links_.push_back({names_[input->place], opened->counters});
    if (!any_open_)
        bytes_total_ = names_.size() == 1 ? input->recording.bytes_total() : size_of(options_.names);
    any_open_ = true;
    input->is_live = opened->is_live();
    input->send = opened->send;
    open_.push_back(std::move(input));
    return true;
}

Inputs::Event Inputs::begin_next() {
    if (opened_ < names_.size()) {
        if (!open_next()) return Event::problem;
        if (opened_ > first_beside_) return Event::nothing;
        current_ = open_.front().get();
        return Event::begins;
    }
    if (open_.empty()) return Event::end;
    is_beside_ = true;
    return Event::begins;
}

Inputs::Event Inputs::next_of_several(Record& record) {
    if (options_.merge) return next_merged(record);
    return is_beside_ ? next_beside(record) : begin_next();
}

void Inputs::note_format(std::vector<std::string_view>& formats, const Recording& recording) {
    const std::string_view name = recording.format_name();
    if (!name.empty() && std::ranges::find(formats, name) == formats.end()) formats.push_back(name);
}

void Inputs::close(const Input& input) {
    bytes_read_ += input.recording.bytes_read();
    foreign_frames_ += input.recording.foreign_frames();
    dropped_frames_ += input.recording.dropped_frames();
    note_format(formats_, input.recording);
    const Recording& recording = input.recording;
    if (input.is_live) return;
    if (recording.is_empty_file()) in_vain_.push_back({names_[input.place], {}});
    if (recording.is_none_of_its_format()) in_vain_.push_back({names_[input.place], recording.format_name()});
}

void Inputs::fail(std::size_t place, std::string text) {
    failure_.put_at_whole();
    failure_.text = std::move(text);
    problem_ = &failure_;
    problem_place_ = place;
}

Inputs::Event Inputs::pass_problem(const Input& input) {
    problem_ = &input.recording.problem();
    problem_place_ = input.place;
    return Event::problem;
}

// ---- side by side ----

/// Each gives what it has, up to so many records, and when none has any, the loop is waited in.
Inputs::Event Inputs::next_beside(Record& record) {
    constexpr unsigned most_in_turn = 64;
    for (std::size_t idle = 0; idle < open_.size();) {
        if (turn_ >= open_.size()) turn_ = 0;
        Input& input = *open_[turn_];
        const bool had_its_turn = in_turn_ == most_in_turn;
        if (had_its_turn || input.recording.would_wait()) {
            if (!had_its_turn) ++idle;
            ++turn_;
            in_turn_ = 0;
            continue;
        }
        ++in_turn_;
        switch (input.recording.next(input.ahead)) {
            case ReadResult::record:
                record = input.ahead;
                record.bus = bus_of(input, record.bus);
                return Event::record;
            case ReadResult::problem: return pass_problem(input);
            case ReadResult::nothing: return Event::nothing;
            case ReadResult::end:
                close(input);
                open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(turn_));
                return Event::nothing;
        }
    }
    if (open_.empty()) return Event::end;
    if (hooks_.before_wait) hooks_.before_wait();
    loop_->run_one(std::min(slice, std::chrono::milliseconds(options_.patience_ms)));
    return Event::nothing;
}

// ---- merged by time ----

Inputs::Event Inputs::next_merged(Record& record) {
    if (is_refused_) return Event::end;
    if (opened_ < names_.size()) return open_next() ? Event::nothing : Event::problem;
    // The earliest is known when each has a record or has ended.
    for (auto each = open_.begin(); each != open_.end();) {
        Input& input = **each;
        if (!input.has_record) switch (input.recording.next(input.ahead)) {
                case ReadResult::record: input.has_record = true; break;
                case ReadResult::problem: return pass_problem(input);
                case ReadResult::nothing: return Event::nothing;
                case ReadResult::end:
                    close(input);
                    each = open_.erase(each);
                    continue;
            }
        if (begun_ && input.ahead.time.origin == origin_) input.time = input.ahead.time.nanoseconds;
        ++each;
    }
    if (!begun_) return begin_merged();
    const auto earliest = std::ranges::min_element(open_, {}, [](const auto& input) { return input->time; });
    if (earliest == open_.end()) return Event::end;
    Input& input = **earliest;
    record = input.ahead;
    record.bus = bus_of(input, record.bus);
    input.has_record = false;
    return Event::record;
}

/// All have shown their first record.
Inputs::Event Inputs::begin_merged() {
    if (!open_.empty()) origin_ = open_.front()->ahead.time.origin;
    for (const auto& input : open_) {
        const Origin origin = input->ahead.time.origin;
        const bool is_shared = origin == Origin::epoch || origin == Origin::day;
        if (open_.size() == 1 || (is_shared && origin == origin_)) continue;
        is_refused_ = true;
        std::string text = concat("cannot be merged by time: it has ", kind_of_times(origin));
        if (is_shared) text += concat(", ", names_[open_.front()->place], " ", kind_of_times(origin_));
        fail(input->place, std::move(text));
        return Event::problem;
    }
    begun_ = true;
    return any_open_ ? Event::begins : Event::end;
}

// ---- buses ----

std::uint8_t Inputs::add_bus(const Input& input, std::uint8_t number) {
    const std::string name = shown(input.recording.bus_name(number));
    Bus bus{name.empty() ? std::to_string(number) : name, !name.empty()};
    if ((options_.merge && names_.size() > 1) || input.place >= first_beside_) {
        const std::string file = shown(names_[input.place]);
        const bool is_file_enough = name.empty() && number == 0;
        bus = {is_file_enough ? file : concat(file, ":", bus.label), true};
    } else if (const auto same = std::ranges::find(buses_, bus.label, &Bus::label); same != buses_.end()) {
        return static_cast<std::uint8_t>(same - buses_.begin());
    }
    constexpr std::size_t most = 256;
    if (buses_.size() < most) buses_.push_back(std::move(bus));
    return static_cast<std::uint8_t>(buses_.size() - 1);
}

// ---- the way back ----

bool Inputs::send(Record frame) {
    for (const auto& input : open_) {
        const auto bus = std::ranges::find(input->buses, std::int16_t{frame.bus});
        if (bus == input->buses.end() || !input->send) continue;
        frame.bus = static_cast<std::uint8_t>(bus - input->buses.begin());
        auto sent = input->send(frame);
        if (sent) return *sent;
        if (hooks_.tell) hooks_.tell(concat("vistel: ", names_[input->place], ": ", sent.error().text));
        input->send = {};
    }
    return false;
}

// ---- what came of them ----

std::string Inputs::unread_place() {
    for (const auto& input : open_)
        if (!input->is_live && !input->recording.would_wait())
            return concat("at byte ", input->recording.bytes_read(), " of ", names_[input->place]);
    return open_.empty() && opened_ < names_.size() ? "before " + names_[opened_] : "";
}

std::uint64_t Inputs::bytes_read() const {
    std::uint64_t sum = bytes_read_;
    for (const auto& input : open_) sum += input->recording.bytes_read();
    return sum;
}

std::uint64_t Inputs::foreign_frames() const {
    std::uint64_t sum = foreign_frames_;
    for (const auto& input : open_) sum += input->recording.foreign_frames();
    return sum;
}

std::uint64_t Inputs::dropped_frames() const {
    std::uint64_t sum = dropped_frames_;
    for (const auto& input : open_) sum += input->recording.dropped_frames();
    return sum;
}

std::string Inputs::format_names() const {
    std::vector<std::string_view> formats = formats_;
    for (const auto& input : open_) note_format(formats, input->recording);
    std::string names;
    for (const std::string_view name : formats) names.append(names.empty() ? "" : ", ").append(name);
    return names;
}

}  // namespace vistel
