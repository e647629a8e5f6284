#include "contract/value_printer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <cwchar>

#include "contract/store.h"
#include "contract/text_copy.h"
#include "contract/values.h"
#include "core/out.h"
#include "pgn_vistel/core/value.h"

namespace pgn_vistel {

namespace {

// By tag, as the text interface has them: "%I64" without a letter.
constexpr const wchar_t* type_formats[] = {
    L"%5q", L"%5q", L"%8q", L"%hu",   L"%hd",  L"%hu",
    L"%hd", L"%lu", L"%ld", L"%I64u", L"%I64", L"%#2ld:%02d:%02d",
    L"%c",  L"%c",  L"%c",  L"%ls",   L"%ls",  L"%ls",
};

constexpr int type_count = static_cast<int>(std::size(type_formats));

constexpr bool is_float(int type) {
    return type == CV_FLOAT || type == CV_FLOAT_PLAIN || type == CV_DOUBLE;
}
constexpr bool is_integer(int type) {
    return type >= CV_U8 && type <= CV_I64;
}

// A double is shown with the precision of a single; the wide range of a double would not fit one.
float float_of(const ConvValue& v) {
    const core::Value::Number number{bits_of(v)};
    return v.type == CV_DOUBLE ? static_cast<float>(number.f64()) : number.f32();
}

// ---- what a "q" conversion comes to ----

struct Significant {
    int digits;         // n: significant digits
    int most_decimals;  // 0: no cap
};

struct Decimals {
    int width;
    int precision;
};

// Counts the integer digits of the value against the significant ones; what is left become decimals.
Decimals decimals_for(const Significant& q, float value) {
    const float magnitude = std::floor(std::fabs(value));
    const std::int64_t whole = magnitude < 2147483648.0f ? static_cast<std::int64_t>(magnitude) : INT32_MAX;
    int integer_digits = 0;
    int precision = 0;
    if (whole < 1) {
        precision = std::max(q.digits, 0);
    } else {
        integer_digits = 1;
        std::int64_t limit = 10;
        if (q.digits >= 2) {
            while (integer_digits < q.digits) {
                if (whole < limit) {
                    precision = q.digits - integer_digits;
                    break;
                }
                ++integer_digits;
                limit = std::min<std::int64_t>(limit * 10, INT32_MAX + std::int64_t{1});
            }
        }
    }
    if (q.most_decimals > 0) precision = std::min(precision, q.most_decimals);
    int width = integer_digits + precision;
    if (precision > 0) ++width;          // the point
    if (precision == q.digits) ++width;  // the zero in front of it
    return {width, precision};
}

// Figures such as "+8.2" read as a whole number and as a decimal one; the first decimal is the cap.
Significant read_figures(const wchar_t* text) {
    constexpr double limit = 100000;  // beyond every buffer
    if (*text == L'+' || *text == L' ') ++text;
    double whole = 0;
    for (; *text >= L'0' && *text <= L'9'; ++text) whole = std::min(whole * 10 + (*text - L'0'), limit);
    double decimal = whole;
    if (*text == L'.') {
        ++text;
        double place = 0.1;
        for (int i = 0; i < 18 && *text >= L'0' && *text <= L'9'; ++text, ++i, place /= 10)
            decimal += place * (*text - L'0');
    }
    const int n = static_cast<int>(whole);
    return {n, std::min(static_cast<int>((decimal + 0.01 - n) * 10), n)};
}

// ---- acceptance of a caller's format ----

enum class FormatClass { refused, floating, integer_32, unsigned_64, signed_64, text, character };

FormatClass class_of(const wchar_t* format) {
    if (format == nullptr) return FormatClass::refused;
    const wchar_t* at = format;
    while (*at != 0 && (*at != L'%' || at[1] == L'%')) at += *at == L'%' ? 2 : 1;
    if (*at == 0) return FormatClass::refused;
    ++at;
    if (*at == L'+' || *at == L' ' || *at == L'#') ++at;
    while ((*at >= L'0' && *at <= L'9') || *at == L'.') ++at;

    const auto is_one_of = [](wchar_t c, const wchar_t* set) {
        return c != 0 && std::wcschr(set, c) != nullptr;
    };
    if (is_one_of(*at, L"qfe")) return FormatClass::floating;
    if (is_one_of(*at, L"udxX")) return FormatClass::integer_32;
    if ((*at == L'l' || *at == L'h') && is_one_of(at[1], L"udxX")) return FormatClass::integer_32;
    if (at[0] == L'I' && at[1] == L'6' && at[2] == L'4')
        return is_one_of(at[3], L"uxX") ? FormatClass::unsigned_64 : FormatClass::signed_64;
    // "ll" with a letter of its own before the "x", as some compilers' formats have it, counts too.
    if (at[0] == L'l' && at[1] == L'l' && (at[2] == L'u' || (at[2] != 0 && is_one_of(at[3], L"xX"))))
        return FormatClass::unsigned_64;
    if (*at == L's' || (at[0] == L'l' && at[1] == L's')) return FormatClass::text;
    if (*at == L'c') return FormatClass::character;
    return FormatClass::refused;
}

FormatClass class_for(int type) {
    if (is_float(type)) return FormatClass::floating;
    if (type == CV_U64) return FormatClass::unsigned_64;
    if (type == CV_I64) return FormatClass::signed_64;
    if (is_integer(type) || type == CV_TIME_OF_DAY) return FormatClass::integer_32;
    if (type >= CV_CHAR && type <= CV_WCHAR_PLAIN) return FormatClass::character;
    return FormatClass::text;
}

int count_conversions(const wchar_t* format) {
    int count = 0;
    for (const wchar_t* at = format; *at != 0; ++at)
        if (*at == L'%' && at[1] != L'%') ++count;
    return count;
}

// ---- the arguments that a type hands to its format ----

wchar_t text_area[print_limit];

struct Arguments {
    FormatArg list[3] = {0, 0, 0};
    int count = 1;
    operator std::span<const FormatArg>() const { return {list, static_cast<std::size_t>(count)}; }
};

Arguments arguments_of(const ConvValue& v, int conversions) {
    Arguments args;
    switch (v.type) {
        case CV_TIME_OF_DAY: {
            const auto seconds = static_cast<std::uint32_t>(bits_of(v));
            args.list[0] = seconds / 3600;
            args.list[1] = seconds % 3600 / 60;
            args.list[2] = seconds % 60;
            args.count = 3;
            break;
        }
        case CV_CHAR:
            args.list[0] = FormatArg::of_character(core::character_of(static_cast<std::uint8_t>(bits_of(v))));
            break;
        case CV_WCHAR:
        case CV_WCHAR_PLAIN:
            args.list[0] =
                FormatArg::of_character(static_cast<wchar_t>(static_cast<std::uint16_t>(bits_of(v))));
            break;
        case CV_TEXT_NARROW: args.list[0] = widen(text_area, v.value.narrow, print_limit); break;
        case CV_TEXT_WIDE:
            copy_wide(text_area, v.value.wide, print_limit);
            args.list[0] = text_area;
            break;
        case CV_TEXT: args.list[0] = v.value.wide; break;
        default:
            args.list[0] = args.list[1] = core::integer_of(value_of(v));
            args.count = conversions == 2 ? 2 : 1;
            break;
    }
    return args;
}

}  // namespace

const wchar_t* print_format_default(int type) {
    return type >= 0 && type < type_count ? type_formats[type] : nullptr;
}

bool is_available(const ConvValue& v) {
    const bool is_text = v.type >= CV_TEXT_NARROW && v.type <= CV_TEXT;
    return is_text || is_hosts_own(v) || core::is_available(value_of(v));
}

int print_conv_value(wchar_t* buf, const wchar_t* format, ConvValue v) {
    if (!is_available(v)) return copy_wide(buf, L"-", 2);
    const wchar_t* const own = print_format_default(v.type);
    if (own == nullptr) return copy_wide(buf, L"", 1);
    if (class_of(format) != class_for(v.type)) format = own;
    if (is_float(v.type)) return format_q(buf, format, float_of(v));
    return format_wide(buf, print_limit, format, arguments_of(v, count_conversions(format)));
}

int format_q(wchar_t* buf, const wchar_t* format, float value) {
    if (std::isnan(value)) return copy_wide(buf, L"-", 2);

    static wchar_t work[print_limit];
    static wchar_t figures[print_limit];
    core::WideOut rewritten(work, print_limit);
    enum class Mode { floating, signed_integer, unsigned_integer } mode = Mode::floating;
    for (const wchar_t* at = format; *at != 0;) {
        rewritten.put(*at);
        if (*at++ != L'%') continue;
        if (*at == L'%') {
            rewritten.put(*at++);
            continue;
        }
        core::WideOut side(figures, print_limit);
        if (*at == L'+' || *at == L' ') side.put(*at++);
        while ((*at >= L'0' && *at <= L'9') || *at == L'.') side.put(*at++);
        side.finish();
        if (*at == L'q') {
            // A sign flag is not carried over: "%+5q" prints without a plus sign.
            const Decimals d = decimals_for(read_figures(figures), value);
            const FormatArg numbers[] = {d.width, d.precision};
            format_wide(rewritten, L"%d.%df", numbers);
            ++at;
        } else {
            const wchar_t letter = *at == L'l' ? at[1] : *at;
            if (letter == L'u') mode = Mode::unsigned_integer;
            if (letter == L'd') mode = Mode::signed_integer;
            rewritten.put(std::wstring_view(figures));
            if (*at != 0) rewritten.put(*at++);
        }
    }
    rewritten.finish();

    // Integer modes saturate where the number does not fit.
    const double wide = value;
    if (mode == Mode::floating) return format_wide(buf, print_limit, work, {{FormatArg(wide)}});
    const double limit = mode == Mode::signed_integer ? 2147483647.0 : 9223372036854774784.0;
    const auto integer = static_cast<std::int64_t>(std::clamp(wide, -limit - 1, limit));
    return format_wide(buf, print_limit, work, {{FormatArg(integer)}});
}

}  // namespace pgn_vistel
