#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/n2k_msg.h"

namespace pgn_vistel {

/// One stream of messages and its line in each of the trees.
struct StreamEntry {
    void* toolkit_line = nullptr;
    void* native_line = nullptr;
    std::uint32_t pgn = 0;
    std::uint8_t source = 0;
    core::StreamKeys keys{};
};

/// What tells the streams apart.
struct StreamKey {
    explicit StreamKey(const N2KMsg& msg) : pgn(msg.pgn), source(msg.source), keys(core::stream_keys(msg)) {}

    /// A key that the message has not matches every stored one; one that was not stored matches nothing else.
    bool matches(const StreamEntry& entry) const {
        if (entry.pgn != pgn || entry.source != source) return false;
        for (std::size_t i = 0; i < keys.size(); ++i)
            if (keys[i] != core::no_stream_key && keys[i] != entry.keys[i]) return false;
        return true;
    }

    std::uint32_t pgn;
    std::uint8_t source;
    core::StreamKeys keys;
};

/// The streams in the order in which they were first seen. The capacity never changes; it is 0 where a table
/// of that size cannot be had.
class StreamTable {
  public:
    explicit StreamTable(std::size_t capacity)
        : entries_(static_cast<StreamEntry*>(std::calloc(capacity, sizeof(StreamEntry)))),
          capacity_(entries_ != nullptr ? capacity : 0) {}

    StreamEntry* find(const StreamKey& key) {
        for (std::size_t i = 0; i < count_; ++i)
            if (key.matches(entries_[i])) return &entries_[i];
        return nullptr;
    }
    /// Null when the table is full.
    StreamEntry* add(const StreamKey& key) {
        if (count_ == capacity_) return nullptr;
        StreamEntry& entry = entries_[count_++];
        entry = {nullptr, nullptr, key.pgn, key.source, key.keys};
        return &entry;
    }
    void take_back_last() { --count_; }
    void clear() { count_ = 0; }

    StreamEntry* begin() { return entries_.get(); }
    StreamEntry* end() { return entries_.get() + count_; }

  private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };

    // Nothing but the entries in use is touched, so that a large capacity costs no time, nor memory where the
    // system gives it when it is used.
    std::unique_ptr<StreamEntry[], Free> entries_;
    std::size_t capacity_;
    std::size_t count_ = 0;
};

}  // namespace pgn_vistel
