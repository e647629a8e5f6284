#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/numbers.h"
#include "core/plan.h"

namespace pgn_vistel::core {

// Where printed text goes: two classes of one shape, so that printing is written once.
//   put(char)             one ASCII character
//   put(string_view)      ASCII text
//   put_pooled(p, n)      n bytes of the pool (UTF-8)
//   put_number(write)     what write(char*) writes, at most `most_number_size` characters
//   put_character(c)      a UTF-16 unit on its own
//   room()                characters that still fit
//   mark(), remove_comma(mark)  takes ", " off the end of what was put since

/// One UTF-16 unit or code point as UTF-8.
inline char* write_utf8(char* at, std::uint32_t c) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) {
        *at++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *at++ = static_cast<char>(0xC0 | c >> 6);
        *at++ = tail(0);
    } else if (c < 0x10000) {
        *at++ = static_cast<char>(0xE0 | c >> 12);
        *at++ = tail(6);
        *at++ = tail(0);
    } else {
        *at++ = static_cast<char>(0xF0 | c >> 18);
        *at++ = tail(12);
        *at++ = tail(6);
        *at++ = tail(0);
    }
    return at;
}

/// Copies in blocks; reads and writes up to a block too far. Most texts are one block.
template <std::size_t block = 32>
char* copy_blocks(char* at, const char* from, std::size_t size) {
    static_assert(block <= pool_slack);
    std::memcpy(at, from, block);
    for (std::size_t i = block; i < size; i += block) std::memcpy(at + i, from + i, block);
    return at + size;
}

/// UTF-8 into memory that is large enough for what is printed, with `pool_slack` bytes to spare.
class Utf8Out {
  public:
    explicit Utf8Out(char* at) : at_(at) {}

    void put(char c) { *at_++ = c; }
    void put(std::string_view text) { at_ += text.copy(at_, text.size()); }
    void put_pooled(const char* text, std::size_t size) { at_ = copy_blocks(at_, text, size); }
    void put_label(const char* text, std::size_t size) { at_ = copy_blocks<64>(at_, text, size); }
    template <class Write>
    void put_number(Write write) {
        at_ = write(at_);
    }
    void put_character(std::uint32_t c) { at_ = write_utf8(at_, c); }
    /// Only texts of a bounded length are printed here.
    int room() const { return INT32_MAX; }

    char* mark() const { return at_; }
    void remove_comma(const char* mark) {
        if (at_ - mark >= 2 && at_[-2] == ',') at_ -= 2;
    }

    char* at() const { return at_; }

  private:
    char* at_;
};

/// Wide characters into a caller's buffer of any size; what does not fit is dropped. `finish` terminates the
/// text. A buffer of size 0 or a null buffer takes nothing.
class WideOut {
  public:
    WideOut(wchar_t* buf, int size)
        : begin_(buf), at_(buf), end_(buf), terminable_(buf != nullptr && size > 0) {
        if (terminable_) end_ = buf + (size - 1);
    }

    void put(char c) { put(static_cast<wchar_t>(static_cast<unsigned char>(c))); }
    void put(wchar_t c) {
        if (at_ < end_) *at_++ = c;
    }
    void put(std::string_view text) {
        const auto count = std::min(text.size(), static_cast<std::size_t>(end_ - at_));
        at_ = std::copy_n(text.data(), count, at_);
    }
    void put(std::wstring_view text) {
        const auto count = std::min(text.size(), static_cast<std::size_t>(end_ - at_));
        at_ = std::copy_n(text.data(), count, at_);
    }
    void put_pooled(const char* text, std::size_t size);
    template <class Write>
    void put_number(Write write) {
        char area[most_number_size] = {};
        put(std::string_view(area, static_cast<std::size_t>(write(area) - area)));
    }
    void put_character(std::uint32_t c) { put(static_cast<wchar_t>(c)); }
    int room() const { return static_cast<int>(end_ - at_); }

    wchar_t* mark() const { return at_; }
    void remove_comma(const wchar_t* mark) {
        if (at_ - mark >= 2 && at_[-2] == L',') at_ -= 2;
    }

    int count() const { return static_cast<int>(at_ - begin_); }
    int finish() {
        if (terminable_) *at_ = 0;
        return count();
    }

  private:
    wchar_t* begin_;
    wchar_t* at_;
    wchar_t* end_;
    bool terminable_;
};

}  // namespace pgn_vistel::core
