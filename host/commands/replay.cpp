#include "commands/replay.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <memory>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/losses.h"
#include "monitor/player.h"
#include "sources/outlet.h"
#include "text/printable.h"
#include "text/words.h"
#include "writers/converter.h"
#include "writers/written_formats.h"

namespace vistel {

namespace {

using namespace std::chrono_literals;

/// Gives an outlet what a format makes of records, each by itself.
class OutletWriter final : public RecordWriter {
  public:
    OutletWriter(const std::string& format, Outlet& outlet) : writer_(make_writer(format)), outlet_(outlet) {}

    bool takes(Record::Kind kind) const override { return writer_->takes(kind); }
    void begin(Record::Kind kind, std::string&) override {
        writer_->begin(kind, bytes_);
        outlet_.begin(bytes_);
        bytes_.clear();
    }
    RecordTime::Origin origin_written(const RecordTime& time) const override {
        return writer_->origin_written(time);
    }
    const char* put(const Record& record, std::string&) override {
        const char* const why = writer_->put(record, bytes_);
        if (why == nullptr) outlet_.put(bytes_);
        bytes_.clear();
        return why;
    }

  private:
    std::unique_ptr<RecordWriter> writer_;
    Outlet& outlet_;
    std::string bytes_;
};

class Replaying final : PlayListener {
  public:
    Replaying(const ReplayOptions& options, Outlet& outlet, const std::string& format)
        : options_(options), outlet_(outlet), writer_(format, outlet) {}

    int run();

  private:
    void on_message(const N2KMsg&, const RecordTime&, std::uint8_t, PlayTime) override {}
    void on_record(const Record& record) override;
    bool play(const std::string& name);
    void wait_for_room();
    void say_what_was_sent() const;

    const ReplayOptions& options_;
    Outlet& outlet_;
    OutletWriter writer_;
    std::string unused_;
    std::uint64_t refused_ = 0;
    Converter converter_{writer_, unused_, [this](const N2KMsg&, const char*) { ++refused_; },
                         options_.definitions};
    PlayCounters played_;  // of the players that are gone
    std::string place_ = "before the first recording";
};

void Replaying::on_record(const Record& record) {
    if (options_.speed == 0.0 || record.time.origin == RecordTime::Origin::none) {
        wait_for_room();
    } else if (!outlet_.has_room() && !outlet_.is_empty()) {
        outlet_.run(1ms);  // much has the same time; slow clients get a chance, no more
    }
    if (!interrupted()) converter_.put(record);
}

void Replaying::wait_for_room() {
    while (!outlet_.has_room() && !interrupted()) outlet_.run(100ms);
}

/// False where the recording as a whole cannot be read.
bool Replaying::play(const std::string& name) {
    place_ = "in " + harmless(name);
    InputOptions input = options_.input;
    input.names = {name};
    Player player({.input = input, .speed = options_.speed.value_or(1), .definitions = options_.definitions});
    if (const Status opened = player.open(); !opened) {
        std::fprintf(stderr, "vistel: %s\n", harmless(opened.error().text).c_str());
        return false;
    }
    while (!player.ended() && !interrupted()) {
        player.advance(*this);
        outlet_.flush();
        outlet_.run(std::clamp(std::chrono::ceil<std::chrono::milliseconds>(player.until_due()), 1ms, 100ms));
    }
    converter_.finish();
    const PlayCounters& counters = player.counters();
    played_.messages += counters.messages;
    played_.skipped_gaps += counters.skipped_gaps;
    if (played_.problems == 0 && counters.problems > 0 && !options_.input.quiet)
        std::fprintf(stderr, "%s\n", harmless(player.first_problem()).c_str());
    played_.problems += counters.problems;
    return counters.messages > 0 || counters.problems == 0;
}

int Replaying::run() {
    bool is_readable = true;
    wait_for_room();  // for the first client
    for (std::uint64_t before = 0; !interrupted(); before = played_.messages) {
        for (const std::string& name : options_.input.names)
            if (!interrupted() && !play(name)) is_readable = false;
        if (!options_.loop || played_.messages == before) break;
    }
    const bool is_broken_off = interrupted() && !options_.loop;
    constexpr auto most = 2s;
    for (const auto until = std::chrono::steady_clock::now() + most;
         !outlet_.is_empty() && std::chrono::steady_clock::now() < until;)
        outlet_.run(10ms);
    if (!options_.input.quiet) say_what_was_sent();
    if (is_broken_off) return report_interrupt(concat("after ", played_.messages, " messages, ", place_));
    return is_readable ? EXIT_CLEAN : EXIT_FAILED;
}

void Replaying::say_what_was_sent() const {
    const OutletCounters& sent = outlet_.counters();
    const char* const records = writer_.takes(Record::Kind::frame) ? "frames" : "records";
    std::fprintf(stderr,
                 "messages: %" PRIu64 ", %s: %" PRIu64 ", bytes sent: %" PRIu64 ", clients: %" PRIu64
                 ", dropped: %" PRIu64 "\n",
                 played_.messages, records, converter_.written(), sent.bytes, sent.clients, sent.dropped);
    const auto line = [](const char* what, std::uint64_t count) {
        if (count > 0) std::fprintf(stderr, "%s: %" PRIu64 "\n", what, count);
    };
    line("gaps of more than 3 s that were not waited for", played_.skipped_gaps);
    line("problems in the recordings", played_.problems);
    line("messages that the format cannot hold", refused_);
    line("frames or datagrams that the system did not take", sent.lost);
}

int fail(const std::string& to, const std::string& why) {
    std::fprintf(stderr, "vistel: %s: %s\n", harmless(to).c_str(), why.c_str());
    return EXIT_FAILED;
}

}  // namespace

int run_replay(const ReplayOptions& options) {
    auto name = parse_source(options.to);
    if (!name) return fail(options.to, name.error().text);
    const bool is_can = name->kind == SourceName::Kind::can;
    if (is_can && !options.as.empty()) return fail(options.to, "a CAN interface has no format to be named");
    OutletOptions how;
    how.tell = [&options](const std::string& text) {
        if (options.input.quiet) return;
        std::fprintf(stderr, "vistel: %s: %s\n", harmless(options.to).c_str(), text.c_str());
    };
    watch_interrupts();
    ignore_closed_pipes();
    auto outlet = open_outlet(*name, how);
    if (!outlet) return fail(options.to, outlet.error().text);
    if (name->kind == SourceName::Kind::tcp_listen) how.tell("waiting for the first client");
    const std::string usual = is_can ? "pcap" : "yacht-devices";
    return std::make_unique<Replaying>(options, **outlet, options.as.empty() ? usual : options.as)->run();
}

}  // namespace vistel
