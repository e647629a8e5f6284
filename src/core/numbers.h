#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace pgn_vistel::core {

// Numbers as ASCII: each function writes at `at` and returns the end. Those marked so may write up to 8 bytes
// beyond it.

constexpr int most_number_size = 48;  ///< characters of one number, with what may be written beyond it

namespace detail {

inline constexpr auto digit_pairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

inline constexpr auto hex_pairs = [] {
    std::array<char, 512> pairs{};
    constexpr char digits[] = "0123456789ABCDEF";
    for (std::size_t i = 0; i < 256; ++i) {
        pairs[2 * i] = digits[i >> 4];
        pairs[2 * i + 1] = digits[i & 15];
    }
    return pairs;
}();

/// The digits of each number of a byte, and how many they are.
inline constexpr auto byte_digits = [] {
    std::array<std::array<char, 4>, 256> all{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::size_t count = i < 10 ? 1 : i < 100 ? 2 : 3;
        for (std::size_t place = count, rest = i; place-- > 0; rest /= 10)
            all[i][place] = static_cast<char>('0' + rest % 10);
        all[i][3] = static_cast<char>(count);
    }
    return all;
}();

inline constexpr std::uint32_t powers_of_ten[] = {1,       10,        100,        1'000,       10'000,
                                                  100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};
inline constexpr double exact_powers_of_ten[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};

/// The bits of a single: those of numbers that are not negative are in the order of the numbers.
constexpr std::uint32_t bits_of(float number) {
    return std::bit_cast<std::uint32_t>(number);
}

/// Digits in front of the point of a number by its bits, `most` of them at the most; none below 1.
template <int most>
int count_leading_digits(std::uint32_t bits) {
    constexpr std::uint32_t limits[] = {bits_of(1),    bits_of(1e1f), bits_of(1e2f), bits_of(1e3f),
                                        bits_of(1e4f), bits_of(1e5f), bits_of(1e6f)};
    int count = 0;
    for (int i = 0; i < most; ++i) count += bits >= limits[i] ? 1 : 0;
    return count;
}

/// The nearest whole number, halves to the even one, of a number below 2^52 that is not negative.
inline std::uint64_t round_to_even(double number) {
    constexpr double last_digit_is_one = 0x1p52;
    return std::bit_cast<std::uint64_t>(number + last_digit_is_one) -
           std::bit_cast<std::uint64_t>(last_digit_is_one);
}

/// The eight decimal digits of a number below 10^8, the first in the lowest byte: halves, quarters and
/// eighths of the word are divided side by side.
inline std::uint64_t eight_digits(std::uint32_t number) {
    const std::uint64_t halves = number / 10000 | static_cast<std::uint64_t>(number % 10000) << 32;
    const std::uint64_t hundreds =
        (halves * 10486) >> 20 & 0x0000007F0000007F;  // of each half, exact below 10^4
    const std::uint64_t quarters = hundreds | (halves - hundreds * 100) << 16;
    const std::uint64_t tens =
        (quarters * 103) >> 10 & 0x000F000F000F000F;  // of each quarter, exact below 100
    return tens | (quarters - tens * 10) << 8;
}

constexpr std::uint64_t zeros = 0x3030303030303030;  // as characters

/// The six decimal digits of a number below 10^6 as characters, the first in the lowest byte.
inline std::uint64_t six_characters(std::uint32_t number) {
    const auto pair = [](std::uint32_t below_100) {
        std::uint16_t characters;
        std::memcpy(&characters, digit_pairs.data() + 2 * below_100, 2);
        return std::uint64_t{characters};
    };
    const std::uint32_t hundreds = number / 100, first = number / 10000;
    return pair(first) | pair(hundreds - first * 100) << 16 | pair(number - hundreds * 100) << 32;
}

/// As `write_significant`, where the point does not stand between digits of one word.
char* write_without_point(char* at, float value, int digits);

}  // namespace detail

inline char* write_pair(char* at, std::uint32_t below_100) {
    std::memcpy(at, detail::digit_pairs.data() + 2 * below_100, 2);
    return at + 2;
}

/// All eight digits of a number below 10^8.
inline char* write_eight(char* at, std::uint32_t number) {
    const std::uint64_t digits = detail::eight_digits(number) | detail::zeros;
    std::memcpy(at, &digits, 8);
    return at + 8;
}

/// As many digits as the number has, one for 0. Writes beyond its end.
inline char* write_unsigned(char* at, std::uint64_t number) {
    if (number < 100) {
        if (number >= 10) return write_pair(at, static_cast<std::uint32_t>(number));
        *at = static_cast<char>('0' + number);
        return at + 1;
    }
    constexpr std::uint64_t limit = 100'000'000;
    if (number >= limit) {
        at = write_unsigned(at, number / limit);
        return write_eight(at, static_cast<std::uint32_t>(number % limit));
    }
    const std::uint64_t digits = detail::eight_digits(static_cast<std::uint32_t>(number));
    const int leading = std::countr_zero(digits) & ~7;  // bits of the zeros in front
    const std::uint64_t text = (digits | detail::zeros) >> leading;
    std::memcpy(at, &text, 8);
    return at + 8 - leading / 8;
}

/// A number of a byte. Writes beyond its end.
inline char* write_byte(char* at, std::uint8_t number) {
    const auto& digits = detail::byte_digits[number];
    std::memcpy(at, digits.data(), digits.size());
    return at + digits[3];
}

