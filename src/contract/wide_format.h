#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <span>
#include <type_traits>

namespace pgn_vistel {

/// Writes wide characters into a caller's buffer and stops at its end; what does not fit is dropped.
/// `finish` terminates the text. A buffer of size 0 or a null buffer takes nothing.
class WideWriter {
  public:
    WideWriter(wchar_t* buf, int size) : begin_(buf), at_(buf), end_(buf) {
        if (buf != nullptr && size > 0) end_ = buf + (size - 1);
        terminable_ = buf != nullptr && size > 0;
    }

    void put(wchar_t c) {
        if (at_ < end_) *at_++ = c;
    }
    void put(const wchar_t* text, std::size_t count) {
        const auto n = std::min(count, static_cast<std::size_t>(end_ - at_));
        at_ = std::copy_n(text, n, at_);
    }
    void fill(wchar_t c, std::int64_t count) {
        at_ = std::fill_n(at_, std::clamp<std::int64_t>(count, 0, end_ - at_), c);
    }
    /// Widens each byte to the character of the same number.
    void put_bytes(const char* text, std::size_t count) {
        const auto n = std::min(count, static_cast<std::size_t>(end_ - at_));
        at_ = std::transform(text, text + n, at_, [](char c) { return static_cast<unsigned char>(c); });
    }
    void put_text(const wchar_t* text) { put(text, std::wcslen(text)); }
    void remove_last(int count) { at_ -= count; }

    int count() const { return static_cast<int>(at_ - begin_); }
    int room() const { return static_cast<int>(end_ - at_) + (terminable_ ? 1 : 0); }
    wchar_t* at() { return at_; }
    /// Takes over characters that somebody else wrote at `at()`.
    void advance(int count) { at_ += count; }
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

/// An argument of a wide format. It knows its kind, so a conversion never reads what it was not given.
struct FormatArg {
    enum class Kind : std::uint8_t { integer, floating, character, text };

    template <class Integer>
    requires std::is_integral_v<Integer> FormatArg(Integer v)
        : kind(Kind::integer), integer(static_cast<std::int64_t>(v)) {}
    FormatArg(double v) : kind(Kind::floating), floating(v) {}
    FormatArg(const wchar_t* v) : kind(Kind::text), text(v) {}
    static FormatArg of_character(wchar_t v) {
        FormatArg arg(static_cast<std::int64_t>(v));
        arg.kind = Kind::character;
        return arg;
    }

    Kind kind;
    union {
        std::int64_t integer;
        double floating;
        const wchar_t* text;
    };
};

/// What one conversion of a format asks for, "%-08.3ld" say.
struct Conversion {
    static constexpr int none = -1;

    bool left = false, plus = false, blank = false, zero = false, alternative = false;
    int width = 0;
    int precision = none;
    int integer_bits = 32;  // size that a length prefix asks for: 8, 16, 32 or 64
    wchar_t letter = 0;     // 0: the format ended, or the letter is unknown: nothing is converted
};

/// Reads a conversion behind its "%" (not "%%") at `*format` and moves it behind what was read.
constexpr Conversion parse_conversion(const wchar_t** format);

/// Prints one argument under a conversion. Numbers are converted into each other where the kinds differ; a
/// text or character conversion without a fitting argument prints nothing.
void put_conversion(WideWriter& out, const Conversion& conversion, const FormatArg& arg);

/// Bounded wide formatted printing with the conventions of the Microsoft C runtime: "%I64u", "%ls" and "%s"
/// for wide text, "%c" for a wide character, "long" of 32 bits. A size prefix "I64" without a letter reads as
/// "%I64d". Supported letters: d i u x X o c C s S f F e E g G. Conversions without an argument left print
/// nothing, "*" and "%n" are no conversions. Returns the number of characters written; output that does not
/// fit is cut.
int format_wide(wchar_t* buf, int size, const wchar_t* format, std::span<const FormatArg> args);
void format_wide(WideWriter& out, const wchar_t* format, std::span<const FormatArg> args);

constexpr Conversion parse_conversion(const wchar_t** format) {
    const wchar_t* at = *format;
    Conversion c;
    for (;; ++at) {
        if (*at == L'-')
            c.left = true;
        else if (*at == L'+')
            c.plus = true;
        else if (*at == L' ')
            c.blank = true;
        else if (*at == L'0')
            c.zero = true;
        else if (*at == L'#')
            c.alternative = true;
        else
            break;
    }
    // Enough for every buffer; larger numbers could overflow before they are cut.
    constexpr int limit = 100000;
    const auto number = [&at] {
        int n = 0;
        for (; *at >= L'0' && *at <= L'9'; ++at)
            n = n < limit ? n * 10 + static_cast<int>(*at - L'0') : limit;
        return n < limit ? n : limit;
    };
    c.width = number();
    if (*at == L'.') {
        ++at;
        c.precision = number();
    }
    bool sized = false;
    if (at[0] == L'I' && at[1] == L'6' && at[2] == L'4') {
        c.integer_bits = 64;
        sized = true;
        at += 3;
    } else if (at[0] == L'I' && at[1] == L'3' && at[2] == L'2') {
        sized = true;
        at += 3;
    } else if (at[0] == L'l' && at[1] == L'l') {
        c.integer_bits = 64;
        at += 2;
    } else if (at[0] == L'h' && at[1] == L'h') {
        c.integer_bits = 8;
        at += 2;
    } else if (*at == L'h') {
        c.integer_bits = 16;
        ++at;
    } else if (*at == L'j') {
        c.integer_bits = 64;
        ++at;
    } else if (*at == L'l' || *at == L'w' || *at == L'I' || *at == L'z' || *at == L't' || *at == L'L') {
        ++at;
    }
    for (const wchar_t* letters = L"diuxXocCsSfFeEgG"; *letters != 0; ++letters)
        if (*at == *letters) c.letter = *letters;
    if (c.letter != 0)
        ++at;
    else if (sized)
        c.letter = L'd';
    *format = at;
    return c;
}

}  // namespace pgn_vistel
