#pragma once

#include <cstdint>

#include "pgn_vistel/core/ids.h"
#include "pgn_vistel/n2k_msg.h"

namespace vistel {

constexpr std::uint32_t max_pgn = 0x3FFFF;
constexpr std::uint32_t max_identifier = 0x1FFFFFFF;
constexpr unsigned max_frame_bytes = 8;
constexpr std::uint8_t everyone = 255;      ///< as a destination
constexpr std::uint8_t nobody = 254;        ///< as a source: one that a recording does not tell
constexpr std::uint8_t usual_priority = 6;  ///< where a recording tells none

/// Whether messages of this PGN have a destination: below PDU format 240. From there on they are for
/// everyone.
constexpr bool is_addressed(std::uint32_t pgn) {
    constexpr unsigned first_broadcast_format = 240;
    return ((pgn >> 8) & 0xFF) < first_broadcast_format;
}

/// Whether makers give a PGN the meanings that they like: one addressed PGN and one page of broadcast ones of
/// each kind of message.
constexpr bool is_proprietary(std::uint32_t pgn) {
    namespace known = pgn_vistel::core::pgn;
    constexpr std::uint32_t page = 0xFF, fast_page = 0x1FF;
    return pgn == known::proprietary_single || pgn == known::proprietary_fast || pgn >> 8 == page ||
           pgn >> 8 == fast_page;
}

/// Priority, PGN and addresses from a 29-bit identifier. The third byte is the destination, or else belongs
/// to the PGN.
inline void set_header(N2KMsg& msg, std::uint32_t identifier) {
    const std::uint32_t pgn = (identifier >> 8) & max_pgn;
    const bool addressed = is_addressed(pgn);
    msg.pgn = addressed ? pgn & ~std::uint32_t{0xFF} : pgn;
    msg.destination = addressed ? static_cast<std::uint8_t>(pgn) : everyone;
    msg.source = static_cast<std::uint8_t>(identifier);
    msg.priority = static_cast<std::uint8_t>((identifier >> 26) & 7);
}

/// The way back.
inline std::uint32_t identifier_of(const N2KMsg& msg) {
    const std::uint32_t third = is_addressed(msg.pgn) ? msg.destination : 0u;
    return std::uint32_t{msg.priority} << 26 | ((msg.pgn & max_pgn) | third) << 8 | msg.source;
}

}  // namespace vistel
