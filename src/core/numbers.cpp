#include "core/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace pgn_vistel::core {

namespace {

using detail::powers_of_ten;

constexpr int general_size = 400;  // a double with all its digits before the point

}  // namespace

// ---- fixed point ----

char* write_fixed(char* at, double value, int precision) {
    char area[general_size];
    if (std::signbit(value)) *at++ = '-';
    const double magnitude = std::fabs(value);
    const auto end =
        std::to_chars(area, area + general_size, magnitude, std::chars_format::fixed, precision).ptr;
    std::memcpy(at, area, static_cast<std::size_t>(end - area));
    return at + (end - area);
}

namespace {

/// The rare values: infinite, or with more digits than a word holds.
char* write_large(char* at, float value, int digits) {
    if (!std::isinf(value)) return write_fixed(at, static_cast<double>(value), 0);
    const bool negative = value < 0;
    for (int i = negative ? 4 : 3; i < digits; ++i) *at++ = ' ';
    std::memcpy(at, negative ? "-inf" : "inf", 4);
    return at + (negative ? 4 : 3);
}

}  // namespace

namespace {

constexpr std::uint64_t limit_of_eight = 100'000'000;

/// Decimal digits of a number, none for 0.
inline int count_digits(std::uint32_t number) {
    const int estimate = static_cast<int>(std::bit_width(number)) * 1233 >> 12;  // of the logarithm
    return estimate + (number >= powers_of_ten[estimate] ? 1 : 0);
}

}  // namespace

char* detail::write_without_point(char* at, float value, int digits) {
    if (std::fabs(value) >= 0x1p32f) return write_large(at, value, digits);
    if (std::signbit(value)) *at++ = '-';
    const auto magnitude = static_cast<double>(std::fabs(value));
    if (magnitude < 1) {
        std::memcpy(at, "0.", 2);
        const double behind = magnitude * exact_powers_of_ten[digits];
        return write_eight(at + 2, static_cast<std::uint32_t>(round_to_even(behind)));
    }
    return write_unsigned(at, round_to_even(magnitude));
}

// ---- shortest form ----
//
// A number c * 2^q owns the interval up to the middles between it and its neighbours. Scaled by a power of
// ten such that the interval is at least 2 and less than 20 wide, either a multiple of ten lies in it or the
// number itself is rounded to a whole one. The power is taken from a table, with so many bits that the
// product, its lowest bit standing for all that is cut off, compares as the exact one would.

namespace {

constexpr int floor_log10_pow2(int e) {
    return (e * 1262611) >> 22;
}
/// Of three quarters of 2^e.
constexpr int floor_log10_three_quarters_pow2(int e) {
    return (e * 1262611 - 524031) >> 22;
}
constexpr int floor_log2_pow10(int e) {
    return (e * 1741647) >> 19;
}

constexpr int first_single_power = -31;
constexpr std::uint64_t single_powers[] = {
#include "powers_single.inc"
};

struct Power {
    std::uint64_t high, low;
};
constexpr int first_double_power = -30;
constexpr Power double_powers[] = {
#include "powers_double.inc"
};

/// digits * 10^exponent.
struct Shortest {
    std::uint64_t digits;
    int exponent;
};

/// What a width of floating numbers needs of the search for the shortest decimal.
struct Single {
    using Bits = std::uint32_t;
    static constexpr int mantissa_bits = 23, bias = 150;

    static bool has_power(int e) {
        return e >= first_single_power && e < first_single_power + static_cast<int>(std::size(single_powers));
    }
    /// number * 10^e, cut to a whole number whose lowest bit also stands for what was cut off.
    static Bits scaled(int e, Bits number) {
#ifdef __SIZEOF_INT128__
        __extension__ typedef unsigned __int128 uint128;
        const auto product = static_cast<uint128>(single_powers[e - first_single_power]) * number;
        const auto whole = static_cast<Bits>(product >> 64);
        const auto rest = static_cast<Bits>(product >> 32);
#else
        const std::uint64_t power = single_powers[e - first_single_power];
        const std::uint64_t low = (power & 0xFFFFFFFF) * number;
        const std::uint64_t high = (power >> 32) * number + (low >> 32);
        const auto whole = static_cast<Bits>(high >> 32);
        const auto rest = static_cast<Bits>(high);
#endif
        return whole | (rest > 1);
    }
};

#ifdef __SIZEOF_INT128__
struct Double {
    using Bits = std::uint64_t;
    static constexpr int mantissa_bits = 52, bias = 1075;

