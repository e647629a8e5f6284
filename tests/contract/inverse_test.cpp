#include "contract/parsers/inverse.h"

#include <bit>
#include <cmath>

#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

using namespace core::unit;

struct Inverted {
    int size;
    std::uint8_t bytes[9] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    std::int64_t low(int count) const {
        std::int64_t number;
        std::memcpy(&number, bytes, sizeof number);
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(number) << (64 - 8 * count)) >>
               (64 - 8 * count);
    }
};

Inverted invert(float value, UnitId u, int available, ConvFunction conversion, int bits = 0) {
    Inverted result{};
    result.size = value_to_raw(result.bytes, value, u, available, conversion, bits);
    EXPECT_EQ(9 - std::count(result.bytes, result.bytes + 9, 0xEE), std::max(result.size, 0))
        << "bytes written";
    return result;
}

template <class Number>
void half_counts(ConvValue* out, const void* raw, UnitId, int* count) {
    Number number;
    std::memcpy(&number, raw, sizeof number);
    if (count != nullptr) *count = sizeof number;
    *out = single(static_cast<float>(number) * 0.5f + 10);
}

template <int taken>
void flat(ConvValue* out, const void*, UnitId, int* count) {
    *count = taken, *out = single(3);
}

TEST(Inverse, ProbesAnyLinearConversion) {
    const ConvFunction i8 = half_counts<std::int8_t>, i32 = half_counts<std::int32_t>,
                       i64 = half_counts<std::int64_t>;
    // Positive raw numbers to the nearest; negative ones are cut to half a count and then go down.
    // clang-format off
    const std::pair<float, int> rounding[] = {{10, 0}, {11, 2}, {10.2f, 0}, {10.25f, 1}, {10.75f, 2}, {9, -2},
        {9.5f, -1}, {9.76f, 0}, {9.75f, -1}, {9.3f, -1}, {9.25f, -2}, {9.01f, -2}};
    // clang-format on
    for (const auto& [value, expected] : rounding)
        for (const ConvFunction conversion : {i8, i32, i64})
            EXPECT_EQ(invert(value, m, 8, conversion).low(1), expected) << value;
    EXPECT_EQ(invert(10, m, 8, i8).size, 1);
    EXPECT_EQ(invert(0, m, 3, i64).size, 3);
    EXPECT_EQ(invert(0, m, 8, i64).bytes[7], 0xFF) << "the sign fills the field";
    EXPECT_EQ(invert(138, m, 4, i8).bytes[0], 0) << "256 counts lose their high byte";
    EXPECT_EQ(invert(1e30f, m, 4, i32).low(4), 0) << "more than 64 bits: the lowest number, cut";
    for (const int bits : {-5, 1, 30, 200}) EXPECT_EQ(invert(60, m, 4, i32, bits).low(4), 100) << bits;

    // The library's own conversions: widths, offsets, integers, and those that count or read otherwise.
    const std::tuple<DF, UnitId, float, int, std::int32_t> cases[] = {
        // clang-format off
        {105, celsius, 20, 3, 293150}, {2516, deg, -200, 2, 0}, {53, plain_64, 7, 1, 7}, {52, m, 5, 4, 5},
        {23, deg_lat, -10, 4, -100000000}, {62, raw_bits, 2.5f, 4, std::bit_cast<std::int32_t>(2.5f)},
        // not numbers there
        {1, V, 1, -1, 0}, {50, m, 1, -1, 0}, {0, m, 1, -1, 0}, {62, m, 1, -1, 0}, {60007, m, 1, -1, 0},
        {40, clock_12, 1, -1, 0},
        // clang-format on
    };
    for (const auto& [df, unit, value, size, raw] : cases) {
        const Inverted result = invert(value, unit, 4, find_conversion(df));
        EXPECT_EQ(result.size, size) << "format " << df;
        EXPECT_TRUE(size < 0 || result.low(size) == raw) << "format " << df;
    }
    const Inverted doubled = invert(2.5f, raw_bits, 100, find_conversion(62));
    EXPECT_EQ(doubled.size, 8);
    EXPECT_EQ(doubled.bytes[4], raw_bits) << "the unit's number stands in the high half";
}

TEST(Inverse, FailsWithoutAWayBack) {
    const ConvFunction good = half_counts<std::int32_t>;
    EXPECT_EQ(invert(1, m, 4, nullptr).size, -1);
    EXPECT_EQ(invert(NAN, m, 4, good).size, -1);
    for (const int available : {0, -1, INT32_MIN})
        for (const ConvFunction conversion : {good, find_conversion(61), find_conversion(62)})
            EXPECT_EQ(invert(1, raw_bits, available, conversion).size, -1);
    EXPECT_EQ(value_to_raw(nullptr, 1, m, 4, good, 0), -1);
    const ConvFunction text = [](ConvValue* out, const void*, UnitId, int*) { *out = narrow("none"); };
    EXPECT_EQ(invert(1, m, 4, text).size, -1);
    EXPECT_EQ(invert(1, m, 4, flat<0>).size, -1);
    EXPECT_EQ(invert(3, m, 4, flat<2>).size, 2) << "a division by zero is no failure";
    EXPECT_EQ(invert(11, m, 100, flat<INT32_MAX>).size, 8);
}

}  // namespace
}  // namespace pgn_vistel::test
