#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "reassembly/moment.h"

namespace vistel {

/// The messages that are being reassembled, by key, at most `capacity` at a time. `Slot` has a member
/// `Moment last`. On a healthy bus only a few are open at once, hence the plain search.
template <class Slot, std::size_t capacity>
class SlotTable {
  public:
    static constexpr std::size_t none = capacity;

    SlotTable() {
        for (std::size_t i = 0; i < capacity; ++i) places_[i] = static_cast<std::uint16_t>(i);
    }

    std::size_t size() const { return size_; }
    bool full() const { return size_ == capacity; }
    std::uint64_t key(std::size_t i) const { return keys_[i]; }
    Slot& operator[](std::size_t i) { return slots_[places_[i]]; }

    std::size_t find(std::uint64_t key) const {
        for (std::size_t i = 0; i < size_; ++i) {
            if (keys_[i] == key) return i;
        }
        return none;
    }

    /// Position of the slot that has been silent for longest, in a table that is not empty.
    std::size_t oldest() {
        std::size_t best = 0;
        for (std::size_t i = 1; i < size_; ++i) {
            if ((*this)[i].last.frame < (*this)[best].last.frame) best = i;
        }
        return best;
    }

    /// Position of a new slot, whose contents are left over from its last use. The table must not be full.
    std::size_t add(std::uint64_t key) {
        keys_[size_] = key;
        return size_++;
    }

    /// The last slot takes over position `i`; what the removed one holds stays readable until the next add().
    void remove(std::size_t i) {
        --size_;
        keys_[i] = keys_[size_];
        std::swap(places_[i], places_[size_]);
    }

  private:
    std::size_t size_ = 0;
    std::array<std::uint64_t, capacity> keys_;
    std::array<std::uint16_t, capacity> places_;  // of the slots in use, then of the free ones
    std::array<Slot, capacity> slots_;
};

}  // namespace vistel
