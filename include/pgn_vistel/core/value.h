#pragma once

/// @file
/// The value of a field.

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace pgn_vistel::core {

/// What a `Value` holds.
enum class ValueType : std::uint8_t {
    single = 0,  ///< `f32`
    real = 2,    ///< `f64`
    u8 = 3,      ///< integers: of each width the top three codes mean "not available"
    i8 = 4,
    u16 = 5,
    i16 = 6,
    u32 = 7,
    i32 = 8,
    u64 = 9,
    i64 = 10,
    seconds = 11,  ///< `u32`, shown as h:mm:ss
    text = 17,     ///< `text`
    none = 20,     ///< not available
};

/// How the bytes of a text are to be read.
enum class Encoding : std::uint8_t {
    latin1,     ///< every byte is the character of the same number
    code_page,  ///< the same but for four bytes: see `character_of`
    utf16,      ///< units of two bytes, low byte first, at any address
    wide,       ///< `wchar_t`
    digits,     ///< bytes in hexadecimal, parted by blanks: three characters each, but for the last
};

/// A text of a payload: a view, never terminated. It does not own what it shows, and nothing in it is to be
/// trusted: there may be control characters in it, and halves of UTF-16 pairs.
struct Text {
    const void* data;   ///< first character; may be null where `count` is 0
    int count;          ///< characters; of `utf16` units of two bytes
    Encoding encoding;  ///< of a field never `wide`
};

/// What a short or medium text says of its own bytes, as sent.
enum class SentEncoding : std::uint8_t { utf16 = 0, ascii = 1 };

/// The character that a byte of a text off the bus stands for: the one of the same number, but for the euro
/// sign, the Greek capital omega, OE and oe at 0x80, 0x81, 0x8C and 0x9C.
constexpr char16_t character_of(std::uint8_t byte) {
    switch (byte) {
        case 0x80: return 0x20AC;
        case 0x81: return 0x03A9;
        case 0x8C: return 0x0152;
        case 0x9C: return 0x0153;
        default: return byte;
    }
}

/// A field's value in some unit. Nothing in it is owned: a text lies in the payload or in the scratch that
/// the field was read with, and holds as long as both are left alone.
///
/// Ask `is_available` before the number: a value that is not available has one, too, a reserved code or NaN.
struct Value {
    static constexpr std::uint64_t no_number = 0x7FFFFFFF;  ///< a single precision NaN in the low half

    /// A number as the bits that it has in its type. Above those of an integer there are copies of its sign,
    /// or 0; above those of a single 0.
    struct Number {
        std::uint64_t bits = no_number;  ///< all of them

        /// @{ A number of a type, `ValueType::single`, `real` or any integer.
        static constexpr Number of(float number) { return {std::bit_cast<std::uint32_t>(number)}; }
        static constexpr Number of(double number) { return {std::bit_cast<std::uint64_t>(number)}; }
        static constexpr Number of(std::int64_t number) { return {static_cast<std::uint64_t>(number)}; }
        /// @}
        /// @{ The number where the value's `type` says so, else what its bits are as one.
        [[nodiscard]] constexpr float f32() const { return std::bit_cast<float>(u32()); }
        [[nodiscard]] constexpr double f64() const { return std::bit_cast<double>(bits); }
        [[nodiscard]] constexpr std::uint8_t u8() const { return static_cast<std::uint8_t>(bits); }
        [[nodiscard]] constexpr std::int8_t i8() const { return static_cast<std::int8_t>(bits); }
        [[nodiscard]] constexpr std::uint16_t u16() const { return static_cast<std::uint16_t>(bits); }
        [[nodiscard]] constexpr std::int16_t i16() const { return static_cast<std::int16_t>(bits); }
        [[nodiscard]] constexpr std::uint32_t u32() const { return static_cast<std::uint32_t>(bits); }
        [[nodiscard]] constexpr std::int32_t i32() const { return static_cast<std::int32_t>(bits); }
        [[nodiscard]] constexpr std::uint64_t u64() const { return bits; }
        [[nodiscard]] constexpr std::int64_t i64() const { return static_cast<std::int64_t>(bits); }
        /// @}
    };

    ValueType type = ValueType::none;  ///< says what `number` is, or that `text` is it
    Number number;                     ///< of every type but `text`
    Text text{};                       ///< of the type `text`
};

/// One of the eight integer types; a count of seconds is none.
constexpr bool is_integer(ValueType type) {
    return type >= ValueType::u8 && type <= ValueType::i64;
}

/// Calls `act` with the number that a value holds, in its own type, and returns what it returns; for a text
/// or where there is none, `otherwise`.
template <class Act, class Result>
constexpr Result visit_number(const Value& v, Result otherwise, Act act) {
    switch (v.type) {
        case ValueType::single: return act(v.number.f32());
        case ValueType::real: return act(v.number.f64());
        case ValueType::u8: return act(v.number.u8());
        case ValueType::i8: return act(v.number.i8());
        case ValueType::u16: return act(v.number.u16());
        case ValueType::i16: return act(v.number.i16());
        case ValueType::u32:
        case ValueType::seconds: return act(v.number.u32());
        case ValueType::i32: return act(v.number.i32());
        case ValueType::u64: return act(v.number.u64());
        case ValueType::i64: return act(v.number.i64());
        default: return otherwise;
    }
}

/// Neither a reserved code of an integer type, nor a NaN, nor nothing. A text is available even where it is
/// empty.
[[nodiscard]] inline bool is_available(const Value& v) {
    return visit_number(v, v.type == ValueType::text, [](auto number) {
        using Number = decltype(number);
        if constexpr (std::is_floating_point_v<Number>)
            return !std::isnan(number);
        else
            return number < std::numeric_limits<Number>::max() - 2;
    });
}

/// The integer of a value that holds one; of `u64` its bits.
[[nodiscard]] inline std::int64_t integer_of(const Value& v) {
    return visit_number(v, v.number.i64(), [](auto number) { return static_cast<std::int64_t>(number); });
}

}  // namespace pgn_vistel::core