    static bool has_power(int e) {
        return e >= first_double_power && e < first_double_power + static_cast<int>(std::size(double_powers));
    }
    static Bits scaled(int e, Bits number) {
        __extension__ typedef unsigned __int128 uint128;
        const Power& power = double_powers[e - first_double_power];
        const auto low = static_cast<uint128>(power.low) * number;
        const auto product =
            static_cast<uint128>(power.high) * number + static_cast<std::uint64_t>(low >> 64);
        return static_cast<Bits>(product >> 64) | (static_cast<Bits>(product) > 1);
    }
};
#endif

/// Of a positive number. False where the table does not reach.
template <class Width>
bool find_shortest(typename Width::Bits bits, Shortest& found) {
    using Bits = typename Width::Bits;
    const Bits fraction = bits & ((Bits{1} << Width::mantissa_bits) - 1);
    const auto exponent_field = static_cast<int>(bits >> Width::mantissa_bits);
    const bool is_normal = exponent_field != 0;
    const Bits c = is_normal ? fraction | Bits{1} << Width::mantissa_bits : fraction;
    const int q = (is_normal ? exponent_field : 1) - Width::bias;

    const bool is_even = (c & 1) == 0;  // the ends of the interval belong to it
    const bool lower_is_closer = fraction == 0 && exponent_field > 1;
    const int k = lower_is_closer ? floor_log10_three_quarters_pow2(q) : floor_log10_pow2(q);
    if (!Width::has_power(-k)) return false;
    const int h = q + floor_log2_pow10(-k) + 1;

    const Bits low = Width::scaled(-k, (4 * c - 2 + (lower_is_closer ? 1 : 0)) << h) + (is_even ? 0 : 1);
    const Bits middle = Width::scaled(-k, (4 * c) << h);
    const Bits high = Width::scaled(-k, (4 * c + 2) << h) - (is_even ? 0 : 1);
    const Bits s = middle / 4;
    if (s >= 10) {
        const Bits tens = s / 10;
        const bool down = low <= 40 * tens;
        const bool up = 40 * tens + 40 <= high;
        if (down != up) {
            found = {tens + (up ? 1 : 0), k + 1};
            return true;
        }
    }
    const bool down = low <= 4 * s;
    const bool up = 4 * s + 4 <= high;
    const bool nearer_up = middle > 4 * s + 2 || (middle == 4 * s + 2 && (s & 1) != 0);
    const bool rounds_up = down != up ? up : nearer_up;
    found = {s + (rounds_up ? 1u : 0u), k};
    return true;
}

int count_long(std::uint64_t number) {
    return number <= UINT32_MAX ? count_digits(static_cast<std::uint32_t>(number))
                                : 8 + count_long(number / limit_of_eight);
}

/// Digits without the zeros behind them. Null where the scientific form is shorter, or the number is not
/// below `exact_integers`, up to which the digits with zeros behind are exact.
char* write_shortest_form(char* at, Shortest d, std::uint64_t exact_integers) {
    // A multiple of ten times the inverse of ten modulo 2^64, as far as there is one, is the tenth.
    constexpr std::uint64_t inverse_of_five = 0xCCCCCCCCCCCCCCCD;
    for (;;) {
        const std::uint64_t tenth = std::rotr(d.digits * inverse_of_five, 1);
        if (tenth > UINT64_MAX / 10) break;
        d.digits = tenth;
        ++d.exponent;
    }
    const int count = count_long(d.digits);
    const int single = count == 1 ? 1 : 0;
    if (d.exponent < -(count + 3) + single || d.exponent > 5 - single) return nullptr;
    if (d.exponent >= 0) {
        if (d.exponent > 0 &&
            d.digits >= (exact_integers + powers_of_ten[d.exponent] - 1) / powers_of_ten[d.exponent])
            return nullptr;
        at = write_unsigned(at, d.digits);
        for (int i = 0; i < d.exponent; ++i) *at++ = '0';
        return at;
    }
    const int behind = -d.exponent;
    if (count <= behind) {
        std::memcpy(at, "0.000000", 8);
        return write_unsigned(at + 2 + behind - count, d.digits);
    }
    char* const end = write_unsigned(at, d.digits);
    constexpr int block = 8;
    if (behind <= block) {
        std::uint64_t decimals;
        std::memcpy(&decimals, end - behind, block);
        std::memcpy(end - behind + 1, &decimals, block);
    } else {
        std::memmove(end - behind + 1, end - behind, static_cast<std::size_t>(behind));
    }
    end[-behind] = '.';
    return end + 1;
}

template <class Width, class Float>
char* write_shortest_of(char* at, Float value) {
    char* const start = at;
    if (std::signbit(value)) *at++ = '-';
    const Float magnitude = std::fabs(value);
    if (magnitude == 0) {
        *at = '0';
        return at + 1;
    }
    Shortest d;
    if (find_shortest<Width>(std::bit_cast<typename Width::Bits>(magnitude), d)) {
        constexpr std::uint64_t exact_integers = std::uint64_t{1} << (Width::mantissa_bits + 1);
        if (char* const end = write_shortest_form(at, d, exact_integers); end != nullptr) return end;
    }
    return std::to_chars(start, start + most_number_size, value).ptr;
}

}  // namespace

char* write_shortest(char* at, Decimal value) {
    if (value.digits < 0) *at++ = '-';
    const auto magnitude = static_cast<std::uint64_t>(value.digits < 0 ? -value.digits : value.digits);
    if (magnitude == 0) {
        *at = '0';
        return at + 1;
    }
    return write_shortest_form(at, {magnitude, -value.decimals}, std::uint64_t{1} << 53);
}

char* write_shortest(char* at, float value) {
    return write_shortest_of<Single>(at, value);
}

char* write_shortest(char* at, double value) {
#ifdef __SIZEOF_INT128__
    return write_shortest_of<Double>(at, value);
#else
    // A processor of 32 bits has no product of 128.
    return std::to_chars(at, at + most_number_size, value).ptr;
#endif
}

}  // namespace pgn_vistel::core
