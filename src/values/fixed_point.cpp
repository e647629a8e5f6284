#include "values/fixed_point.h"

#include <bit>
#include <cstdint>
#include <iterator>

#include "values/digits.h"

namespace pgn_vistel {

#ifdef __SIZEOF_INT128__

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
    std::uint64_t integer = whole;
    if (precision > 0) {
        integer = whole / scale;
        at = put_digits_before(at, whole - integer * scale, precision);
        *--at = '.';
    }
    at = put_digits_before(at, integer);
    *first = at;
    return static_cast<int>(std::end(out) - at);
}

#else

// A processor of 32 bits has no product of 128: the general way serves it as well, if slower.
int fixed_point(char (&)[fixed_point_capacity], const char**, double, int) {
    return 0;
}

#endif

}  // namespace pgn_vistel
