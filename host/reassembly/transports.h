#pragma once

#include <bitset>
#include <cstdint>

#include "pgn_vistel/n2k_msg.h"
#include "reassembly/counters.h"
#include "reassembly/moment.h"
#include "reassembly/slot_table.h"

namespace vistel {

/// Reassembles messages of the transport protocol, as a listener that does not take part. A session is
/// announced on PGN 60416, to everyone (BAM) or to one device (RTS), and its packets of 7 bytes come on PGN
/// 60160. Each pair of addresses has one session at a time. One that is complete is remembered for a while,
/// as packets may be asked for again although they were heard here.
class Transports {
  public:
    static constexpr std::uint32_t control_pgn = 60416, data_pgn = 60160;

    explicit Transports(ReassemblyCounters& counters) : counters_(counters) {}

    /// Takes a frame of either PGN. The message that it completes, valid until the next call, or null.
    const N2KMsg* put(const N2KMsg& frame, const Moment& now);

    /// Abandons what has timed out.
    void sweep(const Moment& now);

    /// Abandons everything.
    void finish();

  private:
    static constexpr unsigned most_packets = 255;

    struct Slot {
        Moment last;
        unsigned packets;  // announced
        unsigned received;
        std::bitset<most_packets + 1> have;  // by packet number, from 1
        N2KMsg message;

        bool complete() const { return received == packets; }
    };
    using Slots = SlotTable<Slot, 64>;

    void announce(const N2KMsg& frame, const Moment& now);
    void control(const N2KMsg& frame, const Moment& now);
    const N2KMsg* data(const N2KMsg& frame, const Moment& now);
    void abandon(std::size_t i);

    ReassemblyCounters& counters_;
    Slots slots_;
};

}  // namespace vistel
