#pragma once

#include <array>

#include "readers/line_format.h"
#include "readers/timestamp.h"
#include "text/character_pattern.h"

namespace vistel {

/// `timestamp,priority,pgn,source,destination,length,hh,hh,...`, header decimal, payload hexadecimal.
///
/// Numbers above those of PGNs, within 32 bits, are a gateway's own messages, which are foreign.
/// Lines hold whole messages or frames, which a single line does not tell. `# format=FAST` or a line with
/// more bytes than a frame has means whole messages, from then on; until then every line is a frame.
class PlainFormat {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    const char* read_usual(std::string_view text, Record& record);
    void comment(std::string_view line);
    bool wants_look_ahead() const { return !whole_messages_; }

  private:
    /// The numbers `2,127250,7,255,8,` before a payload, which most devices send over and over.
    struct Header {
        static constexpr std::size_t room = CharacterPattern<3>::room;

        Header() { characters.set("\n"); }
        bool read(const char* p);

        CharacterPattern<3> characters;
        std::uint32_t pgn = 0;
        std::uint8_t priority = 0, source = 0, destination = 0;
        std::uint16_t length = 0;
    };
    static constexpr std::size_t header_places = 128;

    static std::size_t place_of(const char* p);
    LineResult read_header(std::string_view line, Record& record, unsigned& length, std::string_view& payload,
                           Problem& problem);
    void finish(Record& record, unsigned length);

    bool whole_messages_ = false;
    TimestampParser timestamps_;
    std::array<Header, header_places> headers_;
};

}  // namespace vistel
