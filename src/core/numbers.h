#pragma once

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

/// A number with `digits` significant ones, 1 to 8, and all that stand before its point: what "%5q" of the
/// text interface stands for. Not for NaN. Writes beyond its end.
///
///     write_significant(at, 12.3456f, 5) -> "12.346"
///     write_significant(at, 0.5f, 5)     -> "0.50000"
///     write_significant(at, 123456.f, 5) -> "123456"
char* write_significant(char* at, float value, int digits);

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
