#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "can/record.h"
#include "readers/block_reader.h"
#include "readers/wrapping_counter.h"

namespace vistel {

/// Records that Actisense gateways exchange with a program, without what frames them in a stream:
///
///     93 length priority PGN(3) destination source time(4) n data(n)      received message
///     94 length priority PGN(3) destination n data(n)                     message to send
///     95 length time(2) identifier(4) data                                CAN frame
///     D0 length(2) destination source PGN and priority(3) control time(4) data
///
/// Lengths count what follows them, but in records from D0 to DF all before the checksum, with which every
/// record ends: all its bytes add up to 0. Other records are the gateway's own.
class BstReader {
  public:
    /// The longest one.
    static constexpr std::size_t most_bytes = 13 + N2K_MAX_PAYLOAD + 1;

    enum class Checksum { present, perhaps };

    /// Takes the record that `bytes` is. Times are since the gateway's start, of frames since the first one.
    Found read(std::span<const std::uint8_t> bytes, Checksum checksum, Record& record, Problem& problem);

    /// The same for a received message whose length byte means nothing, and which has no checksum.
    Found read_message(std::span<const std::uint8_t> bytes, Record& record, Problem& problem);

    /// Whether `bytes` is a record that these gateways send or are sent.
    static bool is_known(std::span<const std::uint8_t> bytes);

  private:
    Found read_frame(std::span<const std::uint8_t> bytes, Record& record, Problem& problem);
    void set_time(std::uint32_t milliseconds, Record& record);

    static constexpr std::int64_t message_period = std::int64_t{1} << 32, frame_period = 65536;

    WrappingCounter message_clock_{message_period, message_period / 2};
    WrappingCounter frame_clock_{frame_period, frame_period / 8};
    unsigned frame_unit_ = 0;
    std::int64_t frame_start_ = 0;  // nanoseconds of frames before those that count in frame_unit_
    std::int64_t frame_time_ = 0;
};

}  // namespace vistel
