#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "assembly/counters.h"
#include "assembly/fast_packet.h"
#include "assembly/transport.h"
#include "readers/record.h"

namespace vistel {

/// Turns the records of a recording into messages. What is whole already passes through; the frames of the
/// transport protocol pass through too, ahead of the message that they complete.
///
/// Memory is bounded and taken once; no call allocates.
class Assembler {
  public:
    /// Gets every message with the time of its last frame. The message is valid during the call, which must
    /// not put a record itself.
    using Sink = std::function<void(const N2KMsg& msg, const RecordTime& time)>;

    explicit Assembler(Sink sink) : sink_(std::move(sink)) {}
    Assembler(const Assembler&) = delete;
    Assembler& operator=(const Assembler&) = delete;

    void put(const Record& record);

    /// Counts what is still open as incomplete. The assembler is then as new, but for its counters.
    void finish();

    const AssemblyCounters& counters() const { return counters_; }

  private:
    void give(const N2KMsg& msg, const RecordTime& time);

    Sink sink_;
    AssemblyCounters counters_;
    FastPacketPgns fast_packet_pgns_;
    FastPackets fast_packets_{counters_};
    Transports transports_{counters_};
};

}  // namespace vistel