inline char* write_signed(char* at, std::int64_t number) {
    if (number >= 0) return write_unsigned(at, static_cast<std::uint64_t>(number));
    *at = '-';
    return write_unsigned(at + 1, 0 - static_cast<std::uint64_t>(number));
}

/// The first digit of a byte at place 0, the other one at 1.
inline char hex_digit(std::uint8_t byte, int place) {
    return detail::hex_pairs[std::size_t{2} * byte + static_cast<std::size_t>(place)];
}

inline char* write_hex_byte(char* at, std::uint8_t byte) {
    std::memcpy(at, detail::hex_pairs.data() + 2 * byte, 2);
    return at + 2;
}

/// Two upper-case digits a byte.
inline char* write_hex_bytes(char* at, const std::uint8_t* bytes, int count) {
    for (int i = 0; i < count; ++i) at = write_hex_byte(at, bytes[i]);
    return at;
}

/// Two upper-case digits for each of the lowest `count` bytes of a word, the lowest first. Writes beyond its
/// end.
inline char* write_hex_word(char* at, std::uint64_t word, int count) {
    for (int done = 0; done < count; done += 2, word >>= 16) {
        write_hex_byte(at + 2 * done, static_cast<std::uint8_t>(word));
        write_hex_byte(at + 2 * done + 2, static_cast<std::uint8_t>(word >> 8));
    }
    return at + 2 * count;
}

/// All the digits of a number of so many bytes.
inline char* write_hex_number(char* at, std::uint32_t number, int bytes) {
    for (int i = bytes; i-- > 0;) at = write_hex_byte(at, static_cast<std::uint8_t>(number >> 8 * i));
    return at;
}

/// Upper-case hexadecimal digits, `least` of them at the least. Writes beyond its end.
inline char* write_hex(char* at, std::uint32_t number, int least) {
    for (; least > 8; --least) *at++ = '0';
    const int significant = (static_cast<int>(std::bit_width(number)) + 3) / 4;
    const int count = least > significant ? least : significant;
    char digits[16];
    write_hex_number(digits, number, 4);
    std::memcpy(at, digits + 8 - count, 8);
    return at + count;
}

/// A finite or infinite number with `precision` digits behind the point, exactly rounded (ties to even) as
/// "%.*f" would be. `precision` is at most 18; the number of digits is bounded by the caller's room.
char* write_fixed(char* at, double value, int precision);

/// A number with `digits` significant ones, 5 or 8, and all that stand before its point: what "%5q" of the
/// text interface stands for. Not for NaN. Writes beyond its end.
///
///     write_significant<5>(at, 12.3456f) -> "12.346"
///     write_significant<5>(at, 0.5f)     -> "0.50000"
///     write_significant<5>(at, 123456.f) -> "123456"
template <int digits>
char* write_significant(char* at, float value) {
    static_assert(digits == 5 || digits == 8);
    using namespace detail;
    constexpr float lowest = digits == 5 ? 0 : 1;       // below it eight digits stand behind the point
    constexpr float limit = digits == 5 ? 1e4f : 1e7f;  // from it on there is no point, or nothing behind it
    const std::uint32_t bits = bits_of(value), magnitude = bits & 0x7FFFFFFF;
    if (magnitude < bits_of(lowest) || magnitude >= bits_of(limit)) [[unlikely]]
        return write_without_point(at, value, digits);
    *at = '-';
    at += bits >> 31;  // without a branch: nothing tells beforehand on which side of 0 a number lies

    constexpr int places = digits == 5 ? 6 : 8;  // of the word
    const int leading = count_leading_digits<digits - 1>(magnitude);
    const int precision = digits - leading;
    // A single times such a power of ten is exact in double precision.
    const double scaled =
        static_cast<double>(std::bit_cast<float>(magnitude)) * exact_powers_of_ten[precision];
    const auto number = static_cast<std::uint32_t>(round_to_even(scaled));
    // 9.99996 becomes 10.0000, with one digit more in front; no single is so near to 10 for eight digits.
    int before = leading;
    if constexpr (digits == 5) before = std::max(leading + (number >= powers_of_ten[digits] ? 1 : 0), 1);
    const std::uint64_t text = digits == 5 ? six_characters(number) : eight_digits(number) | zeros;
    const std::uint64_t front = text >> 8 * (places - precision - before);
    const std::uint64_t behind = text >> 8 * (places - precision);
    std::memcpy(at, &front, 8);
    at[before] = '.';
    std::memcpy(at + before + 1, &behind, 8);
    return at + before + 1 + precision;
}

/// A number that is known as a decimal: digits / 10^decimals.
struct Decimal {
    std::int64_t digits;
    int decimals;  ///< 0 .. 9; negative where the number is not known so
};

/// The shortest form of a decimal, as of the single (below 10^6) or the double (below 10^15) that is nearest
/// to it: no other decimal of so few digits is. Null where the scientific form is shorter. Writes beyond its
/// end.
char* write_shortest(char* at, Decimal value);

/// @{ The shortest form that reads back as the same number, for finite numbers: that of `std::to_chars`.
/// Writes beyond its end.
char* write_shortest(char* at, float value);
char* write_shortest(char* at, double value);
/// @}

}  // namespace pgn_vistel::core
