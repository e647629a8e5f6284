#include "encode/message_lines.h"

#include <algorithm>
#include <span>

#include "can/fast_packet.h"
#include "can/identifier.h"
#include "can/transport_protocol.h"
#include "text/hex.h"

namespace vistel {

namespace {

using pgn_vistel::core::Definitions;
using pgn_vistel::core::is_fast_packet;
using Bytes = std::span<const std::uint8_t>;

class Frames {
  public:
    Frames(const N2KMsg& msg, std::string_view time) : header_(msg), bytes_(msg.data, msg.length) {
        if (!time.empty()) before_.append("(").append(time).append(") ");
        before_ += "can0 ";
    }

    std::string lines;

    void put_single() { put({}, bytes_); }

    void put_fast(unsigned sequence) {
        Bytes rest = bytes_;
        for (unsigned number = 0; number == 0 || !rest.empty(); ++number) {
            const std::uint8_t header[] = {fast_packet::first_byte(sequence, number),
                                           static_cast<std::uint8_t>(bytes_.size())};
            put_piece(rest, Bytes(header, number == 0 ? 2 : 1),
                      number == 0 ? fast_packet::bytes_in_first : fast_packet::bytes_in_later);
        }
    }

    /// An announcement, then packets of seven bytes.
    void put_broadcast() {
        using namespace transport_protocol;
        const auto size = static_cast<unsigned>(bytes_.size());
        const std::uint32_t pgn = header_.pgn;
        const unsigned frame[] = {broadcast_announce, size & 0xFF,     size >> 8, packets_of(size), 0xFF,
                                  pgn & 0xFF,         pgn >> 8 & 0xFF, pgn >> 16};
        std::uint8_t announced[max_frame_bytes];
        std::ranges::transform(frame, announced,
                               [](unsigned byte) { return static_cast<std::uint8_t>(byte); });
        header_.pgn = control_pgn;
        put({}, announced);
        header_.pgn = data_pgn;
        Bytes rest = bytes_;
        for (std::uint8_t number = 1; !rest.empty(); ++number)
            put_piece(rest, Bytes(&number, 1), bytes_in_packet);
    }

  private:
    void put(Bytes first, Bytes second) {
        lines += before_;
        append_hex(lines, identifier_of(header_), 8);
        lines += '#';
        for (const std::uint8_t byte : first) append_hex(lines, byte, 2);
        for (const std::uint8_t byte : second) append_hex(lines, byte, 2);
        lines += '\n';
    }

    /// A full frame: what is over is filled with ones.
    void put_piece(Bytes& rest, Bytes header, std::size_t room) {
        std::uint8_t piece[max_frame_bytes];
        std::ranges::fill(piece, std::uint8_t{0xFF});
        const std::size_t count = std::min(room, rest.size());
        std::ranges::copy(rest.first(count), piece);
        rest = rest.subspan(count);
        put(header, Bytes(piece, room));
    }

    N2KMsg header_;
    const Bytes bytes_;
    std::string before_;
};

}  // namespace

std::string plain_lines(const N2KMsg& msg, std::string_view time, Definitions definitions) {
    std::string line;
    if (msg.length <= max_frame_bytes && is_fast_packet(msg.pgn, definitions)) line = "# format=FAST\n";
    line += time;
    for (const unsigned number : {unsigned{msg.priority}, unsigned{msg.pgn}, unsigned{msg.source},
                                  unsigned{msg.destination}, unsigned{msg.length}})
        line += ',' + std::to_string(number);
    for (const std::uint8_t byte : Bytes(msg.data, msg.length)) {
        line += ',';
        append_hex(line, byte, 2);
    }
    if (msg.length == 0) line += ',';
    return line + '\n';
}

Result<std::string> candump_lines(const N2KMsg& msg, std::string_view time, unsigned sequence,
                                  Definitions definitions) {
    Frames frames(msg, time);
    if (is_fast_packet(msg.pgn, definitions) && msg.length <= fast_packet::most_bytes) {
        frames.put_fast(sequence);
    } else if (msg.length <= max_frame_bytes) {
        frames.put_single();
    } else if (msg.destination == everyone) {
        frames.put_broadcast();
    } else {
        return failure(
            "a message of ", msg.length,
            " bytes to one device takes a dialogue that candump lines alone cannot show; the plain "
            "format can");
    }
    return frames.lines;
}

}  // namespace vistel
