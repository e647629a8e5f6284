#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "can/fast_packet.h"
#include "can/identifier.h"
#include "can/record.h"
#include "can/transport_protocol.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

using FrameBytes = std::span<const std::uint8_t>;

/// How a message travels.
enum class Carriage { single, fast_packet, transport };

inline Carriage carriage_of(const N2KMsg& msg, pgn_vistel::core::Definitions definitions) {
    if (pgn_vistel::core::is_fast_packet(msg.pgn, definitions) && msg.length <= fast_packet::most_bytes)
        return Carriage::fast_packet;
    return msg.length <= max_frame_bytes ? Carriage::single : Carriage::transport;
}

/// Makes a record one frame; bus and time stay.
inline void set_frame(Record& record, std::uint32_t identifier, FrameBytes bytes) {
    record.kind = Record::Kind::frame;
    set_header(record.msg, identifier);
    record.msg.length = static_cast<std::uint16_t>(bytes.size());
    std::ranges::copy(bytes, record.msg.data);
}

/// Why the header of a message fits no frame; null where it does.
inline const char* why_unframed(const N2KMsg& msg) {
    if (is_addressed(msg.pgn))
        return (msg.pgn & 0xFF) == 0 ? nullptr : "the low byte of a PGN with a destination is 0 on a bus";
    return msg.destination == everyone ? nullptr : "the PGN has no destination on a bus: it goes to everyone";
}

/// @{ Cuts a message into frames and calls `take(identifier, bytes)` for each; `msg.length` fits the
/// carriage.

template <class Take>
void cut_single(const N2KMsg& msg, Take take) {
    take(identifier_of(msg), FrameBytes(msg.data, msg.length));
}

namespace detail {

/// Frames of a header and as many bytes as there is room for behind it; what is over is filled with ones.
template <class Take>
void take_piece(std::uint32_t identifier, FrameBytes header, FrameBytes& rest, Take& take) {
    std::uint8_t frame[max_frame_bytes];
    std::uint8_t* const end = std::ranges::copy(header, frame).out;
    const std::size_t count = std::min(max_frame_bytes - header.size(), rest.size());
    std::fill(std::ranges::copy(rest.first(count), end).out, std::end(frame), std::uint8_t{0xFF});
    rest = rest.subspan(count);
    take(identifier, FrameBytes(frame));
}

}  // namespace detail

/// Of a fast packet, with this sequence.
template <class Take>
void cut_fast_packet(const N2KMsg& msg, unsigned sequence, Take take) {
    FrameBytes rest(msg.data, msg.length);
    for (unsigned number = 0; number == 0 || !rest.empty(); ++number) {
        const std::uint8_t header[] = {fast_packet::first_byte(sequence, number),
                                       static_cast<std::uint8_t>(msg.length)};
        detail::take_piece(identifier_of(msg), FrameBytes(header, number == 0 ? 2 : 1), rest, take);
    }
}

/// By transport protocol, what the sender sends of it: an announcement, to everyone or to one device, which
/// would answer, and packets of seven bytes.
template <class Take>
void cut_transport(const N2KMsg& msg, Take take) {
    using namespace transport_protocol;
    const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
    const unsigned size = msg.length;
    const std::uint8_t announced[] = {
        byte(msg.destination == everyone ? broadcast_announce : request_to_send),
        byte(size),
        byte(size >> 8),
        byte(packets_of(size)),
        0xFF,
        byte(msg.pgn),
        byte(msg.pgn >> 8),
        byte(msg.pgn >> 16)};
    const auto identifier = [&msg](std::uint32_t pgn) {
        return std::uint32_t{msg.priority} << 26 | (pgn | msg.destination) << 8 | msg.source;
    };
    take(identifier(control_pgn), FrameBytes(announced));
    FrameBytes rest(msg.data, msg.length);
    for (std::uint8_t number = 1; !rest.empty(); ++number)
        detail::take_piece(identifier(data_pgn), FrameBytes(&number, 1), rest, take);
}

/// As it travels; a fast packet with this sequence.
template <class Take>
void cut(const N2KMsg& msg, unsigned sequence, pgn_vistel::core::Definitions definitions, Take take) {
    switch (carriage_of(msg, definitions)) {
        case Carriage::single: cut_single(msg, take); break;
        case Carriage::fast_packet: cut_fast_packet(msg, sequence, take); break;
        case Carriage::transport: cut_transport(msg, take); break;
    }
}
/// @}

}  // namespace vistel
