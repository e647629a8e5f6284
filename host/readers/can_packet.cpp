#include "readers/can_packet.h"

#include <algorithm>

#include "can/identifier.h"

namespace vistel {
namespace {

using Bytes = std::span<const std::uint8_t>;

struct CookedHeader {
    std::size_t size, protocol_at, device_at;
};
constexpr CookedHeader cooked{16, 14, 2}, cooked_v2{20, 0, 8};
constexpr std::size_t interface_at = 4;  // of cooked_v2

/// A frame's identifier, length, flags and two more bytes.
constexpr std::size_t frame_header = 8;

/// Whether the packet behind this header is a classical CAN frame; others are of other protocols or devices.
bool is_can(const CookedHeader& header, Bytes bytes) {
    constexpr std::uint16_t can_device = 280, can_protocol = 0x000C;
    return big_endian<std::uint16_t>(&bytes[header.device_at]) == can_device &&
           big_endian<std::uint16_t>(&bytes[header.protocol_at]) == can_protocol;
}

}  // namespace

bool can_read(std::uint16_t link_type, Problem& problem) {
    switch (LinkType{link_type}) {
        case LinkType::cooked:
        case LinkType::socketcan:
        case LinkType::cooked_v2: return true;
        case LinkType::can_2_0b:
            describe(problem, "a capture of link type 190 (CAN 2.0B), of which no layout is published");
            return false;
    }
    describe(problem, "a capture of link type ", unsigned{link_type},
             ", which is none of CAN frames (they have 113, 227 or 276)");
    return false;
}

std::uint32_t interface_of(const Packet& packet) {
    const bool has_one = packet.type == LinkType::cooked_v2 && packet.bytes.size() >= cooked_v2.size;
    return has_one ? big_endian<std::uint32_t>(&packet.bytes[interface_at]) : 0;
}

Found read_can_packet(const Packet& packet, Record& record, Problem& problem) {
    Bytes bytes = packet.bytes;
    ByteOrder order{true};
    if (packet.type != LinkType::socketcan) {
        const CookedHeader& header = packet.type == LinkType::cooked ? cooked : cooked_v2;
        if (bytes.size() >= header.size) {
            if (!is_can(header, bytes)) return Found::foreign;
            bytes = bytes.subspan(header.size);
            order = packet.order;
        } else {
            bytes = {};
        }
    }
    if (bytes.size() < frame_header) {
        describe(problem, "a packet of ", packet.bytes.size(), " bytes holds no frame");
        return Found::problem;
    }
    constexpr std::uint32_t extended = 0x80000000, remote = 0x40000000, error = 0x20000000;
    const auto word = order.load<std::uint32_t>(bytes.data());
    const std::uint8_t length = bytes[4], flags = bytes[5];
    // Of a classical frame some recorders leave anything in the byte of flags, of which there are three.
    constexpr std::uint8_t is_xl = 0x80, is_fd = 0x04, other_flags = 0x03;
    constexpr std::uint32_t fd_size = 72;
    if ((word & (extended | remote | error)) != extended || (length & is_xl) != 0 ||
        (flags & ~other_flags) == is_fd || packet.original_size == fd_size)
        return Found::foreign;
    if (length > max_frame_bytes || bytes.size() < frame_header + length) {
        describe(problem, "a frame says that it has ", unsigned{length}, " bytes; there are ",
                 bytes.size() - frame_header);
        return Found::problem;
    }
    record.kind = Record::Kind::frame;
    set_header(record.msg, word & max_identifier);
    record.msg.length = length;
    std::copy_n(&bytes[frame_header], length, record.msg.data);
    return Found::record;
}

}  // namespace vistel
