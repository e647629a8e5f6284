#pragma once

#include <cstdint>

#include "can/transport_protocol.h"
#include "pgn_vistel/n2k_msg.h"
#include "reassembly/losses.h"
#include "reassembly/moment.h"
#include "reassembly/slot_table.h"

namespace vistel {

/// Reassembles messages of the transport protocol, as a listener that does not take part. A session is
/// announced to everyone (BAM) or to one device (RTS). Each pair of addresses has one session at a time. One
/// that is complete is remembered for a while, as packets may be asked for again although they were heard
/// here.
class Transports {
  public:
    explicit Transports(Losses& losses) : losses_(losses) {}

    /// Takes a frame of either PGN. `at_destination` is what the clock of the one shows to whom it is sent.
    /// The message that it completes, valid until the next call, or null.
    const N2KMsg* put(const N2KMsg& frame, const Moment& now, const Moment& at_destination);

    /// Abandons what has not been heard of for too many frames, the last of which is number `frame`.
    void sweep(std::uint64_t frame);

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
        /// Whether all packets before this one are there and none behind them.
        bool awaits(unsigned number) const {
            unsigned next = 1;
            while (has(next)) ++next;
            return number == next && received + 1 == next;
        }
    };
    using Slots = SlotTable<Slot, 256, 0>;  // one for each address and some more

    void announce(const N2KMsg& frame, const Moment& now);
    void control(const N2KMsg& frame, const Moment& now, const Moment& at_destination);
    const N2KMsg* data(const N2KMsg& frame, const Moment& now);
    bool goes_on(std::size_t i, unsigned number, const Moment& now) const;
    void abandon(std::size_t i);

    Losses& losses_;
    Slots slots_;
};

}  // namespace vistel
