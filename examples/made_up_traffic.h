#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>

#include "pgn_vistel/n2k_msg.h"

/// Messages as a host hands them over, made up: a real host fills them in from its gateway or CAN driver and
/// does the reassembly of those that come in several frames.
namespace made_up {

inline N2KMsg message(std::uint32_t pgn, std::uint8_t source, std::uint32_t milliseconds,
                      std::initializer_list<std::uint8_t> payload) {
    N2KMsg msg{};
    msg.pgn = pgn;
    msg.priority = 3;
    msg.source = source;
    msg.destination = 255;  // everybody
    msg.length = static_cast<std::uint16_t>(payload.size());
    std::copy(payload.begin(), payload.end(), msg.data);
    msg.time_stamp = milliseconds / 10;
    return msg;
}

constexpr int streams = 4;

/// Message number 0, 1, .. of a boat under way, one every 50 ms: heading, wind, depth and engine in turn.
inline N2KMsg traffic(std::uint32_t number) {
    const std::uint32_t milliseconds = number * 50;
    const auto sequence = static_cast<std::uint8_t>(number / streams % 253);
    const auto swing = static_cast<std::uint8_t>(number % 100);
    switch (number % streams) {
        case 0:
            return message(127250, 2, milliseconds, {sequence, swing, 0x3D, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD});
        case 1: return message(130306, 9, milliseconds, {sequence, swing, 3, 0x10, 0x27, 2, 0xFF, 0xFF});
        case 2: return message(128267, 4, milliseconds, {sequence, swing, 3, 0, 0, 0x2C, 1, 0xFF});
        default: return message(127488, 0, milliseconds, {0, swing, 0x21, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF});
    }
}

}  // namespace made_up
