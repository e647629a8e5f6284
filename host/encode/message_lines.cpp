#include "encode/message_lines.h"

#include <functional>

#include "can/frames.h"
#include "text/hex.h"

namespace vistel {

namespace {

using pgn_vistel::core::Definitions;
using pgn_vistel::core::is_fast_packet;

/// Frames as candump shows them.
class FrameLines {
  public:
    explicit FrameLines(std::string_view time) {
        if (!time.empty()) before_.append("(").append(time).append(") ");
        before_ += "can0 ";
    }

    void operator()(std::uint32_t identifier, FrameBytes bytes) {
        lines += before_;
        append_hex(lines, identifier, 8);
        lines += '#';
        for (const std::uint8_t byte : bytes) append_hex(lines, byte, 2);
        lines += '\n';
    }

    std::string lines;

  private:
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
    for (const std::uint8_t byte : FrameBytes(msg.data, msg.length)) {
        line += ',';
        append_hex(line, byte, 2);
    }
    if (msg.length == 0) line += ',';
    return line + '\n';
}

Result<std::string> candump_lines(const N2KMsg& msg, std::string_view time, unsigned sequence,
                                  Definitions definitions) {
    FrameLines frames(time);
    const Carriage carriage = carriage_of(msg, definitions);
    if (carriage == Carriage::fast_packet) {
        cut_fast_packet(msg, sequence, std::ref(frames));
    } else if (carriage == Carriage::single) {
        cut_single(msg, std::ref(frames));
    } else if (msg.destination == everyone) {
        cut_broadcast(msg, std::ref(frames));
    } else {
        return failure(
            "a message of ", msg.length,
            " bytes to one device takes a dialogue that candump lines alone cannot show; the plain "
            "format can");
    }
    return frames.lines;
}

}  // namespace vistel
