#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>

#include "reassembly/counters.h"

namespace vistel {

/// Counts what is lost and what comes again: in all, and the frames by their source and PGN. Those of a
/// session are counted for the PGN that it carries, where that is known.
class Losses {
  public:
    struct Entry {
        std::uint32_t pgn;
        std::uint8_t source;
        std::uint64_t missing;  ///< of messages that stayed incomplete
        std::uint64_t orphans, repeated;

        std::uint64_t frames() const { return missing + orphans + repeated; }
    };

    explicit Losses(ReassemblyCounters& counters) : counters_(counters) {}

    /// Tells the source of every message that stays incomplete.
    void tell(std::function<void(std::uint8_t source)> incomplete) { incomplete_ = std::move(incomplete); }

    void incomplete_fast_packet(std::uint32_t pgn, std::uint8_t source, unsigned missing) {
        ++counters_.incomplete_fast_packets;
        incomplete(pgn, source, missing);
    }
    void incomplete_transport(std::uint32_t pgn, std::uint8_t source, unsigned missing) {
        ++counters_.incomplete_transports;
        incomplete(pgn, source, missing);
    }
    void orphans(std::uint32_t pgn, std::uint8_t source, unsigned frames = 1) {
        counters_.orphan_frames += frames;
        entry(pgn, source).orphans += frames;
    }
    void repeated(std::uint32_t pgn, std::uint8_t source) {
        ++counters_.repeated_frames;
        ++entry(pgn, source).repeated;
    }

    /// In the order in which they were first met.
    std::span<const Entry> entries() const { return {entries_.data(), size_}; }
    /// All those for which no entry was left.
    const Entry& others() const { return others_; }

  private:
    void incomplete(std::uint32_t pgn, std::uint8_t source, unsigned missing) {
        entry(pgn, source).missing += missing;
        if (incomplete_) incomplete_(source);
    }
    Entry& entry(std::uint32_t pgn, std::uint8_t source) {
        for (std::size_t i = 0; i < size_; ++i)
            if (entries_[i].pgn == pgn && entries_[i].source == source) return entries_[i];
        if (size_ == entries_.size()) return others_;
        return entries_[size_++] = {pgn, source, 0, 0, 0};
    }

    ReassemblyCounters& counters_;
    std::function<void(std::uint8_t source)> incomplete_;
    std::size_t size_ = 0;
    std::array<Entry, 512> entries_;  // a broken stream may hold any number
    Entry others_{};
};

}  // namespace vistel
