#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "can/record.h"
#include "pgn_vistel/core/catalogue.h"
#include "reassembly/counters.h"
#include "reassembly/fast_packets.h"
#include "reassembly/losses.h"
#include "reassembly/moment.h"
#include "reassembly/transports.h"

namespace vistel {

/// Turns the records of a recording into messages. What is whole already passes through; the frames of the
/// transport protocol pass through too, ahead of the message that they complete. Buses are kept apart.
///
/// Memory is bounded and taken once for each bus, with its first frame; no other call allocates.
class Reassembler {
  public:
    /// Gets every message with the time of its last frame. The message is valid during the call, which must
    /// not put a record itself. It came on the bus of the record that was put.
    using Sink = std::function<void(const N2KMsg& msg, const RecordTime& time)>;

    /// The definitions say which PGNs are fast packets.
    explicit Reassembler(Sink sink,
                         pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected)
        : sink_(std::move(sink)), definitions_(definitions) {}
    Reassembler(const Reassembler&) = delete;
    Reassembler& operator=(const Reassembler&) = delete;

    /// Tells the bus and the source of every message that stays incomplete, out of put() and finish().
    void tell_lost(std::function<void(std::uint8_t bus, std::uint8_t source)> lost) {
        losses_.tell([this, lost = std::move(lost)](std::uint8_t source) {
            lost(static_cast<std::uint8_t>(current_number_), source);
        });
    }

    void put(const Record& record);

    /// Counts what is still open as incomplete. The reassembler is then as new, but for its counters.
    void finish();

    const ReassemblyCounters& counters() const { return counters_; }
    const Losses& losses() const { return losses_; }

  private:
    struct Bus {
        explicit Bus(Losses& losses) : fast_packets(losses), transports(losses) {}

        std::uint64_t frames = 0;
        std::array<SourceClock, 256> clocks;
        FastPackets fast_packets;
        Transports transports;
    };

    Bus& bus(std::uint8_t number) {
        if (number != current_number_) [[unlikely]]
            change_bus(number);
        return *current_;
    }
    void change_bus(std::uint8_t number);
    void emit(const N2KMsg& msg, const RecordTime& time);

    Sink sink_;
    pgn_vistel::core::Definitions definitions_;
    bool emitting_ = false;
    ReassemblyCounters counters_;
    Losses losses_{counters_};
    std::array<std::unique_ptr<Bus>, 256> buses_;
    int current_number_ = -1;
    Bus* current_ = nullptr;
};

}  // namespace vistel
