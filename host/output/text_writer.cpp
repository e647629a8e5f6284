#include <algorithm>

#include "output/writers.h"
#include "pgn_vistel/stream_lines.h"

namespace vistel {

namespace {

// Texts come off the wire: left as they are, they could steer the terminal or forge lines.
void mask_controls(wchar_t* text, int length) {
    // As a number, without branches: every line passes here, and the compiler takes several characters at
    // once.
    const auto is_control = [](wchar_t c) {
        const auto code = static_cast<std::uint32_t>(c);
        return static_cast<std::uint32_t>(code - 0x20 > 0x7E - 0x20) &
               static_cast<std::uint32_t>(code < 0xA0);
    };
    constexpr wchar_t replacement = 0xFFFD;
    std::uint32_t any = 0;
    for (int i = 0; i < length; ++i) any |= is_control(text[i]);
    if (any != 0) std::replace_if(text, text + length, is_control, replacement);
}

class TextWriter : public MessageWriter {
  public:
    TextWriter(QV_N2K_PGN_DB_c& db, unsigned long flags) : db_(db), flags_(flags) {}

    void write(Sink& out, const TimedMessage& message) override {
        wchar_t line[pgn_vistel::line_size];
        int length = pgn_vistel::print_stream_line(line, pgn_vistel::line_size, message.msg, message.pgn);
        pgn_vistel::StreamLines lines(db_, message.pgn, message.msg, flags_);
        std::string_view indent;
        while (length >= 0) {
            mask_controls(line, length);
            out.put_line(indent, std::wstring_view(line, static_cast<std::size_t>(length)));
            indent = "    ";
            length = lines.next(line, pgn_vistel::line_size);
        }
    }

  private:
    QV_N2K_PGN_DB_c& db_;
    const unsigned long flags_;
};

}  // namespace

std::unique_ptr<MessageWriter> make_text_writer(QV_N2K_PGN_DB_c& db, unsigned long flags) {
    return std::make_unique<TextWriter>(db, flags);
}

}  // namespace vistel
