#include "contract/wide_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "core/out.h"

namespace pgn_vistel {

using core::WideOut;

namespace {

void fill(WideOut& out, char c, std::int64_t count) {
    for (; count > 0 && out.room() > 0; --count) out.put(c);
}

// Digits of a number with its sign, laid out in the width: blanks, sign, zeros, digits, blanks.
void put_number(WideOut& out, const Conversion& c, std::string_view sign, std::string_view digits,
                std::int64_t leading_zeros, bool zero_fill) {
    const std::int64_t body = static_cast<std::int64_t>(sign.size() + digits.size()) + leading_zeros;
    const std::int64_t pad = std::max<std::int64_t>(0, c.width - body);
    if (!c.left && !zero_fill) fill(out, ' ', pad);
    out.put(sign);
    fill(out, '0', leading_zeros + (zero_fill && !c.left ? pad : 0));
    out.put(digits);
    if (c.left) fill(out, ' ', pad);
}

const char* sign_of(const Conversion& c, bool negative) {
    if (negative) return "-";
    if (c.plus) return "+";
    return c.blank ? " " : "";
}

std::int64_t saturated(double v) {
    if (std::isnan(v)) return 0;
    if (v >= 9223372036854775808.0) return INT64_MAX;
    if (v < -9223372036854775808.0) return INT64_MIN;
    return static_cast<std::int64_t>(v);
}

void put_integer(WideOut& out, const Conversion& c, const FormatArg& arg) {
    const std::int64_t value = arg.kind == FormatArg::Kind::floating ? saturated(arg.floating) : arg.integer;
    const int drop = 64 - c.integer_bits;
    const bool is_signed = c.letter == L'd' || c.letter == L'i';
    std::uint64_t magnitude = (static_cast<std::uint64_t>(value) << drop) >> drop;
    const char* sign = "";
    if (is_signed) {
        const std::int64_t narrowed =
            static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << drop) >> drop;
        sign = sign_of(c, narrowed < 0);
        magnitude =
            narrowed < 0 ? 0 - static_cast<std::uint64_t>(narrowed) : static_cast<std::uint64_t>(narrowed);
    } else if (c.alternative && magnitude != 0 && (c.letter == L'x' || c.letter == L'X')) {
        sign = c.letter == L'x' ? "0x" : "0X";
    }

