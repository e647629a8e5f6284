#pragma once

/// @file
/// The message as hosts hand it over.

#include <cstddef>
#include <cstdint>

/// Largest payload of one NMEA 2000 message, in bytes: 255 transport protocol packets of 7 bytes.
constexpr int N2K_MAX_PAYLOAD = 1785;

/// One NMEA 2000 message as a host hands it over. Multi-packet messages are already reassembled.
///
/// The layout is part of the binary interface (1800 bytes, little-endian numbers): hosts build the record
/// themselves. The library reads it during a call and keeps no pointer to it.
struct N2KMsg {
    std::uint32_t pgn;         ///< parameter group number, 18 significant bits
    std::uint8_t priority;     ///< 0 (highest) .. 7
    std::uint8_t source;       ///< source address, 0 .. 253
    std::uint8_t destination;  ///< destination address; 255 is global
    std::uint8_t reserved;     ///< never read
    std::uint16_t length;      ///< valid bytes in `data`; a length above 1785 counts as 1785
    std::uint8_t data[1786];   ///< payload, first received byte first
    std::uint32_t time_stamp;  ///< in units of 10 ms, from any origin
};

static_assert(sizeof(N2KMsg) == 1800);
static_assert(offsetof(N2KMsg, pgn) == 0);
static_assert(offsetof(N2KMsg, priority) == 4);
static_assert(offsetof(N2KMsg, source) == 5);
static_assert(offsetof(N2KMsg, destination) == 6);
static_assert(offsetof(N2KMsg, reserved) == 7);
static_assert(offsetof(N2KMsg, length) == 8);
static_assert(offsetof(N2KMsg, data) == 10);
static_assert(offsetof(N2KMsg, time_stamp) == 1796);
