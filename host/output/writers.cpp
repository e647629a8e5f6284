#include "output/writers.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "output/record_text.h"

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

/// The same for messages that tell their bus, which the renderers know nothing of: it is put between.
class BusInsert {
  public:
    /// How the name of a bus stands in the output.
    using Form = void (*)(std::string& text, std::string_view bus);

    explicit BusInsert(Form form) : form_(form) {}

    /// `put(piece, insert)` is called for one piece of the message after the other.
    template <class Renderer, class Put>
    void drain(Renderer& renderer, std::string_view bus, Put put) {
        auto found = inserts_.find(bus);
        if (found == inserts_.end()) {
            found = inserts_.emplace(bus, std::string()).first;
            form_(found->second, bus);
        }
        do {
            const char* const end = renderer.write(area_.data(), area_.data() + area_.size());
            put(std::string_view(area_.data(), static_cast<std::size_t>(end - area_.data())), found->second);
        } while (!renderer.is_done());
    }

  private:
    const Form form_;
    std::map<std::string, std::string, std::less<>> inserts_;  // there are as few as there are buses
    std::array<char, 4 * core::piece_room> area_;
};

class TextWriter final : public MessageWriter {
  public:
    TextWriter(const core::UnitSelection& units, bool plain_numbers) : renderer_(units, plain_numbers) {}

    void write(Sink& out, const TimedMessage& message) override {
        renderer_.start(message.msg, message.pgn, message.time);
        if (message.bus.empty()) return drain(renderer_, out);
        bool is_head = true;
        bus_.drain(renderer_, message.bus, [&](std::string_view piece, std::string_view insert) {
            const std::size_t line = std::exchange(is_head, false) ? piece.find('\n') : 0;
            out.put(piece.substr(0, line));
            if (line > 0) out.put(insert);
            out.put(piece.substr(line));
        });
    }

  private:
    core::TextRenderer renderer_;
    BusInsert bus_{
        [](std::string& text, std::string_view bus) { text.append(" [").append(bus).append("]"); }};
};

class JsonWriter final : public MessageWriter {
  public:
    explicit JsonWriter(const core::UnitSelection& units) : renderer_(units) {}

    void write(Sink& out, const TimedMessage& message) override {
        renderer_.start(message.msg, message.pgn, message.time);
        if (message.bus.empty()) return drain(renderer_, out);
        bool is_head = true;
        bus_.drain(renderer_, message.bus, [&](std::string_view piece, std::string_view insert) {
            if (std::exchange(is_head, false)) {
                out.put(insert);
                piece.remove_prefix(1);
            }
            out.put(piece);
        });
    }

  private:
    core::JsonRenderer renderer_;
    BusInsert bus_{[](std::string& text, std::string_view bus) {
        append_json(text += R"({"bus":)", bus);
        text += ',';
    }};
};

class CsvWriter final : public MessageWriter {
  public:
    CsvWriter(const core::UnitSelection& units, bool bus) : renderer_(units), has_bus_(bus) {}

    void begin(Sink& out) override {
        char* const end = core::CsvRenderer::write_header(out.reserve(core::piece_room));
        if (!has_bus_) return out.commit(end);
        out.commit(end - 1);
        out.put(",bus\n");
    }
    void write(Sink& out, const TimedMessage& message) override {
        renderer_.start(message.msg, message.pgn, message.time);
        if (!has_bus_) return drain(renderer_, out);
        bus_.drain(renderer_, message.bus, [&](std::string_view piece, std::string_view insert) {
            bool is_quoted = false;  // pieces end behind rows
            std::size_t row = 0;
            for (std::size_t i = 0; i < piece.size(); ++i) {
                is_quoted ^= piece[i] == '"';
                if (piece[i] != '\n' || is_quoted) continue;
                out.put(piece.substr(row, i - row));
                out.put(insert);
                row = i + 1;
            }
        });
    }

  private:
    core::CsvRenderer renderer_;
    const bool has_bus_;
    BusInsert bus_{[](std::string& text, std::string_view bus) {
        append_csv(text += ',', bus);
        text += '\n';
    }};
};

}  // namespace

std::unique_ptr<MessageWriter> make_text_writer(const core::UnitSelection& units, bool plain_numbers) {
    return std::make_unique<TextWriter>(units, plain_numbers);
}

std::unique_ptr<MessageWriter> make_json_writer(const core::UnitSelection& units) {
    return std::make_unique<JsonWriter>(units);
}

std::unique_ptr<MessageWriter> make_csv_writer(const core::UnitSelection& units, bool bus) {
    return std::make_unique<CsvWriter>(units, bus);
}

}  // namespace vistel
