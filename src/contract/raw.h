#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

#include "pgn_vistel/conv_value.h"

namespace pgn_vistel::raw {

static_assert(std::endian::native == std::endian::little,
              "payloads and the message record are little-endian");

template <class T>
T load(const void* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

/// A whole-number encoding. NMEA 2000 reserves the top three codes of each width for "not available", "out of
/// range" and "reserved"; they are refused together.
template <class T, ConvType RawType, int Bytes = sizeof(T), T Top = std::numeric_limits<T>::max()>
struct Number {
    using Value = T;
    static constexpr int bytes = Bytes;
    static constexpr ConvType raw_type = RawType;
    static constexpr Value top = Top;

    static Value read(const void* at) { return load<T>(at); }
    static bool is_refused(Value v) { return v >= top - 2; }
};

struct u8 : Number<std::uint8_t, CV_U8> {};
struct i8 : Number<std::int8_t, CV_I8> {};
struct u16 : Number<std::uint16_t, CV_U16> {};
struct i16 : Number<std::int16_t, CV_I16> {};
struct u32 : Number<std::uint32_t, CV_U32> {};
struct i32 : Number<std::int32_t, CV_I32> {};
struct u64 : Number<std::uint64_t, CV_U64> {};
struct i64 : Number<std::int64_t, CV_I64> {};
struct u24 : Number<std::uint32_t, CV_U32, 3, 0xFFFFFF> {
    static Value read(const void* at) { return load<std::uint32_t>(at) & 0xFFFFFF; }
};
struct i24 : Number<std::int32_t, CV_I32, 3, 0x7FFFFF> {
    static Value read(const void* at) { return static_cast<std::int32_t>(load<std::uint32_t>(at) << 8) >> 8; }
};
/// Eight bytes of which 48 bits carry the value.
struct u48 : Number<std::uint64_t, CV_U64, 8, 0xFFFFFFFFFFFF> {};

}  // namespace pgn_vistel::raw
