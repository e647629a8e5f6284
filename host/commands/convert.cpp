#include "commands/convert.h"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "commands/reading.h"
#include "output/output_file.h"
#include "output/sink.h"
#include "text/printable.h"
#include "text/words.h"
#include "writers/converter.h"
#include "writers/written_formats.h"

namespace vistel {

namespace {

/// One run over recordings.
class Converting {
  public:
    explicit Converting(const ConvertOptions& options) : options_(options) {}

    int run();

  private:
    bool begin();
    void put_out() {
        out_->put(bytes_);
        bytes_.clear();
    }
    void refuse(const N2KMsg& msg, const char* why);
    void name_buses();
    void tell_times() const;

    const ConvertOptions& options_;
    const std::unique_ptr<RecordWriter> writer_ = make_writer(options_.to);
    std::string bytes_;
    std::optional<Sink> out_;
    Converter converter_{*writer_, bytes_, [this](const N2KMsg& msg, const char* why) { refuse(msg, why); },
                         options_.definitions};
    Reading reading_{options_.input, [this] {
                         if (out_) out_->flush();
                     }};
    std::uint64_t refused_ = 0;
    std::size_t named_ = 0;    // buses that the writer knows of
    bool tells_buses_ = true;  // the format does
};

void Converting::refuse(const N2KMsg& msg, const char* why) {
    reading_.tell(concat("PGN ", msg.pgn, " from source ", unsigned{msg.source}),
                  concat("is left out: ", why));
    ++refused_;
}

/// Records come from another bus.
void Converting::name_buses() {
    const Inputs& inputs = reading_.inputs();
    for (; named_ < inputs.bus_count(); ++named_) {
        const auto bus = static_cast<std::uint8_t>(named_);
        const std::string_view name = inputs.bus_name(bus), written = writer_->name_bus(bus, name);
        tells_buses_ = !written.empty();
        if (written.empty() || name.empty() || written == name || reading_.is_quiet()) continue;
        reading_.clear_progress();
        std::fprintf(stderr, "vistel: interface %s is %s in what is written\n", std::string(name).c_str(),
                     std::string(written).c_str());
    }
}

const char* named(RecordTime::Origin origin) {
    switch (origin) {
        case RecordTime::Origin::none: break;
        case RecordTime::Origin::start: return "time since some start";
        case RecordTime::Origin::day: return "time of day";
        case RecordTime::Origin::epoch: return "date and time";
    }
    return "no time";
}

/// What became of times that the format cannot say as they are.
void Converting::tell_times() const {
    using Origin = RecordTime::Origin;
    constexpr Origin origins[] = {Origin::none, Origin::start, Origin::day, Origin::epoch};
    for (const Origin had : origins)
        for (const Origin written : origins) {
            const std::uint64_t count = converter_.messages_of_times(had, written);
            if (had == written || count == 0) continue;
            const std::string what =
                had == Origin::none
                    ? concat("messages without a time, which ", options_.to, " cannot say")
                    : concat("messages whose ", named(had), " is a ", named(written), " in ", options_.to);
            std::fprintf(stderr, "vistel: %s: %" PRIu64 "\n", what.c_str(), count);
        }
}

/// An input begins. False where there is nothing to write to.
bool Converting::begin() {
    if (out_) {
        converter_.finish();
        return true;
    }
    auto output = open_output(options_.output, options_.input.names);
    if (!output) {
        std::fprintf(stderr, "vistel: %s: %s\n", harmless(options_.output).c_str(),
                     output.error().text.c_str());
        return false;
    }
    out_.emplace(*output);
    return true;
}

int Converting::run() {
    using Event = Reading::Event;
    Record record;
    for (bool more = true; more && !interrupted();) {
        switch (reading_.next(record)) {
            case Event::begins: more = begin(); break;
            case Event::record:
                if (named_ < reading_.inputs().bus_count()) name_buses();
                converter_.put(record);
                put_out();
                more = out_->is_open();
                break;
            case Event::problem:
            case Event::nothing: break;
            case Event::end:
                converter_.finish();  // what the user breaks off is not missing anything
                more = false;
                break;
        }
    }
    if (!out_) return EXIT_FAILED;
    out_->flush();
    reading_.clear_progress();
    if (output_status(*out_) != EXIT_CLEAN) return EXIT_FAILED;
    const std::size_t buses = reading_.inputs().bus_count();
    if (buses > 1 && !tells_buses_ && !reading_.is_quiet())
        std::fprintf(stderr, "vistel: %zu interfaces are one in what was written\n", buses);
    if (!reading_.is_quiet()) tell_times();
    const int status = reading_.finish(converter_.counters());
    if (refused_ > 0)
        std::fprintf(stderr, "vistel: messages that %s cannot hold: %" PRIu64 "\n", options_.to.c_str(),
                     refused_);
    return refused_ > 0 && status == EXIT_CLEAN ? EXIT_SKIPPED : status;
}

}  // namespace

int run_convert(const ConvertOptions& options) {
    return std::make_unique<Converting>(options)->run();
}

}  // namespace vistel
