#include "commands/convert.h"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/losses.h"
#include "commands/output_status.h"
#include "commands/progress.h"
#include "output/output_file.h"
#include "output/sink.h"
#include "readers/recording.h"
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
    bool open(Recording& recording, const std::string& name);
    bool read(const std::string& file);
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
    std::optional<Progress> progress_;
    std::uint64_t problems_ = 0;
    std::uint64_t refused_ = 0;
};

void Converting::refuse(const N2KMsg& msg, const char* why) {
    progress_->clear();
    std::fprintf(stderr, "vistel: PGN %" PRIu32 " from source %d is left out: %s\n", msg.pgn, msg.source,
                 why);
    ++refused_;
}

bool Converting::open(Recording& recording, const std::string& name) {
    const auto fail = [](const std::string& what, const Failure& why) {
        std::fprintf(stderr, "vistel: %s: %s\n", what.c_str(), why.text.c_str());
        return false;
    };
    RecordingOptions how;
    how.format = options_.format;
    how.contents = options_.contents;
    how.patience_ms = 250;  // a signal may come between the look at its flag and the wait
    how.before_wait = [this] { out_->flush(); };
    if (const auto opened = recording.open(name, how); !opened)
        return fail(name == "-" ? "standard input" : name, opened.error());
    if (out_) return true;
    auto output = open_output(options_.output, options_.files);
    if (!output) return fail(options_.output, output.error());
    out_.emplace(*output);
    return true;
}

/// False when nothing comes of the recording.
bool Converting::read(const std::string& file) {
    Recording recording;
    if (!open(recording, file)) return false;
    progress_.emplace(recording.bytes_total());
    bool readable = true;
    Record record;
    while (out_->is_open() && !interrupted()) {
        switch (recording.next(record)) {
            case ReadResult::record:
                converter_.put(record);
                put_out();
                progress_->update(recording.bytes_read());
                break;
            case ReadResult::problem: {
                progress_->clear();
                const Problem& problem = recording.problem();
                std::fprintf(stderr, "%s\n",
                             described(problem, file == "-" ? "standard input" : file).c_str());
                if (problem.place == Problem::Place::whole)
                    readable = false;
                else
                    ++problems_;
                break;
            }
            case ReadResult::nothing: break;
            case ReadResult::end:
                converter_.finish();
                progress_->clear();
                return readable;
        }
    }
    return readable;
}

int Converting::run() {
    watch_interrupts();
    ignore_closed_pipes();
    bool readable = true;
    for (const std::string& file : options_.files) readable = read(file) && readable;
    if (!out_) return EXIT_FAILED;
    out_->flush();
    progress_->clear();
    if (output_status(*out_) != EXIT_CLEAN) return EXIT_FAILED;
    const int status = report_losses(problems_, converter_.counters());
    if (refused_ > 0)
        std::fprintf(stderr, "vistel: messages that %s cannot hold: %" PRIu64 "\n", options_.to.c_str(),
                     refused_);
    if (!readable) return EXIT_FAILED;
    return refused_ > 0 ? EXIT_SKIPPED : status;
}

}  // namespace

int run_convert(const ConvertOptions& options) {
    return std::make_unique<Converting>(options)->run();
}

}  // namespace vistel
