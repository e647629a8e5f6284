#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <string_view>

namespace vistel {

/// Collects output and writes it to a file descriptor in large pieces. A failed write (a closed pipe, say)
/// ends it: from then on everything is dropped and `is_open` says so.
class Sink {
  public:
    explicit Sink(int descriptor) : descriptor_(descriptor) {}

    void put(char c) { put(std::string_view(&c, 1)); }
    void put(std::string_view text);

    /// Where `size` bytes or more may be written, up to `limit`; `commit` says how far they were.
    char* reserve(std::size_t size) {
        assert(size <= buffer_.size());
        if (buffer_.size() - used_ < size) flush();
        return buffer_.data() + used_;
    }
    char* limit() { return buffer_.data() + buffer_.size(); }
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }

    void flush();
    bool is_open() const { return open_; }
    /// 0, or the errno of the write that failed.
    int error() const { return error_; }

  private:
    const int descriptor_;
    bool open_ = true;
    int error_ = 0;
    std::size_t used_ = 0;
    std::array<char, 1 << 17> buffer_;
};

}  // namespace vistel
