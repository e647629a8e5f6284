#pragma once

#include <cstdint>

#include "pgn_vistel/core/ids.h"

namespace vistel::transport_protocol {

/// A session is announced on the one PGN, its packets come on the other: a number from 1, then 7 bytes.
constexpr std::uint32_t control_pgn = pgn_vistel::core::pgn::transport_control;
constexpr std::uint32_t data_pgn = pgn_vistel::core::pgn::transport_data;
constexpr unsigned bytes_in_packet = 7;
constexpr unsigned most_packets = 255;

/// First byte of a frame on `control_pgn`.
enum ControlByte : std::uint8_t {
    request_to_send = 16,
    clear_to_send = 17,
    end_of_message = 19,
    broadcast_announce = 32,
    abort_session = 255,
};

constexpr unsigned packets_of(unsigned message_bytes) {
    return (message_bytes + bytes_in_packet - 1) / bytes_in_packet;
}

}  // namespace vistel::transport_protocol
