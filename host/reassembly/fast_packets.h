#pragma once

#include <cstdint>

#include "can/fast_packet.h"
#include "pgn_vistel/n2k_msg.h"
#include "reassembly/counters.h"
#include "reassembly/moment.h"
#include "reassembly/slot_table.h"

namespace vistel {

/// Reassembles fast packets.
///
/// A device numbers its messages by sequence, so that the pieces of two of them do not mix. Frames may come
/// in any order and more than once. A message that misses some is abandoned when its sequence is begun again
/// or by far overtaken, and after 750 ms.
class FastPackets {
  public:
    explicit FastPackets(ReassemblyCounters& counters) : counters_(counters) {}

    /// Takes a frame. The message that it completes, valid until the next call, or null.
    const N2KMsg* put(const N2KMsg& frame, const Moment& now);

    /// Abandons what has timed out.
    void sweep(const Moment& now);

    /// Abandons everything.
    void finish();

  private:
    struct Slot {
        std::uint32_t received;  // bit k: frame k is here
        std::uint8_t total;      // bytes of the message, once frame 0 is here
        std::uint8_t priority;
        std::uint8_t last_number;                      // of the frame that came last
        std::uint8_t overtaken_by;                     // later messages of the same kind that have begun
        std::uint32_t all;                             // what `received` is when the message is complete
        std::uint8_t given[fast_packet::most_frames];  // bytes in each frame
        std::uint8_t data[fast_packet::most_bytes];

        bool has(unsigned number) const { return (received >> number & 1) != 0; }
        bool announced() const { return has(0); }
        bool fits(unsigned number) const;
        bool holds(unsigned number, const std::uint8_t* bytes, unsigned count) const;
        void store(unsigned number, const std::uint8_t* bytes, unsigned count);
        void drop(unsigned number) { received &= ~(std::uint32_t{1} << number); }
        bool complete() const { return announced() && received == all; }
    };
    using Slots = SlotTable<Slot, 256, fast_packet::sequence_bits>;

    std::size_t open(std::uint64_t key, const Moment& now);
    void abandon(std::size_t i);
    void overtake(std::uint64_t key);
    std::size_t put_first(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                          const Moment& now);
    std::size_t put_later(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                          const Moment& now);
    void fill_message(const Slot& slot, const N2KMsg& frame);

    ReassemblyCounters& counters_;
    Slots slots_;
    N2KMsg message_{};
};

}  // namespace vistel
