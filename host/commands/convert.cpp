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
};

void Converting::refuse(const N2KMsg& msg, const char* why) {
    reading_.clear_progress();
    std::fprintf(stderr, "vistel: PGN %" PRIu32 " from source %d is left out: %s\n", msg.pgn, msg.source,
                 why);
    ++refused_;
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
    constexpr std::string_view tells_buses_apart = "candump";
    if (buses > 1 && options_.to != tells_buses_apart)
        std::fprintf(stderr, "vistel: %zu interfaces are one in what was written\n", buses);
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
