#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace pgn_vistel {

// Decimal digits, two at a time, written backwards: each function puts its digits in front of `at` and
// returns where they begin.

namespace detail {
inline constexpr auto digit_pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();
}  // namespace detail

inline char* put_pair_before(char* at, std::uint64_t below_100) {
    std::memcpy(at - 2, detail::digit_pairs.data() + 2 * below_100, 2);
    return at - 2;
}

/// As many digits as the number has, one for 0.
inline char* put_digits_before(char* at, std::uint64_t number) {
    for (; number >= 100; number /= 100) at = put_pair_before(at, number % 100);
    if (number >= 10) return put_pair_before(at, number);
    *--at = static_cast<char>('0' + number);
    return at;
}

/// Exactly `count` digits.
inline char* put_digits_before(char* at, std::uint64_t number, int count) {
    for (; count >= 2; count -= 2, number /= 100) at = put_pair_before(at, number % 100);
    if (count == 1) *--at = static_cast<char>('0' + number % 10);
    return at;
}

}  // namespace pgn_vistel
