#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "can/fast_packet.h"
#include "can/identifier.h"
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

/// Of a broadcast by transport protocol: an announcement, then packets of seven bytes.
template <class Take>
void cut_broadcast(const N2KMsg& msg, Take take) {
    using namespace transport_protocol;
    const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
    const unsigned size = msg.length;
    const std::uint8_t announced[] = {
        broadcast_announce, byte(size),         byte(size >> 8),    byte(packets_of(size)), 0xFF,
        byte(msg.pgn),      byte(msg.pgn >> 8), byte(msg.pgn >> 16)};
    const auto identifier = [&msg](std::uint32_t pgn) {
        return std::uint32_t{msg.priority} << 26 | (pgn | msg.destination) << 8 | msg.source;
    };
    take(identifier(control_pgn), FrameBytes(announced));
    FrameBytes rest(msg.data, msg.length);
    for (std::uint8_t number = 1; !rest.empty(); ++number)
        detail::take_piece(identifier(data_pgn), FrameBytes(&number, 1), rest, take);
}
/// @}

}  // namespace vistel
