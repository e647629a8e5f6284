#include "commands/decode.h"

#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>

#include "commands/interrupt.h"
#include "commands/losses.h"
#include "commands/output_status.h"
#include "commands/progress.h"
#include "commands/statistics.h"
#include "output/writers.h"
#include "readers/recording.h"
#include "reassembly/reassembler.h"
#include "sources/source.h"

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

/// One run over a recording.
class Decoding {
  public:
    explicit Decoding(const DecodeOptions& options)
        : options_(options), name_(options.file == "-" ? "standard input" : options.file) {}

    int run();

  private:
    std::unique_ptr<MessageWriter> make_writer();
    void show(const N2KMsg& msg, const RecordTime& time);
    /// False when the recording as a whole is meant: nothing more can come of it.
    bool report_problem();
    void print_statistics() const;

    const DecodeOptions& options_;
    const std::string name_;
    core::UnitSelection units_;  // JSON and CSV are for programs, which do not know what somebody picked
    Recording recording_;
    SourceState source_;
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { show(msg, time); },
                             options_.definitions};
    Sink out_{STDOUT_FILENO};
    std::unique_ptr<MessageWriter> writer_;
    std::optional<Progress> progress_;
    std::optional<RecordTime> start_;
    UnknownPgns unknown_;
    std::uint64_t shown_ = 0;
    std::uint64_t problems_ = 0;
};

std::unique_ptr<MessageWriter> Decoding::make_writer() {
    switch (options_.form) {
        case DecodeOptions::Form::json: return make_json_writer(units_);
        case DecodeOptions::Form::csv: return make_csv_writer(units_);
        default: return make_text_writer(units_, options_.plain_numbers);
    }
}

void Decoding::show(const N2KMsg& msg, const RecordTime& time) {
    if (!start_) start_ = time;
    if (!allows(options_.pgns, msg.pgn) || !allows(options_.sources, msg.source)) return;
    const std::int64_t since_start = std::max<std::int64_t>(0, time.nanoseconds - start_->nanoseconds);
    const core::PgnDef* const row = core::find_definition(options_.definitions, msg);
    if (row == nullptr || row->pgn == 0) unknown_.count(msg.pgn, msg.source);
    ++shown_;
    writer_->write(out_,
                   {msg, row, {since_start, time.origin == RecordTime::Origin::epoch, time.nanoseconds}});
}

bool Decoding::report_problem() {
    if (progress_) progress_->clear();
    const Problem& problem = recording_.problem();
    std::fprintf(stderr, "%s\n", described(problem, name_).c_str());
    if (problem.place == Problem::Place::whole) return false;
    ++problems_;
    return true;
}

void Decoding::print_statistics() const {
    const ReassemblyCounters& c = reassembler_.counters();
    const auto line = [](const char* what, std::uint64_t count) {
        std::fprintf(stderr, "%s: %" PRIu64 "\n", what, count);
    };
    std::fprintf(stderr, "format: %.*s\n", static_cast<int>(recording_.format_name().size()),
                 recording_.format_name().data());
    line("messages", c.messages);
    line("shown", shown_);
    line("frames", c.frames);
    line("errors", problems_);
    line("incomplete fast packets", c.incomplete_fast_packets);
    line("incomplete transport sessions", c.incomplete_transports);
    line("frames of no message", c.orphan_frames);
    line("repeated frames", c.repeated_frames);
    line("other than NMEA 2000", recording_.foreign_frames());
    if (source_.is_live()) print_link(*source_.counters);
    unknown_.print();
    print(reassembler_.losses());
}

int Decoding::run() {
    if (options_.form != DecodeOptions::Form::text) units_ = core::UnitSelection::si();
    if (!apply_units(units_, options_.units)) return EXIT_FAILED;
    RecordingOptions how;
    how.format = options_.format;
    how.contents = options_.contents;
    how.patience_ms = 250;  // a signal may come between the look at its flag and the wait
    how.before_wait = [this] { out_.flush(); };
    auto opened = open_source(recording_, options_.file, how, link_options(options_.live, name_, [this] {
                                  if (progress_) progress_->clear();
                              }));
    if (!opened) {
        std::fprintf(stderr, "vistel: %s: %s\n", name_.c_str(), opened.error().text.c_str());
        return EXIT_FAILED;
    }
    source_ = *opened;
    watch_interrupts();
    ignore_closed_pipes();
    progress_.emplace(recording_.bytes_total());
    writer_ = make_writer();
    writer_->begin(out_);

    Record record;
    bool more = true;
    bool readable = true;
    while (more && out_.is_open() && !interrupted()) {
        switch (recording_.next(record)) {
            case ReadResult::record:
                reassembler_.put(record);
                progress_->update(recording_.bytes_read());
                break;
            case ReadResult::problem: readable = report_problem() && readable; break;
            case ReadResult::nothing: break;
            case ReadResult::end: more = false; break;
        }
    }
    // Messages that the user broke off are not missing anything.
    if (!more) reassembler_.finish();
    out_.flush();
    progress_->clear();
    if (output_status(out_) != EXIT_CLEAN) return EXIT_FAILED;
    const int status = report_losses(problems_, reassembler_.counters());
    if (options_.statistics || source_.is_live()) print_statistics();
    if (!readable) return EXIT_FAILED;
    return source_.is_live() ? EXIT_CLEAN : status;  // ended by hand; what is lost on the way is told above
}

}  // namespace

int run_decode(const DecodeOptions& options) {
    return std::make_unique<Decoding>(options)->run();
}

}  // namespace vistel
