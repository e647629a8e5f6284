#include "contract/parsers/scan.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>

namespace pgn_vistel {

namespace {

bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

const char* after_digits(const char* at) {
    while (is_digit(*at)) ++at;
    return at;
}

/// What stands before the figures.
struct Start {
    const char* figures;
    bool negative;
    Scanned otherwise;  ///< the result when there are no figures
};

Start start_of(const char* text) {
    if (text == nullptr) return {"", false, Scanned::nothing};
    while (is_space(*text)) ++text;
    const Scanned otherwise = *text == 0 ? Scanned::end : Scanned::nothing;
    const bool negative = *text == '-';
    return {negative || *text == '+' ? text + 1 : text, negative, otherwise};
}

/// The end of the longest decimal number at `at`, or `at`.
const char* end_of_real(const char* at) {
    const char* end = after_digits(at);
    auto digits = end - at;
    if (*end == '.') {
        const char* const fraction = end + 1;
        end = after_digits(fraction);
        digits += end - fraction;
    }
    if (digits == 0) return at;
    if (*end == 'e' || *end == 'E') {
        const char* const exponent = end + (end[1] == '-' || end[1] == '+' ? 2 : 1);
        if (is_digit(*exponent)) end = after_digits(exponent);
    }
    return end;
}

/// Of a number beyond the range of its type: whether it is too large rather than too small.
bool is_large(const char* at, const char* end) {
    constexpr long most = 100000000;  // texts are shorter
    const char* const point = std::find_if_not(at, end, is_digit);
    const char* const mark = std::find_if(at, end, [](char c) { return c == 'e' || c == 'E'; });
    const char* const first = std::find_if(at, mark, [](char c) { return c >= '1' && c <= '9'; });
    const auto places = first < point ? point - first : point - first + 1;
    long exponent = 0;
    if (mark != end) {
        const bool negative = mark[1] == '-';
        for (const char* digit = std::find_if(mark, end, is_digit); digit != end; ++digit)
            exponent = std::min(10 * exponent + (*digit - '0'), most);
        if (negative) exponent = -exponent;
    }
    return places + exponent > 0;
}

template <class Real>
Scanned scan_decimal(const char* text, Real& number) {
    const auto [at, negative, otherwise] = start_of(text);
    const char* const end = end_of_real(at);
    if (end == at) return otherwise;
    Real magnitude = 0;
    if (std::from_chars(at, end, magnitude).ec == std::errc::result_out_of_range)
        magnitude = is_large(at, end) ? std::numeric_limits<Real>::infinity() : Real{0};
    number = negative ? -magnitude : magnitude;
    return Scanned::number;
}

bool starts_with_prefix(const char* at, int base) {
    std::uint64_t ignored;
    return base == 16 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X') && at[2] != 0 &&
           std::from_chars(at + 2, at + 3, ignored, base).ec == std::errc{};
}

/// `magnitude` stays empty where the figures say more than `most`.
Scanned scan_magnitude(const Start& start, int base, std::uint64_t most,
                       std::optional<std::uint64_t>& magnitude) {
    const char* const at = start.figures + (starts_with_prefix(start.figures, base) ? 2 : 0);
    std::uint64_t figures = 0;
    const auto result = std::from_chars(at, at + std::strlen(at), figures, base);
    if (result.ec == std::errc::invalid_argument) return start.otherwise;
    if (result.ec == std::errc{} && figures <= most) magnitude = figures;
    return Scanned::number;
}

template <class Unsigned>
Scanned scan_unsigned(const char* text, Unsigned& number, int base) {
    constexpr Unsigned most = std::numeric_limits<Unsigned>::max();
    const Start start = start_of(text);
    std::optional<std::uint64_t> magnitude;
    const Scanned scanned = scan_magnitude(start, base, most, magnitude);
    if (scanned != Scanned::number) return scanned;
    number = static_cast<Unsigned>(!magnitude ? most : start.negative ? -*magnitude : *magnitude);
    return scanned;
}

}  // namespace

Scanned scan_real(const char* text, float& number) {
    return scan_decimal(text, number);
}

Scanned scan_real(const char* text, double& number) {
    return scan_decimal(text, number);
}

Scanned scan_whole(const char* text, std::int32_t& number) {
    const Start start = start_of(text);
    const std::uint64_t most = start.negative ? 0x80000000 : 0x7FFFFFFF;
    std::optional<std::uint64_t> magnitude;
    const Scanned scanned = scan_magnitude(start, 10, most, magnitude);
    if (scanned != Scanned::number) return scanned;
    const auto whole = static_cast<std::int64_t>(magnitude.value_or(most));
    number = static_cast<std::int32_t>(start.negative ? -whole : whole);
    return scanned;
}

Scanned scan_whole(const char* text, std::uint32_t& number, int base) {
    return scan_unsigned(text, number, base);
}

Scanned scan_whole(const char* text, std::uint64_t& number, int base) {
    return scan_unsigned(text, number, base);
}

}  // namespace pgn_vistel
