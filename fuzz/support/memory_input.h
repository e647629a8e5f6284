#pragma once

#include <sanitizer/asan_interface.h>

#include "fuzz.h"
#include "readers/byte_input.h"

namespace fuzz {

/// The bytes of an input as a file, which comes as a whole, or as a pipe, which brings a few at a time and
/// has nothing in between. A few bytes behind those that were given may not be touched until there are more.
class MemoryInput final : public vistel::ByteInput {
  public:
    /// `most` bytes at a time, or 0 for a file.
    MemoryInput(std::span<const std::uint8_t> bytes, std::size_t most)
        : bytes_(bytes), total_(bytes.size()), most_(most) {}
    ~MemoryInput() override { guard({}); }

    Fill read(std::span<char> room, int patience, std::size_t& size) override {
        guard({});
        const bool pauses = most_ > 0 && !paused_;
        paused_ = pauses;
        if (pauses) {
            if (patience != 0) ++waits_;
            guard(room);
            return Fill::idle;
        }
        size = std::min({bytes_.size(), room.size(), most_ > 0 ? most_ : bytes_.size()});
        if (size > 0) std::memcpy(room.data(), bytes_.data(), size);
        bytes_ = bytes_.subspan(size);
        guard(room.subspan(size));
        return size > 0 ? Fill::data : Fill::end;
    }
    const std::string& error() const override { return none_; }
    bool is_file() const override { return most_ == 0; }
    std::uint64_t total() const override { return is_file() ? total_ : 0; }

    /// How often somebody would have waited in vain.
    std::uint64_t waits() const { return waits_; }

  private:
    void guard(std::span<char> room) {
        __asan_unpoison_memory_region(guarded_.data(), guarded_.size());
        guarded_ = room.first(std::min<std::size_t>(room.size(), 256));
        __asan_poison_memory_region(guarded_.data(), guarded_.size());
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t total_, most_;
    bool paused_ = true;  // a pipe begins with bytes
    std::uint64_t waits_ = 0;
    std::span<char> guarded_;
    std::string none_;
};

}  // namespace fuzz
