#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <string_view>

#include "text/utf8.h"

namespace vistel {

/// Collects output and writes it to a file descriptor in large pieces. A failed write (a closed pipe, say)
/// ends it: from then on everything is dropped and `is_open` says so.
class Sink {
  public:
    explicit Sink(int descriptor) : descriptor_(descriptor) {}

    void put(char c) {
        if (used_ == buffer_.size()) flush();
        buffer_[used_++] = c;
    }
    void put(std::string_view text) {
        if (text.size() > buffer_.size() - used_) {
            put_slowly(text);
            return;
        }
        text.copy(buffer_.data() + used_, text.size());
        used_ += text.size();
    }
    void put(std::wstring_view text);
    /// An indented line with its end. `indent` has at most 16 characters, `text` at most 4096.
    void put_line(std::string_view indent, std::wstring_view text) {
        assert(indent.size() <= 16 && text.size() <= 4096);
        char* at = reserve(16 + text.size() * utf8_most + 1);
        at = std::copy(indent.begin(), indent.end(), at);
        at = put_utf8(at, text);
        *at++ = '\n';
        commit(at);
    }
    void put_number(std::uint64_t number);
    void put_number(std::int64_t number);
    /// The shortest form that reads back as the same number.
    void put_number(float number);
    void put_number(double number);
    /// Two upper-case hexadecimal digits a byte.
    void put_hex(const std::uint8_t* bytes, int count);

    /// Bytes put so far; and what was put since there were that many, or nothing where that is written
    /// already.
    std::uint64_t position() const { return written_ + used_; }
    std::string_view since(std::uint64_t position) const {
        if (position < written_) return {};
        const auto start = static_cast<std::size_t>(position - written_);
        return {buffer_.data() + start, used_ - start};
    }

    void flush();
    bool is_open() const { return open_; }
    /// 0, or the errno of the write that failed.
    int error() const { return error_; }

  private:
    void put_slowly(std::string_view text);
    /// Room for `size` bytes, which may be at most an eighth of the buffer.
    char* reserve(std::size_t size) {
        assert(size <= buffer_.size() / 8);
        if (buffer_.size() - used_ < size) flush();
        return buffer_.data() + used_;
    }
    void commit(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }

    const int descriptor_;
    bool open_ = true;
    int error_ = 0;
    std::uint64_t written_ = 0;
    std::size_t used_ = 0;
    std::array<char, 1 << 17> buffer_;
};

}  // namespace vistel
