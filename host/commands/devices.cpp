#include "commands/devices.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/losses.h"
#include "commands/output_status.h"
#include "commands/progress.h"
#include "output/sink.h"
#include "readers/recording.h"
#include "reassembly/reassembler.h"
#include "sources/source.h"

namespace vistel {

namespace {

using namespace std::chrono_literals;

constexpr auto rate_period = 10s;  // rates are those of one to two of them

constexpr auto definitions = pgn_vistel::core::Definitions::corrected;

/// One run over a recording or live source.
class Watching {
  public:
    explicit Watching(const DevicesOptions& options)
        : options_(options), name_(options.file == "-" ? "standard input" : options.file) {}

    int run();

  private:
    using Clock = std::chrono::steady_clock;

    void take(const Record& record);
    bool report_problem();
    void refresh();
    void print();

    const DevicesOptions& options_;
    const std::string name_;
    Recording recording_;
    std::map<std::uint8_t, Network> networks_;  // by the bus that records name
    Network* network_ = nullptr;                // of the record at hand
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { network_->put(msg, time); },
                             definitions};
    Sink out_{STDOUT_FILENO};
    Clock::duration period_{};  // of printing, 0 for once
    Clock::time_point next_, next_turn_;
    bool clears_screen_ = false;
    std::uint64_t problems_ = 0;
};

void Watching::take(const Record& record) {
    network_ = &networks_[record.bus];
    reassembler_.put(record);
    network_->count_wire(record, definitions);
}

bool Watching::report_problem() {
    const Problem& problem = recording_.problem();
    std::fprintf(stderr, "%s\n", described(problem, name_).c_str());
    ++problems_;
    return problem.place != Problem::Place::whole;
}

void Watching::print() {
    if (clears_screen_) out_.put("\033[H\033[J");
    for (const auto& [number, network] : networks_) {
        std::string bus(recording_.bus_name(number));
        if (bus.empty() && networks_.size() > 1) bus = std::to_string(number);
        if (options_.form == TableForm::text && networks_.size() > 1) out_.put("Bus " + bus + "\n");
        out_.put(device_table(network, bus, options_.form, options_.by_pgn));
    }
    out_.flush();
}

void Watching::refresh() {
    if (period_ == Clock::duration::zero() || Clock::now() < next_) return;
    next_ = Clock::now() + period_;
    print();
    if (next_ < next_turn_) return;
    next_turn_ = next_ + rate_period;
    for (auto& [bus, network] : networks_) network.turn();
}

int Watching::run() {
    RecordingOptions how;
    how.format = options_.format;
    how.contents = options_.contents;
    how.patience_ms = 250;  // a signal may come between the look at its flag and the wait
    auto source = open_source(recording_, options_.file, how, link_options(options_.live, name_));
    if (!source) {
        std::fprintf(stderr, "vistel: %s: %s\n", name_.c_str(), source.error().text.c_str());
        return EXIT_FAILED;
    }
    watch_interrupts();
    ignore_closed_pipes();
    const bool is_live = recording_.bytes_total() == 0;
    const bool is_shown = options_.form == TableForm::text && isatty(STDOUT_FILENO) != 0;
    if (is_live) {
        const double seconds = options_.every >= 0 ? options_.every : is_shown ? 1 : 0;
        period_ = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
        clears_screen_ = is_shown && period_ > Clock::duration::zero();
    }
    next_ = Clock::now() + period_;
    next_turn_ = Clock::now() + rate_period;
    out_.put(device_header(options_.form, options_.by_pgn));
    Progress progress(recording_.bytes_total());
    Record record;
    bool more = true;
    bool readable = true;
    while (more && out_.is_open() && !interrupted()) {
        switch (recording_.next(record)) {
            case ReadResult::record: take(record); break;
            case ReadResult::problem:
                progress.clear();
                readable = report_problem() && readable;
                break;
            case ReadResult::nothing: break;
            case ReadResult::end: more = false; break;
        }
        progress.update(recording_.bytes_read());
        refresh();
    }
    // Messages that the user broke off are not missing anything.
    if (!more) reassembler_.finish();
    progress.clear();
    print();
    if (output_status(out_) != EXIT_CLEAN) return EXIT_FAILED;
    const int status = report_losses(problems_, reassembler_.counters());
    if (!readable) return EXIT_FAILED;
    return source->is_live() ? EXIT_CLEAN : status;  // ended by hand; what is lost on the way is told above
}

}  // namespace

int run_devices(const DevicesOptions& options) {
    return std::make_unique<Watching>(options)->run();
}

}  // namespace vistel
