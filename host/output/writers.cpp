#include "output/writers.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;

/// Writes out what a renderer has begun.
template <class Renderer>
void drain(Renderer& renderer, Sink& out) {
    do {
        char* const at = out.reserve(core::piece_room);
        out.commit(renderer.write(at, out.limit()));
    } while (!renderer.is_done());
}

class TextWriter final : public MessageWriter {
  public:
    TextWriter(const core::UnitSelection& units, bool plain_numbers) : renderer_(units, plain_numbers) {}

    void write(Sink& out, const TimedMessage& message) override {
        constexpr std::int64_t time_stamp_unit = 10'000'000;  // nanoseconds
        renderer_.start(message.msg, message.pgn,
                        static_cast<std::uint32_t>(message.time.since_start / time_stamp_unit));
        drain(renderer_, out);
    }

  private:
    core::TextRenderer renderer_;
};

template <class Renderer>
class RecordWriter final : public MessageWriter {
  public:
    explicit RecordWriter(const core::UnitSelection& units) : renderer_(units) {}

    void begin(Sink& out) override {
        if constexpr (requires(char* at) { Renderer::write_header(at); })
            out.commit(Renderer::write_header(out.reserve(core::piece_room)));
    }
    void write(Sink& out, const TimedMessage& message) override {
        renderer_.start(message.msg, message.pgn, message.time);
        drain(renderer_, out);
    }

  private:
    Renderer renderer_;
};

}  // namespace

std::unique_ptr<MessageWriter> make_text_writer(const core::UnitSelection& units, bool plain_numbers) {
    return std::make_unique<TextWriter>(units, plain_numbers);
}

std::unique_ptr<MessageWriter> make_json_writer(const core::UnitSelection& units) {
    return std::make_unique<RecordWriter<core::JsonRenderer>>(units);
}

std::unique_ptr<MessageWriter> make_csv_writer(const core::UnitSelection& units) {
    return std::make_unique<RecordWriter<core::CsvRenderer>>(units);
}

}  // namespace vistel
