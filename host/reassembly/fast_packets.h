#pragma once

#include <array>
#include <cstdint>

#include "can/fast_packet.h"
#include "can/identifier.h"
#include "pgn_vistel/n2k_msg.h"
#include "reassembly/losses.h"
#include "reassembly/moment.h"
#include "reassembly/slot_table.h"

namespace vistel {

/// Reassembles fast packets.
///
/// A device numbers its messages by sequence, so that the pieces of two of them do not mix. Frames may come
/// in any order and more than once. A message that misses some is abandoned when its sequence is begun again
/// or by far overtaken, when its source has gone on for 750 ms without it, and after many frames of the bus.
///
/// Time in which the source was not heard at all does not count: recordings stall, and their clocks are set.
/// Frames may be lost there, too, and a sequence comes back after eight messages, so that the frame behind a
/// pause could be that of another message. It is taken when it is the very next one, and the message comes
/// out when no frame behind the pause has been found without the ones before it.
class FastPackets {
  public:
    explicit FastPackets(Losses& losses) : losses_(losses) {}

    /// Takes a frame. The message that it completes, valid until the next call, or null.
    const N2KMsg* put(const N2KMsg& frame, const Moment& now);

    /// Abandons what has not been heard of for too many frames, the last of which is number `frame`.
    void sweep(std::uint64_t frame);

    /// Abandons everything, and is then as new.
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
        std::uint64_t paused_behind;  // the number of the frame after which its source paused, or 0

        bool has(unsigned number) const { return (received >> number & 1) != 0; }
        bool announced() const { return has(0); }
        bool fits(unsigned number) const;
        bool holds(unsigned number, const std::uint8_t* bytes, unsigned count) const;
        bool awaits(unsigned number) const { return received == (std::uint32_t{1} << number) - 1; }
        void store(unsigned number, const std::uint8_t* bytes, unsigned count);
        void drop(unsigned number) { received &= ~(std::uint32_t{1} << number); }
        bool complete() const { return announced() && received == all; }
    };
    /// Each frame tells of one message at the most, so that no more can be open without being overdue: 16 for
    /// each of the 252 addresses that there are.
    using Slots = SlotTable<Slot, longest_absence, fast_packet::sequence_bits>;

    /// The frame by which a source completed its last message. It may come again, like any other.
    struct Completion {
        std::uint64_t key = 0;
        Moment moment = {};
        std::uint8_t data[max_frame_bytes] = {};
    };

    std::size_t open(std::uint64_t key, const Moment& now);
    void abandon(std::size_t i);
    void overtake(std::uint64_t key);
    std::size_t put_first(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                          const Moment& now);
    std::size_t put_later(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                          const Moment& now);
    void fill_message(const Slot& slot, const N2KMsg& frame);

    bool repeats_completion(std::uint64_t key, const N2KMsg& frame, const Moment& now) const;
    bool goes_on(std::size_t i, const N2KMsg& frame, unsigned size, const Moment& now);
    void lose_orphans(std::uint64_t key, unsigned frames = 1);

    Losses& losses_;
    Slots slots_;
    std::array<Completion, 256> completions_;  // by source
    std::uint64_t last_orphan_ = 0;            // the number of the last frame whose message had not begun
    N2KMsg message_{};
};

}  // namespace vistel
