#include "commands/devices.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <utility>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/reading.h"
#include "network/questions.h"
#include "output/sink.h"
#include "reassembly/reassembler.h"

namespace vistel {

namespace {

using namespace std::chrono_literals;

constexpr auto rate_period = 10s;  // rates are those of one to two of them

constexpr auto definitions = pgn_vistel::core::Definitions::corrected;

std::int64_t nanoseconds(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

/// One run over recordings or a live source.
class Watching {
  public:
    explicit Watching(const DevicesOptions& options) : options_(options) {
        reassembler_.tell_lost(
            [this](std::uint8_t bus, std::uint8_t source) { networks_[bus].count_lost(source, 1); });
    }

    int run();

  private:
    using Clock = std::chrono::steady_clock;

    void begin();
    void take();
    void refresh();
    void print();

    const DevicesOptions& options_;
    Reading reading_{options_.input};
    Record record_;
    bool has_begun_ = false;
    std::map<std::uint8_t, Network> networks_;  // by the number of the bus
    Network* network_ = nullptr;                // of the record at hand
    Reassembler reassembler_{[this](const N2KMsg& msg, const RecordTime& time) { network_->put(msg, time); },
                             definitions};
    BusQuestions questions_{[this](std::uint8_t bus, const N2KMsg& frame) {
        Record question{.kind = record_.kind, .bus = bus, .msg = frame, .time = {}};
        return reading_.send(question);
    }};
    Sink out_{STDOUT_FILENO};
    Clock::duration period_{};  // of printing, 0 for once
    Clock::time_point next_, next_turn_;
    bool clears_screen_ = false;
};

/// Another input begins.
void Watching::begin() {
    if (std::exchange(has_begun_, true)) return reassembler_.finish();
    const bool is_live = reading_.inputs().bytes_total() == 0;
    const bool is_shown = options_.form == TableForm::text && isatty(STDOUT_FILENO) != 0;
    if (is_live) {
        const double seconds = options_.every >= 0 ? options_.every : is_shown ? 1 : 0;
        period_ = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
        clears_screen_ = is_shown && period_ > Clock::duration::zero();
    }
    next_ = Clock::now() + period_;
    next_turn_ = Clock::now() + rate_period;
    out_.put(device_header(options_.form, options_.by_pgn));
}

void Watching::take() {
    network_ = &networks_[record_.bus];
    reassembler_.put(record_);
    network_->count_wire(record_, definitions);
}

void Watching::print() {
    if (clears_screen_) out_.put("\033[H\033[J");
    for (const auto& [number, network] : networks_) {
        const Inputs& inputs = reading_.inputs();
        const std::string bus(networks_.size() > 1 ? inputs.bus_label(number) : inputs.bus_name(number));
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
    using Event = Reading::Event;
    for (bool more = true; more && out_.is_open() && !interrupted();) {
        switch (reading_.next(record_)) {
            case Event::begins: begin(); break;
            case Event::record: take(); break;
            case Event::problem:
            case Event::nothing: break;
            case Event::end:
                reassembler_.finish();  // what the user breaks off is not missing anything
                more = false;
                break;
        }
        if (options_.input.sends && reading_.is_live())
            questions_.advance(networks_, nanoseconds(Clock::now()));
        refresh();
    }
    if (!reading_.has_begun()) return EXIT_FAILED;
    if (options_.input.sends && !reading_.is_live() && !reading_.is_quiet())
        std::fputs("vistel: nobody can be asked: that needs a live source\n", stderr);
    reading_.clear_progress();
    print();
    if (output_status(out_) != EXIT_CLEAN) return EXIT_FAILED;
    return reading_.finish(reassembler_.counters());
}

}  // namespace

int run_devices(const DevicesOptions& options) {
    return std::make_unique<Watching>(options)->run();
}

}  // namespace vistel
