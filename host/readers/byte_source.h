#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "text/result.h"

namespace vistel {

/// Bytes of a file, pipe or terminal through one buffer of fixed size.
class ByteSource {
  public:
    enum class [[nodiscard]] Fill{
        data,    ///< there are new bytes
        end,     ///< there will be no more
        failed,  ///< there will be no more, for the reason in error()
        idle,    ///< nothing came: not waited, waited long enough, or interrupted by a signal
    };
    enum class Wait { no, yes };

    static constexpr std::size_t capacity = std::size_t{1} << 20;

    ByteSource() = default;
    ~ByteSource();
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    /// Opens a file, or standard input for "-". Once only.
    Status open(const std::string& path);

    /// Reads from an open descriptor, which is closed in the end unless it is standard input.
    Status attach(int descriptor);

    /// Longest wait of one fill() for a pipe or terminal, in milliseconds; negative for no limit.
    void set_patience(int milliseconds) { patience_ = milliseconds; }

    /// Called before every wait for a pipe or terminal.
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
    const std::string& error() const { return error_; }

    /// Whether the bytes come from a file, which is there from the first to the last without waiting.
    bool is_file() const { return is_file_; }

    std::uint64_t consumed() const { return received_ - (end_ - begin_); }
    std::uint64_t total() const { return total_; }  ///< 0 when unknown

  private:
    int descriptor_ = -1;
    bool is_file_ = false;
    bool ended_ = false;
    int patience_ = -1;
    std::function<void()> before_wait_;
    std::uint64_t received_ = 0;
    std::uint64_t total_ = 0;
    std::string error_;
    std::unique_ptr<char[]> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

}  // namespace vistel
