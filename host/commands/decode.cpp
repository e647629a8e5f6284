#include "commands/decode.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>

#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/reading.h"
#include "commands/statistics.h"
#include "output/writers.h"
#include "reassembly/reassembler.h"
#include "text/printable.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;

bool allows(const std::vector<std::uint32_t>& wanted, std::uint32_t value) {
    return wanted.empty() || std::ranges::find(wanted, value) != wanted.end();
}

bool apply_units(core::UnitSelection& units, const UnitOptions& options) {
    const Status selected = select_units(units, options);
    if (!selected) std::fprintf(stderr, "vistel: %s\n", harmless(selected.error().text).c_str());
    return static_cast<bool>(selected);
}

/// One run over recordings.
class Decoding {
  public:
    explicit Decoding(const DecodeOptions& options) : options_(options) {}

    int run();

  private:
    std::unique_ptr<MessageWriter> make_writer();
    void begin();
    void show(const N2KMsg& msg, const RecordTime& time);
    core::MessageTime shown_time(const RecordTime& time);
    void print_statistics() const;

    const DecodeOptions& options_;
    core::UnitSelection units_;  // JSON and CSV are for programs, which do not know what somebody picked
    Reading reading_{options_.input, [this] { out_.flush(); }};
    Record record_;
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { show(msg, time); },
                             options_.definitions};
    Sink out_{STDOUT_FILENO};
    std::unique_ptr<MessageWriter> writer_;
    /// Times of one origin tell nothing of those of another.
    struct Clock {
        bool has_begun = false;
        std::int64_t start = 0;
        std::int64_t latest = 0;  // what the last message had
    };
    void start_at(const RecordTime& time);

    std::array<Clock, 4> clocks_;               // by the origin, of the input
    std::optional<std::int64_t> shared_start_;  // since 1970, of inputs that follow one another
    std::uint64_t steps_back_ = 0;
    UnknownPgns unknown_;
    std::uint64_t shown_ = 0;
};

std::unique_ptr<MessageWriter> Decoding::make_writer() {
    switch (options_.form) {
        case DecodeOptions::Form::json: return make_json_writer(units_);
        case DecodeOptions::Form::csv: return make_csv_writer(units_, options_.bus);
        default: return make_text_writer(units_, options_.plain_numbers);
    }
}

/// Another input begins.
void Decoding::begin() {
    if (writer_) {
        reassembler_.finish();
        clocks_ = {};
        return;
    }
    writer_ = make_writer();
    writer_->begin(out_);
}

/// Time goes on from input to input where their clocks tell how; otherwise each has its own.
void Decoding::start_at(const RecordTime& time) {
    if (time.origin != RecordTime::Origin::epoch)
        shared_start_.reset();
    else if (!shared_start_ || time.nanoseconds < *shared_start_)
        shared_start_ = time.nanoseconds;
    clocks_[static_cast<std::size_t>(time.origin)] = {true, shared_start_.value_or(time.nanoseconds),
                                                      time.nanoseconds};
}

core::MessageTime Decoding::shown_time(const RecordTime& time) {
    if (time.origin == RecordTime::Origin::none) return {.is_known = false};
    Clock& clock = clocks_[static_cast<std::size_t>(time.origin)];
    if (!clock.has_begun) [[unlikely]]
        start_at(time);
    if (time.nanoseconds < clock.latest) ++steps_back_;
    clock.latest = time.nanoseconds;
    const auto since_start =  // times come from outside and may lie as far apart as they can
        static_cast<std::uint64_t>(time.nanoseconds) - static_cast<std::uint64_t>(clock.start);
    return {static_cast<std::int64_t>(since_start), time.origin == RecordTime::Origin::epoch,
            time.nanoseconds};
}

void Decoding::show(const N2KMsg& msg, const RecordTime& time) {
    const core::MessageTime shown_as = shown_time(time);
    if (!allows(options_.pgns, msg.pgn) || !allows(options_.sources, msg.source)) return;
    const core::PgnDef* const row = core::find_definition(options_.definitions, msg);
    if (row == nullptr || row->pgn == 0) unknown_.count(msg.pgn, msg.source);
    ++shown_;
    const Inputs& inputs = reading_.inputs();
    const bool tells_bus =
        options_.bus || (inputs.has_several_buses() && options_.form != DecodeOptions::Form::csv);
    writer_->write(out_,
                   {msg, row, shown_as, tells_bus ? inputs.bus_label(record_.bus) : std::string_view{}});
}

void Decoding::print_statistics() const {
    const ReassemblyCounters& c = reassembler_.counters();
    const auto line = [](const char* what, std::uint64_t count) {
        std::fprintf(stderr, "%s: %" PRIu64 "\n", what, count);
    };
    std::fprintf(stderr, "format: %s\n", reading_.inputs().format_names().c_str());
    line("messages", c.messages);
    line("shown", shown_);
    line("frames", c.frames);
    line("errors", reading_.problems());
    line("incomplete fast packets", c.incomplete_fast_packets);
    line("incomplete transport sessions", c.incomplete_transports);
    line("frames of no message", c.orphan_frames);
    line("repeated frames", c.repeated_frames);
    line("other than NMEA 2000", reading_.inputs().foreign_frames());
    line("time stamps earlier than the one before", steps_back_);
    line("frames dropped by the recorder", reading_.inputs().dropped_frames());
    for (const auto& [name, counters] : reading_.inputs().links()) {
        if (reading_.inputs().links().size() > 1)
            std::fprintf(stderr, "source: %s\n", harmless(name).c_str());
        print(*counters);
    }
    unknown_.print();
    print(reassembler_.losses());
}

int Decoding::run() {
    UnitOptions units = options_.units;
    if (options_.form != DecodeOptions::Form::text) {
        units_ = core::UnitSelection::si();
        units.drop_usual();
    }
    if (!apply_units(units_, units)) return EXIT_FAILED;
    using Event = Reading::Event;
    for (bool more = true; more && out_.is_open() && !interrupted();) {
        switch (reading_.next(record_)) {
            case Event::begins: begin(); break;
            case Event::record: reassembler_.put(record_); break;
            case Event::problem:
            case Event::nothing: break;
            case Event::end:
                reassembler_.finish();  // what the user breaks off is not missing anything
                more = false;
                break;
        }
    }
    if (!reading_.has_begun()) return EXIT_FAILED;
    out_.flush();
    reading_.clear_progress();
    if (output_status(out_) != EXIT_CLEAN) return EXIT_FAILED;
    const int status = reading_.finish(reassembler_.counters());
    if (options_.statistics || (reading_.is_live() && !reading_.is_quiet())) print_statistics();
    return status;
}

}  // namespace

int run_decode(const DecodeOptions& options) {
    return std::make_unique<Decoding>(options)->run();
}

}  // namespace vistel
