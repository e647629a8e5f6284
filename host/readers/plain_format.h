#pragma once

#include <array>
#include <limits>

#include "readers/content_kind.h"
#include "readers/line_format.h"
#include "readers/timestamp.h"
#include "text/character_pattern.h"

namespace vistel {

/// `timestamp,priority,pgn,source,destination,length,hh,hh,...`, header decimal, payload hexadecimal.
///
/// Numbers above those of PGNs, within 32 bits, are a gateway's own messages, which are foreign.
/// Lines hold whole messages or frames, which a single line does not tell. What tells it is `# format=NAME`,
/// a line with more bytes than a frame has (whole messages, from then on), or a fast packet whose frames
/// follow one another (frames, but for longer lines). Lines that neither can change are given before.
///
/// Some programs write `timestamp,source,pgn,priority,destination,8,...`, which shows by a number that cannot
/// be a priority.
class PlainFormat {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    const char* read_usual(std::string_view text, Record& record);
    void comment(std::string_view line);
    void set_contents(ContentKind contents);

    bool is_settled() const { return kind_ != Kind::unknown && order_ != Order::unknown; }
    bool depends_on_later(std::string_view line);
    void foresee(std::string_view line);
    void settle();

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

    enum class Kind {
        unknown,
        messages,
        frames,   ///< until a longer line comes
        by_size,  ///< frames, but for longer lines
    };
    enum class Order { unknown, priority_first, source_first };

    /// The frame that is to come next of a fast packet.
    struct Piece {
        std::uint32_t pgn = 0;
        std::uint32_t sender = 0;
        std::uint8_t first_byte = 0;

        friend bool operator==(const Piece&, const Piece&) = default;
    };

    static constexpr std::size_t fewest_for_usual = TimestampParser::usual_room + 2 * Header::room;

    static std::size_t place_of(const char* p);
    void learn_order(std::uint32_t first, std::uint32_t third);
    void look_for_pieces(const Piece& piece, unsigned second_byte, unsigned length);
    void finish(Record& record, unsigned length);

    /// Characters that read_usual() wants to see; none are enough before the format is settled.
    std::size_t usual_room_ = std::numeric_limits<std::size_t>::max();
    bool is_told_ = false;  // by set_contents()
    Kind kind_ = Kind::unknown;
    Order order_ = Order::unknown;
    unsigned lines_of_either_order_ = 0;
    Piece piece_;
    unsigned bytes_left_ = 0;  // of the fast packet
    TimestampParser timestamps_;
    std::array<Header, header_places> headers_;
};

}  // namespace vistel
