#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "can/record.h"
#include "pgn_vistel/core/catalogue.h"
#include "reassembly/counters.h"
#include "reassembly/fast_packets.h"
#include "reassembly/transports.h"

namespace vistel {

/// Turns the records of a recording into messages. What is whole already passes through; the frames of the
/// transport protocol pass through too, ahead of the message that they complete.
///
/// Memory is bounded and taken once; no call allocates.
class Reassembler {
  public:
    /// Gets every message with the time of its last frame. The message is valid during the call, which must
    /// not put a record itself.
    using Sink = std::function<void(const N2KMsg& msg, const RecordTime& time)>;

    /// The definitions say which PGNs are fast packets.
    explicit Reassembler(Sink sink,
                         pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected)
        : sink_(std::move(sink)), definitions_(definitions) {}
    Reassembler(const Reassembler&) = delete;
    Reassembler& operator=(const Reassembler&) = delete;

    void put(const Record& record);

    /// Counts what is still open as incomplete. The reassembler is then as new, but for its counters.
    void finish();

    const ReassemblyCounters& counters() const { return counters_; }

  private:
    void emit(const N2KMsg& msg, const RecordTime& time);

    Sink sink_;
    pgn_vistel::core::Definitions definitions_;
    bool emitting_ = false;
    ReassemblyCounters counters_;
    FastPackets fast_packets_{counters_};
    Transports transports_{counters_};
};

}  // namespace vistel
