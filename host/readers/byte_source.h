#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "readers/byte_input.h"

namespace vistel {

/// Bytes of an input through one buffer of fixed size.
class ByteSource {
  public:
    using Fill = ByteInput::Fill;
    enum class Wait { no, yes };

    static constexpr std::size_t capacity = std::size_t{1} << 20;

    /// Takes the bytes of `input`. Once only, before anything else.
    void attach(std::unique_ptr<ByteInput> input);

    /// Longest wait of one fill() for an input that is no file, in milliseconds; negative for no limit.
    void set_patience(int milliseconds) { patience_ = milliseconds; }

    /// Called before every such wait.
    void set_before_wait(std::function<void()> call) { before_wait_ = std::move(call); }

    /// Bytes that are there and not consumed. Valid until the next fill().
    std::string_view unread() const { return {buffer_.get() + begin_, end_ - begin_}; }
    void consume(std::size_t size) {
        assert(size <= end_ - begin_);
        begin_ += size;
    }

    /// Reads some more. The buffer must not be full.
    Fill fill(Wait wait);

    bool ended() const { return ended_; }
    /// Why a fill() failed; empty as long as none did.
    const std::string& error() const { return input_->error(); }

    /// Whether the bytes come from a file, which is there from the first to the last without waiting.
    bool is_file() const { return input_ && input_->is_file(); }

    /// When the last bytes arrived: those that made the record whole which was read last. 0 for a recording.
    std::int64_t arrival() const { return arrival_; }

    std::uint64_t consumed() const { return received_ - (end_ - begin_); }
    /// How far what was consumed is on the way to total().
    std::uint64_t position() const { return input_ ? input_->position(consumed()) : 0; }
    std::uint64_t total() const { return input_ ? input_->total() : 0; }  ///< 0 when unknown

  private:
    std::unique_ptr<ByteInput> input_;
    bool ended_ = false;
    int patience_ = -1;
    std::function<void()> before_wait_;
    std::uint64_t received_ = 0;
    std::int64_t arrival_ = 0;
    std::unique_ptr<char[]> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

}  // namespace vistel