    char buffer[core::most_number_size];  // 64 bits in octal take 22
    char* end = std::end(buffer);
    char* digits = end;
    const bool is_zero_without_digits = magnitude == 0 && c.precision == 0;
    if (c.letter == L'x' || c.letter == L'X' || c.letter == L'o') {
        const int shift = c.letter == L'o' ? 3 : 4;
        const char* const alphabet = c.letter == L'x' ? "0123456789abcdef" : "0123456789ABCDEF";
        do {
            *--digits = alphabet[magnitude & ((1u << shift) - 1)];
            magnitude >>= shift;
        } while (magnitude != 0);
    } else {
        digits = buffer;
        end = core::write_unsigned(buffer, magnitude);
    }
    if (is_zero_without_digits) digits = end;
    const auto count = static_cast<std::size_t>(end - digits);
    std::int64_t zeros = std::max<std::int64_t>(0, c.precision - static_cast<std::int64_t>(count));
    // An alternative octal number begins with a zero.
    if (c.alternative && c.letter == L'o' && zeros == 0 && (count == 0 || *digits != '0')) zeros = 1;
    put_number(out, c, sign, {digits, count}, zeros, c.zero && c.precision == Conversion::none);
}

/// Of a number in scientific form.
int exponent_of(const char* number, const char* end) {
    const char* const sign = std::find(number, end, 'e') + 1;
    int exponent = 0;
    std::from_chars(sign + 1, end, exponent);
    return *sign == '-' ? -exponent : exponent;
}

void put_floating(WideOut& out, const Conversion& c, const FormatArg& arg) {
    const double value =
        arg.kind == FormatArg::Kind::floating ? arg.floating : static_cast<double>(arg.integer);
    const char* const sign = sign_of(c, std::signbit(value));
    const double magnitude = std::fabs(value);
    if (!std::isfinite(value)) {
        put_number(out, c, sign, std::isnan(value) ? "nan" : "inf", 0, false);
        return;
    }
    const int wanted = c.precision == Conversion::none ? 6 : c.precision;
    // No double has more than 1074 decimals; what a larger precision asks for beyond them never fits a
    // buffer.
    constexpr int precision_limit = 1100;
    char buffer[310 + 1 + precision_limit + 8];
    const auto write = [&](std::chars_format form, int precision) {
        return std::to_chars(buffer, std::end(buffer), magnitude, form, precision).ptr;
    };
    int precision = std::min(wanted, precision_limit);
    auto form = std::chars_format::fixed;
    if (c.letter == L'e' || c.letter == L'E') form = std::chars_format::scientific;
    if (c.letter == L'g' || c.letter == L'G') {
        form = std::chars_format::general;
        if (c.alternative) {
            // As the general form, but with all the digits that the precision asks for.
            precision = std::max(precision, 1);
            const char* const exponent_end = write(std::chars_format::scientific, precision - 1);
            const int exponent = exponent_of(buffer, exponent_end);
            const bool is_fixed = exponent >= -4 && exponent < precision;
            form = is_fixed ? std::chars_format::fixed : std::chars_format::scientific;
            precision -= 1 + (is_fixed ? exponent : 0);
        }
    }
    char* end = write(form, precision);
    if (c.alternative && precision == 0) {
        // The point stands even where no digit follows it.
        char* const exponent = std::find(buffer, end, 'e');
        std::copy_backward(exponent, end, end + 1);
        *exponent = '.';
        ++end;
    }
    if (c.letter == L'E' || c.letter == L'G') std::replace(buffer, end, 'e', 'E');
    put_number(out, c, sign, {buffer, static_cast<std::size_t>(end - buffer)}, 0, c.zero);
}

void put_string(WideOut& out, const Conversion& c, const wchar_t* text, std::int64_t length) {
    const std::int64_t pad = std::max<std::int64_t>(0, c.width - length);
    if (!c.left) fill(out, ' ', pad);
    out.put(std::wstring_view(text, static_cast<std::size_t>(length)));
    if (c.left) fill(out, ' ', pad);
}

}  // namespace

void put_conversion(WideOut& out, const Conversion& c, const FormatArg& arg) {
    const bool is_number = arg.kind == FormatArg::Kind::integer || arg.kind == FormatArg::Kind::floating;
    switch (c.letter) {
        case L'd':
        case L'i':
        case L'u':
        case L'x':
        case L'X':
        case L'o':
            if (is_number) put_integer(out, c, arg);
            break;
        case L'f':
        case L'F':
        case L'e':
        case L'E':
        case L'g':
        case L'G':
            if (is_number) put_floating(out, c, arg);
            break;
        case L'c':
        case L'C':
            if (arg.kind == FormatArg::Kind::character) {
                const auto character = static_cast<wchar_t>(arg.integer);
                put_string(out, c, &character, 1);
            }
            break;
        case L's':
        case L'S':
            if (arg.kind == FormatArg::Kind::text && arg.text != nullptr) {
                // Never look further than the text may reach: up to the precision, or to the buffer's end.
                const std::int64_t bound = c.precision == Conversion::none ? INT32_MAX : c.precision;
                std::int64_t length = 0;
                while (length < bound && arg.text[length] != 0) ++length;
                put_string(out, c, arg.text, length);
            }
            break;
        default: break;
    }
}

void format_wide(WideOut& out, const wchar_t* format, std::span<const FormatArg> args) {
    std::size_t used = 0;
    for (const wchar_t* at = format; *at != 0;) {
        if (*at != L'%') {
            out.put(*at++);
        } else if (at[1] == L'%') {
            out.put('%');
            at += 2;
        } else {
            ++at;
            const Conversion conversion = parse_conversion(&at);
            if (conversion.letter != 0 && used < args.size()) put_conversion(out, conversion, args[used++]);
        }
    }
}

int format_wide(wchar_t* buf, int size, const wchar_t* format, std::span<const FormatArg> args) {
    WideOut out(buf, size);
    format_wide(out, format, args);
    return out.finish();
}

}  // namespace pgn_vistel
