#include "commands/decode.h"

#include <unistd.h>

#include <algorithm>
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
    if (!selected) std::fprintf(stderr, "vistel: %s\n", selected.error().text.c_str());
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
    void start_at(const RecordTime& time);
    void print_statistics() const;

    const DecodeOptions& options_;
    core::UnitSelection units_;  // JSON and CSV are for programs, which do not know what somebody picked
    Reading reading_{options_.input, [this] { out_.flush(); }};
    Record record_;
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { show(msg, time); },
                             options_.definitions};
    Sink out_{STDOUT_FILENO};
    std::unique_ptr<MessageWriter> writer_;
    bool is_first_ = true;  // the next message is, of the input
    std::optional<RecordTime> start_;
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
        is_first_ = true;
        return;
    }
    writer_ = make_writer();
    writer_->begin(out_);
}

/// Time goes on from input to input where their clocks tell how; otherwise each has its own.
void Decoding::start_at(const RecordTime& time) {
    constexpr auto epoch = RecordTime::Origin::epoch;
    const bool goes_on =
        start_ && time.origin == epoch && start_->origin == epoch && time.nanoseconds >= start_->nanoseconds;
    if (!goes_on) start_ = time;
    is_first_ = false;
}

void Decoding::show(const N2KMsg& msg, const RecordTime& time) {
    if (is_first_) [[unlikely]]
        start_at(time);
    if (!allows(options_.pgns, msg.pgn) || !allows(options_.sources, msg.source)) return;
    const std::int64_t since_start = std::max<std::int64_t>(0, time.nanoseconds - start_->nanoseconds);
    const core::PgnDef* const row = core::find_definition(options_.definitions, msg);
    if (row == nullptr || row->pgn == 0) unknown_.count(msg.pgn, msg.source);
    ++shown_;
    const Inputs& inputs = reading_.inputs();
    const bool tells_bus =
        options_.bus || (inputs.has_several_buses() && options_.form != DecodeOptions::Form::csv);
    writer_->write(out_, {msg,
                          row,
                          {since_start, time.origin == RecordTime::Origin::epoch, time.nanoseconds},
                          tells_bus ? inputs.bus_label(record_.bus) : std::string_view{}});
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
    for (const auto& [name, counters] : reading_.inputs().links()) {
        if (reading_.inputs().links().size() > 1)
            std::fprintf(stderr, "source: %s\n", printable(name).c_str());
        print(*counters);
    }
    unknown_.print();
    print(reassembler_.losses());
}

int Decoding::run() {
    if (options_.form != DecodeOptions::Form::text) units_ = core::UnitSelection::si();
    if (!apply_units(units_, options_.units)) return EXIT_FAILED;
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
    if (options_.statistics || reading_.is_live()) print_statistics();
    return status;
}

}  // namespace

int run_decode(const DecodeOptions& options) {
    return std::make_unique<Decoding>(options)->run();
}

}  // namespace vistel
