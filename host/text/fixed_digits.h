#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace vistel {

/// Decimal digits at known places, several characters at a time: as the bytes of a number, the first
/// character lowest.
template <class Number>
Number characters_at(const char* p) {
    static_assert(sizeof(Number) == 4 || sizeof(Number) == 8);
    Number characters;
    std::memcpy(&characters, p, sizeof characters);
    if constexpr (std::endian::native == std::endian::big) {
        characters = sizeof(Number) == 8 ? static_cast<Number>(__builtin_bswap64(characters))
                                         : static_cast<Number>(__builtin_bswap32(characters));
    }
    return characters;
}

/// Eight characters of which those shown as `0` are digits and the others stand for themselves: "00:00:00".
class DigitShape {
  public:
    consteval explicit DigitShape(const char (&shape)[9]) {
        for (int i = 0; i < 8; ++i) {
            characters_ |= std::uint64_t{static_cast<unsigned char>(shape[i])} << 8 * i;
            // What is added carries out of four bits where a digit is above 9 or another character differs.
            slack_ |= std::uint64_t{shape[i] == '0' ? 6u : 15u} << 8 * i;
        }
    }

    /// Reads the characters at `p`: in each byte of `digits` the value of a digit, 0 for the others.
    [[nodiscard]] bool read(const char* p, std::uint64_t& digits) const {
        digits = characters_at<std::uint64_t>(p) ^ characters_;
        return (((digits + slack_) | digits) & 0xF0F0F0F0F0F0F0F0) == 0;
    }

  private:
    std::uint64_t characters_ = 0, slack_ = 0;
};

/// In each byte the number that its digit and the next one make up.
constexpr std::uint64_t pairs_of(std::uint64_t digits) {
    return digits * 10 + (digits >> 8);
}

/// The number that eight digits make up.
constexpr std::uint32_t number_of_digits(std::uint64_t digits) {
    std::uint64_t sums = pairs_of(digits) & 0x00FF00FF00FF00FF;
    sums = (sums * 100 + (sums >> 16)) & 0x0000FFFF0000FFFF;
    return static_cast<std::uint32_t>(sums * 10000 + (sums >> 32));
}

/// The same for four.
constexpr std::uint32_t number_of_digits(std::uint32_t digits) {
    const std::uint32_t pairs = digits * 10 + (digits >> 8);
    return (pairs & 0xFF) * 100 + (pairs >> 16 & 0xFF);
}

/// The digits with which some characters begin.
template <class Number>
struct LeadingDigits {
    static constexpr unsigned bits = 8 * sizeof(Number);
    static constexpr Number in_each = static_cast<Number>(0x0101010101010101);

    explicit LeadingDigits(const char* p) : digits(characters_at<Number>(p) ^ ('0' * in_each)) {
        const Number others = ((digits + 6 * in_each) | digits) & (0xF0 * in_each);
        size_in_bits = static_cast<unsigned>(std::countr_zero(others)) & ~7u;
    }

    unsigned size() const { return size_in_bits / 8; }

    Number digits;  ///< in each byte the value of a digit, up to the first other character
    unsigned size_in_bits;
};

/// Reads the digits at `p` up to a comma, and goes behind it. `p` has as many characters as Number has bytes,
/// which must be enough for the comma too.
template <class Number>
[[nodiscard]] inline bool take_number_and_comma(const char*& p, std::uint32_t& value) {
    const LeadingDigits<Number> leading(p);
    if (leading.size() - 1 >= sizeof(Number) - 1 || p[leading.size()] != ',') return false;
    value = number_of_digits(leading.digits << (leading.bits - leading.size_in_bits));
    p += leading.size() + 1;
    return true;
}

}  // namespace vistel
