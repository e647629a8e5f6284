#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "pgn_vistel/conv_value.h"

namespace pgn_vistel {

/// A whole-number encoding. Of the eight bytes of u48 48 bits carry the value.
template <class T, ConvType RawType, int Bytes = sizeof(T), T Top = std::numeric_limits<T>::max()>
struct Number {
    using Value = T;
    static constexpr int bytes = Bytes;
    static constexpr ConvType raw_type = RawType;
    static constexpr Value top = Top;
};

/// Cuts off the fraction. A number that 64 bits cannot hold, a NaN included, becomes the lowest of all: what
/// the processor makes of it, while C++ leaves it open. Cut to fewer bits that is 0.
inline std::int64_t truncate_64(double number) {
    return number >= -0x1p63 && number < 0x1p63 ? static_cast<std::int64_t>(number) : INT64_MIN;
}

/// The raw number of a kind, without its fraction; the code of "out of range" beyond the kind's limits.
///
/// Up to 24 bits the three reserved codes lie beyond the limits. With 32 bits the limits are those of the
/// whole width. A single has no figures for the top codes, so what is typed near them is
/// rounded beyond the limit or falls below them. Neither limit refuses a NaN, which becomes 0.
template <class Kind>
std::int64_t saturate(float number) {
    constexpr auto top = static_cast<std::int64_t>(Kind::top);
    constexpr bool is_signed = std::is_signed_v<typename Kind::Value>;
    constexpr auto low = static_cast<float>(is_signed ? -top - 1 : 0);
    constexpr auto beyond = static_cast<float>(Kind::bytes < 4 ? top - 2 : top + 1);
    if (number < low || number >= beyond) return top - 1;
    using Value = typename Kind::Value;
    return static_cast<Value>(truncate_64(number));
}

/// How a parser stores a number.
struct RawKind {
    ConvType type;
    int bytes;
    std::uint64_t unparsed;  ///< the code of "not available"
    float unscanned;         ///< the number of a text that ends before one starts
    std::int64_t (*to_raw)(double number);
};

namespace raw_kind {

template <class Kind>
constexpr RawKind saturating = {Kind::raw_type, Kind::bytes, static_cast<std::uint64_t>(Kind::top), 0,
                                [](double number) { return saturate<Kind>(static_cast<float>(number)); }};

// With 8 bytes there is no limit, and the number is not rounded to single precision on the way.
template <class Kind>
constexpr RawKind truncating = {Kind::raw_type, Kind::bytes, static_cast<std::uint64_t>(Kind::top), 0,
                                truncate_64};

inline constexpr const RawKind &u8 = saturating<Number<std::uint8_t, CV_U8>>,
                               &i8 = saturating<Number<std::int8_t, CV_I8>>,
                               &u16 = saturating<Number<std::uint16_t, CV_U16>>,
                               &i16 = saturating<Number<std::int16_t, CV_I16>>,
                               &u24 = saturating<Number<std::uint32_t, CV_U32, 3, 0xFFFFFF>>,
                               &i24 = saturating<Number<std::int32_t, CV_I32, 3, 0x7FFFFF>>,
                               &u32 = saturating<Number<std::uint32_t, CV_U32>>,
                               &i32 = saturating<Number<std::int32_t, CV_I32>>,
                               &u48 = truncating<Number<std::uint64_t, CV_U64, 8, 0xFFFFFFFFFFFF>>,
                               &u64 = truncating<Number<std::uint64_t, CV_U64>>,
                               &i64 = truncating<Number<std::int64_t, CV_I64>>;

constexpr std::uint32_t no_float = 0x7FFFFFFF;  // a single precision NaN

inline constexpr RawKind f32 = {
    CV_FLOAT, 4, no_float, std::bit_cast<float>(no_float), [](double number) -> std::int64_t {
        return std::isnan(number) ? no_float : std::bit_cast<std::uint32_t>(static_cast<float>(number));
    }};

}  // namespace raw_kind

}  // namespace pgn_vistel
