#pragma once

#include <cstdint>

#include "can/transport_protocol.h"
#include "pgn_vistel/n2k_msg.h"
#include "reassembly/counters.h"
#include "reassembly/moment.h"
#include "reassembly/slot_table.h"

namespace vistel {

/// Reassembles messages of the transport protocol, as a listener that does not take part. A session is
/// announced to everyone (BAM) or to one device (RTS). Each pair of addresses has one session at a time. One
/// that is complete is remembered for a while, as packets may be asked for again although they were heard
/// here.
class Transports {
  public:
    explicit Transports(ReassemblyCounters& counters) : counters_(counters) {}

    /// Takes a frame of either PGN. The message that it completes, valid until the next call, or null.
    const N2KMsg* put(const N2KMsg& frame, const Moment& now);

    /// Abandons what has timed out.
    void sweep(const Moment& now);

    /// Abandons everything.
    void finish();

  private:
    static constexpr unsigned word_bits = 64;

    struct Slot {
        unsigned packets;  // announced
        unsigned received;
        std::uint64_t have[transport_protocol::most_packets / word_bits + 1];  // by packet number, from 1
        N2KMsg message;

        bool has(unsigned number) const { return (have[number / word_bits] >> number % word_bits & 1) != 0; }
        void set(unsigned number) { have[number / word_bits] |= std::uint64_t{1} << number % word_bits; }
        bool complete() const { return received == packets; }
    };
    using Slots = SlotTable<Slot, 64, 0>;

    void announce(const N2KMsg& frame, const Moment& now);
    void control(const N2KMsg& frame, const Moment& now);
    const N2KMsg* data(const N2KMsg& frame, const Moment& now);
    void abandon(std::size_t i);

    ReassemblyCounters& counters_;
    Slots slots_;
};

}  // namespace vistel
