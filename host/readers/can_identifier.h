#pragma once

#include <cstdint>

#include "pgn_vistel/n2k_msg.h"

namespace vistel {

constexpr std::uint32_t max_pgn = 0x3FFFF;
constexpr std::uint32_t max_identifier = 0x1FFFFFFF;
constexpr unsigned max_frame_bytes = 8;

/// Priority, PGN and addresses from a 29-bit identifier. Below PDU format 240 the third byte is the
/// destination, from there on it belongs to the PGN and the message is for everyone.
inline void set_header(N2KMsg& msg, std::uint32_t identifier) {
    constexpr unsigned first_broadcast_format = 240;
    const std::uint32_t pgn = (identifier >> 8) & max_pgn;
    const bool addressed = ((pgn >> 8) & 0xFF) < first_broadcast_format;
    msg.pgn = addressed ? pgn & ~std::uint32_t{0xFF} : pgn;
    msg.destination = addressed ? static_cast<std::uint8_t>(pgn) : std::uint8_t{255};
    msg.source = static_cast<std::uint8_t>(identifier);
    msg.priority = static_cast<std::uint8_t>((identifier >> 26) & 7);
}

}  // namespace vistel
