#pragma once

#include <cstdint>
#include <span>
#include <type_traits>

namespace pgn_vistel {

namespace core {
class WideOut;
}

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
void put_conversion(core::WideOut& out, const Conversion& conversion, const FormatArg& arg);

/// Bounded wide formatted printing with the conventions of the Microsoft C runtime: "%I64u", "%ls" and "%s"
/// for wide text, "%c" for a wide character, "long" of 32 bits. A size prefix "I64" without a letter reads as
/// "%I64d". Supported letters: d i u x X o c C s S f F e E g G. Conversions without an argument left print
/// nothing, "*" and "%n" are no conversions. Returns the number of characters written; output that does not
/// fit is cut.
int format_wide(wchar_t* buf, int size, const wchar_t* format, std::span<const FormatArg> args);
void format_wide(core::WideOut& out, const wchar_t* format, std::span<const FormatArg> args);

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
