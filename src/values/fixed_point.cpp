#include "values/fixed_point.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace pgn_vistel {

namespace {

__extension__ typedef unsigned __int128 uint128;

constexpr int max_precision = 18;
constexpr std::uint64_t powers_of_ten[max_precision + 1] = {
    1ull,
    10ull,
    100ull,
    1000ull,
    10000ull,
    100000ull,
    1000000ull,
    10000000ull,
    100000000ull,
    1000000000ull,
    10000000000ull,
    100000000000ull,
    1000000000000ull,
    10000000000000ull,
    100000000000000ull,
    1000000000000000ull,
    10000000000000000ull,
    100000000000000000ull,
    1000000000000000000ull,
};

constexpr auto digit_pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

/// Puts two digits in front of `at`.
char* copy_pair(char* at, std::uint64_t number) {
    std::memcpy(at - 2, digit_pairs.data() + 2 * number, 2);
    return at - 2;
}

}  // namespace

int fixed_point(char (&out)[fixed_point_capacity], const char** first, double magnitude, int precision) {
    if (precision > max_precision) return 0;
    const std::uint64_t scale = powers_of_ten[precision];
    if (!(magnitude * static_cast<double>(scale) < 1e18)) return 0;

    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    const int exponent_field = static_cast<int>(bits >> 52);
    std::uint64_t mantissa = bits & ((1ull << 52) - 1);
    int exponent = -1074;
    if (exponent_field != 0) {
        mantissa |= 1ull << 52;
        exponent = exponent_field - 1075;
    }

    // The number is mantissa * 2^exponent; times the scale it stays below 2^63 in front of the binary point.
    const uint128 product = static_cast<uint128>(mantissa) * scale;
    std::uint64_t whole = 0;
    if (exponent >= 0) {
        whole = static_cast<std::uint64_t>(product << exponent);
    } else if (exponent > -118) {  // the product has at most 117 bits
        const int shift = -exponent;
        whole = static_cast<std::uint64_t>(product >> shift);
        const uint128 rest = product & ((static_cast<uint128>(1) << shift) - 1);
        const uint128 half = static_cast<uint128>(1) << (shift - 1);
        if (rest > half || (rest == half && (whole & 1) != 0)) ++whole;
    }

    char* at = std::end(out);
    const auto put_digits = [&at](std::uint64_t number, int count) {
        for (; count >= 2; count -= 2, number /= 100) at = copy_pair(at, number % 100);
        if (count == 1) *--at = static_cast<char>('0' + number % 10);
    };
    std::uint64_t integer = whole;
    if (precision > 0) {
        integer = whole / scale;
        put_digits(whole - integer * scale, precision);
        *--at = '.';
    }
    for (; integer >= 100; integer /= 100) at = copy_pair(at, integer % 100);
    if (integer >= 10)
        at = copy_pair(at, integer);
    else
        *--at = static_cast<char>('0' + integer);
    *first = at;
    return static_cast<int>(std::end(out) - at);
}

}  // namespace pgn_vistel
