#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "pgn_vistel/n2k_msg.h"

namespace vistel {

/// The latest message of each stream since the last frame of the display, in the order in which the streams
/// first had one. A stream is a PGN of a source with its stream keys. Memory is bounded: where the streams
/// become too many, all are forgotten.
class LatestMessages {
  public:
    /// Takes a message; true when it took the place of an earlier one that was never shown.
    bool put(const N2KMsg& msg);

    /// Hands every pending message to `show` and forgets that they were pending.
    template <class Show>
    void show_pending(Show show) {
        for (N2KMsg* const msg : pending_) show(*msg);
        pending_.clear();
        ++frame_;
    }

    /// Messages that were pending when their streams became too many to keep: they are never shown.
    std::uint64_t dropped() const { return dropped_; }

    /// As if nothing had been put.
    void clear();

  private:
    struct Key {
        std::uint32_t pgn;
        std::uint8_t source;
        std::array<std::uint8_t, 4> keys;
        auto operator<=>(const Key&) const = default;
    };
    struct Entry {
        N2KMsg msg;
        std::uint64_t frame = 0;  // in which it is pending
    };
    // More than the window has room for, and a bound for the memory.
    static constexpr std::size_t most_streams = 4096;

    std::map<Key, Entry> streams_;
    std::vector<N2KMsg*> pending_;
    std::uint64_t frame_ = 1;
    std::uint64_t dropped_ = 0;
};

}  // namespace vistel
