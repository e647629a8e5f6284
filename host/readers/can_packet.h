#pragma once

#include <cstdint>
#include <span>

#include "readers/block_reader.h"
#include "readers/byte_order.h"

namespace vistel {

/// How CAN frames stand in the packets of a network capture.
enum class LinkType : std::uint16_t {
    cooked = 113,     ///< a header of 16 bytes before the frame
    can_2_0b = 190,   ///< of one maker's board; its layout is not published
    socketcan = 227,  ///< the frame alone, its identifier big-endian
    cooked_v2 = 276,  ///< a header of 20 bytes, which has the number of the interface
};

/// Whether frames can be taken from captures of this link type; else the problem tells why not.
[[nodiscard]] bool can_read(std::uint16_t link_type, Problem& problem);

/// One packet of a capture, which may have less of it than there was.
struct Packet {
    std::span<const std::uint8_t> bytes;
    std::uint32_t original_size;
    LinkType type;
    ByteOrder order;  ///< of the capture
};

/// Takes the frame of a packet, but for its time and its bus.
Found read_can_packet(const Packet& packet, Record& record, Problem& problem);

/// The interface that the header of a packet numbers, 0 where there is none.
std::uint32_t interface_of(const Packet& packet);

}  // namespace vistel
