#pragma once

#include <cstdint>

namespace vistel::fast_packet {

/// A fast packet has up to 32 frames, each beginning with a byte of sequence (3 bits) and frame number (5
/// bits). Frame 0 has the length of the message as its second byte and 6 bytes of it, the others have 7.
constexpr unsigned most_bytes = 223;
constexpr unsigned most_frames = 32;
constexpr unsigned sequence_bits = 3, sequences = 1 << sequence_bits;
constexpr unsigned bytes_in_first = 6;
constexpr unsigned bytes_in_later = 7;

constexpr unsigned sequence_of(std::uint8_t first_byte) {
    return first_byte >> 5;
}
constexpr unsigned number_of(std::uint8_t first_byte) {
    return first_byte & 31u;
}
constexpr std::uint8_t first_byte(unsigned sequence, unsigned number) {
    return static_cast<std::uint8_t>(sequence << 5 | number);
}

/// Position in the message of a frame's bytes.
constexpr unsigned offset_of(unsigned number) {
    return number == 0 ? 0 : bytes_in_first + (number - 1) * bytes_in_later;
}

}  // namespace vistel::fast_packet
