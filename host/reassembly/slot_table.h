#pragma once

#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "reassembly/moment.h"

namespace vistel {

/// The messages that are being reassembled, by key, at most `capacity` at a time. `Slot` is what is kept of
/// one.
///
/// Keys that differ in their lowest `group_bits` alone belong together and are found together. What a frame
/// costs does not depend on the number of slots: keys are hashed, and the slots stand in a list by the frame
/// by which something was heard of them.
template <class Slot, std::size_t capacity, unsigned group_bits>
class SlotTable {
  public:
    static constexpr std::size_t none = capacity;

    SlotTable() { heads_.fill(end); }

    std::size_t size() const { return size_; }
    bool full() const { return size_ == capacity; }

    Slot& operator[](std::size_t i) { return slots_[i]; }
    const Slot& operator[](std::size_t i) const { return slots_[i]; }
    std::uint64_t key(std::size_t i) const { return entries_[i].key; }
    const Moment& last(std::size_t i) const { return entries_[i].last; }

    std::size_t find(std::uint64_t key) const {
        std::size_t i = heads_[bucket_of(key)];
        while (i != end && entries_[i].key != key) i = entries_[i].next;
        return i;
    }

    /// Calls `visit` with each slot of the key's group. It may remove that slot.
    template <class Visit>
    void visit_group(std::uint64_t key, Visit visit) {
        for (std::size_t i = heads_[bucket_of(key)]; i != end;) {
            const std::size_t next = entries_[i].next;
            if ((entries_[i].key ^ key) >> group_bits == 0) visit(i);
            i = next;
        }
    }

    /// The slot that has been silent for longest, in a table that is not empty.
    std::size_t oldest() const {
        assert(size_ > 0);
        return oldest_;
    }

    /// A new slot, heard of `now`. Its contents are left over from its last use, or all zero. The table must
    /// not be full, nor have the key.
    std::size_t add(std::uint64_t key, const Moment& now) {
        assert(!full() && find(key) == none);
        std::size_t i = free_;
        if (i != end) {
            free_ = entries_[i].next;
        } else {
            i = used_++;
            slots_[i] = Slot{};
        }
        ++size_;
        Entry& entry = entries_[i];
        entry.key = key;
        Index& head = heads_[bucket_of(key)];
        entry.next = head;
        head = static_cast<Index>(i);
        append(i, now);
        return i;
    }

    /// Notes that something was heard of a slot `now`, by a frame of its sender.
    void touch(std::size_t i, const Moment& now) {
        if (i == newest_) {
            entries_[i].last = now;
            return;
        }
        unlink(i);
        append(i, now);
    }

    /// What a slot holds stays readable until the next add().
    void remove(std::size_t i) {
        unlink(i);
        Index* link = &heads_[bucket_of(entries_[i].key)];
        while (*link != i) link = &entries_[*link].next;
        *link = entries_[i].next;
        entries_[i].next = free_;
        free_ = static_cast<Index>(i);
        --size_;
    }

  private:
    using Index = std::uint16_t;
    static constexpr Index end = capacity;
    static_assert(std::has_single_bit(capacity) && capacity < 0x8000);
    static constexpr std::size_t buckets = 2 * capacity;

    struct Entry {
        std::uint64_t key;
        Moment last;
        Index next;          // with this hash, or free
        Index older, newer;  // by `last`
    };

    static_assert(std::is_trivially_default_constructible_v<Slot> &&
                      std::is_trivially_default_constructible_v<Entry>,
                  "nothing is written before its use, so that a table takes the memory that is used of it");

    static std::size_t bucket_of(std::uint64_t key) {
        constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;  // 2 to the 64th by the golden ratio
        return static_cast<std::size_t>((key >> group_bits) * multiplier >> (64 - std::countr_zero(buckets)));
    }

    void append(std::size_t i, const Moment& now) {
        if (oldest_ == end) {
            oldest_ = static_cast<Index>(i);
        } else {
            entries_[newest_].newer = static_cast<Index>(i);
        }
        entries_[i].last = now;
        entries_[i].older = newest_;
        entries_[i].newer = end;
        newest_ = static_cast<Index>(i);
    }

    void unlink(std::size_t i) {
        const Entry& entry = entries_[i];
        (entry.older == end ? oldest_ : entries_[entry.older].newer) = entry.newer;
        (entry.newer == end ? newest_ : entries_[entry.newer].older) = entry.older;
    }

    std::size_t size_ = 0;
    std::size_t used_ = 0;               // slots that have ever been in use
    Index free_ = end;                   // of the slots that were in use, the one to take next
    Index oldest_ = end, newest_ = end;  // by the frame when something was heard of them
    std::array<Index, buckets> heads_;
    std::array<Entry, capacity> entries_;
    std::array<Slot, capacity> slots_;
};

}  // namespace vistel
