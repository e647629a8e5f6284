#include <bit>
#include <cmath>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using namespace unit;

double number_in(const ConvValue& v) {
    switch (v.type) {
        case CV_FLOAT: return v.value.f32;
        case CV_DOUBLE: return v.value.f64;
        case CV_I32: return v.value.i32;
        case CV_I64: return static_cast<double>(v.value.i64);
        default: return static_cast<double>(v.value.u64);
    }
}

constexpr std::uint64_t f32(float v) {
    return std::bit_cast<std::uint32_t>(v);
}
constexpr std::uint64_t f64(double v) {
    return std::bit_cast<std::uint64_t>(v);
}

constexpr int NA = CV_NOT_AVAILABLE, TIME = CV_TIME_OF_DAY, F = CV_FLOAT, D = CV_DOUBLE;
constexpr UnitId bits = raw_bits, counts = raw_count;
constexpr double not_available = 0x7FFFFFFF;  // the low half of the record then

TEST(SpecialFormats, Numbers) {
    struct Outcome {
        UnitId unit;
        int type;
        double expected = not_available;
    };
    const struct {
        DF df;
        int count;
        std::uint64_t bits;
        std::vector<Outcome> outcomes;
        // clang-format off
    } cases[] = {
        // undefined and unused formats
        {0, 4, 0x12345678, {{bits, CV_U32, 0x12345678}, {counts, NA}, {plain_65, NA}}},
        {24, untouched, 1, {{bits, NA}}}, {37, untouched, 1, {{counts, NA}}},
        {64, untouched, 1, {{plain_65, NA}}},
        // floating angles, plain floats, floating distances, plain doubles
        {3, 4, f32(1), {{deg, F, 57.29578}, {counts, F, 1}, {bits, F, 1}, {V, NA}}},
        {70, 4, f32(NAN), {{bits, F, NAN}, {counts, NA}, {deg, NA}}},
        {49, 4, f32(-1.5), {{tonf_uk, F, -1.5}, {bits, F, -1.5}, {counts, F, -1.5}}},
        {61, 4, f32(NAN), {{bits, F, NAN}, {counts, NA}, {ppm, NA}}},
        {12, 8, f64(1852), {{nm, F, 1}, {bits, D, 1852}, {counts, F, 1852}, {V, NA}}},
        {12, 8, f64(NAN), {{bits, D, NAN}, {counts, NA}, {m, NA}}},
        {62, 8, f64(0.1), {{bits, D, 0.1}, {counts, F, 0.1f}}},
        {62, 8, f64(NAN), {{bits, D, NAN}, {counts, NA}, {m, NA}}},
        // positions
        {23, 4, 600000000, {{deg_lat, D, 60}, {counts, D, 6e8}, {bits, CV_I32, 6e8}}},
        {23, 4, 0x7FFFFFFC, {{counts, D, 0x7FFFFFFC}}}, {23, 4, 0x80000000, {{bits, CV_I32, -2147483648.0}}},
        {23, 4, 0x7FFFFFFD, {{deg_lat, NA}, {counts, NA}, {deg_long, NA}, {bits, CV_I32, 0x7FFFFFFD}}},
        {25, 4, 0xFFFFFFF6, {{deg_long, D, -1e-6}}},
        {76, 8, 600000000000000000, {{deg_lat, D, 60}, {counts, D, 6e17}, {bits, CV_I64, 6e17}}},
        {76, 8, 0x7FFFFFFFFFFFFFFD, {{deg_lat, NA}, {counts, NA}, {bits, CV_I64, 0x1p63}}},
        {76, 8, 0x7FFFFFFFFFFFFFFC, {{deg_lat, D, 922.3372036854776}}},
        {77, 8, -10000000000000000ull, {{deg_long, D, -1}}},
        // dates, run times, periods
        {41, 2, 65533, {{bits, CV_U16, 65533}, {date_ymd, NA}, {days, NA}}},
        {41, 2, 65532, {{days, CV_U16, 65532}, {counts, CV_U16, 65532}, {hours, NA}}},
        {67, 4, 5400, {{hours, F, 1.5}, {seconds, TIME, 5400}, {counts, TIME, 5400}, {bits, TIME, 5400}}},
        {67, 4, 0xFFFFFFFD, {{seconds, NA}, {hours, NA}, {counts, NA}, {bits, TIME, 4294967293}}},
        {67, 4, 0xFFFFFFFC, {{seconds, TIME, 4294967292}}},
        {98, 2, 0xFFFE, {{minutes, TIME, 4294967294}, {bits, TIME, 4294967294}, {V, TIME, 4294967294}}},
        {98, 2, 0xFFFD, {{minutes, NA}, {bits, CV_U16, 0xFFFD}}},
        {98, 2, 0xFFFF, {{minutes, NA}, {bits, CV_U16, 0xFFFF}}},
        {98, 2, 90, {{hours, F, 1.5}, {counts, F, 90}, {bits, CV_U16, 90}}},
        // temperatures
        {39, 2, 37315, {{celsius, F, 100}, {fahrenheit, F, 212}, {counts, F, 37315}, {V, NA}}},
        {38, 2, 65533, {{celsius, NA}, {bits, CV_U16, 65533}}},
        {105, 3, 0xFFFFFD, {{celsius, NA}, {counts, NA}}},
        {105, 3, 373150, {{fahrenheit, F, 212}, {bits, CV_U32, 373150}}},
        // 48 bits in 8 bytes
        {117, 8, 0xFFFFFFFFFFFC, {{plain_65, CV_U64, 0xFFFFFFFFFFFC}, {V, NA}}},
        {117, 8, 5, {{counts, CV_U64, 5}}},
        {117, 8, 0xFFFFFFFFFFFD, {{plain_65, NA}, {counts, NA}, {bits, CV_U64, 0xFFFFFFFFFFFD}}},
        {117, 8, 0x1000000000000, {{counts, NA}}}, {117, 8, ~0ull, {{bits, CV_U64, 0x1p64}}},
        // numbers that keep an integer type
        {93, 1, 252, {{percent, CV_U8, 252}, {tonf_uk, CV_U8, 252}, {counts, CV_U8, 252}}},
        {93, 1, 253, {{percent, NA}, {bits, CV_U8, 253}}},
        {60008, 2, 105, {{V, CV_U16, 105}, {counts, CV_U16, 105}}},
        {60008, 2, 0xFFFF, {{bits, CV_U16, 65535}}},
        {112, 2, 350, {{ppm, CV_U16, 350}, {plain_66, CV_U16, 350}, {counts, CV_U16, 350}, {percent, NA}}},
        {112, 2, 0xFFFD, {{ppm, NA}, {bits, CV_U16, 0xFFFD}}},
        // offsets
        {2452, 4, 2000001500, {{W, F, 1500}, {counts, F, 1500}, {bits, CV_I32, 2000001500}, {V, NA}}},
        {2456, 4, 1999999000, {{kVAR, F, -1}}}, {2460, 4, 4147483647, {{VA, F, 2147483647}}},
        {2460, 4, 0xFFFFFFFD, {{VA, NA}, {counts, NA}, {bits, CV_I32, -3}}},
        {2464, 2, 32768, {{plain_64, F, 1}, {V, F, 1}, {counts, F, 16384}, {bits, CV_U16, 32768}}},
        {2464, 2, 0, {{plain_64, F, -1}}}, {2464, 2, 0xFFFD, {{plain_64, NA}, {counts, NA}}},
        {2516, 2, 2560, {{deg, F, -180}, {rad, F, -3.14159265}, {counts, F, -23040}, {deg_true, NA}}},
        {2516, 2, 0xFFFD, {{deg, NA}, {bits, CV_U16, 0xFFFD}}}, {101, 1, 0, {{plain_66, F, 1}}},
        {101, 1, 250, {{V, F, 1.5}, {counts, F, 250}}}, {101, 1, 253, {{plain_66, NA}, {bits, CV_U8, 253}}},
        // values that name their format: 500 mm/s, and a format that none may name
        {60007, 2, 0x01F40024, {{kph, F, 1.8}, {V, NA}}}, {60007, untouched, 0x01F40023, {{kph, NA}}},
        // what the caller's record held
        {104, 4, 1, {{kg, F, NAN}, {lb, F, 22046.2}}},
    };
    // clang-format on
    for (const auto& c : cases)
        for (const Outcome& o : c.outcomes) {
            SCOPED_TRACE("format " + std::to_string(c.df) + " bits " + std::to_string(c.bits) + " unit " +
                         std::to_string(o.unit));
            const Converted got = convert_bits(c.df, c.bits, o.unit);
            const double number = o.type == NA ? got.value.value.u32 : number_in(got.value);
            EXPECT_EQ(got.value.type, o.type);
            EXPECT_EQ(got.count, c.count);
            EXPECT_TRUE(std::isnan(o.expected)
                            ? std::isnan(number)
                            : std::fabs(number - o.expected) <= std::fabs(o.expected) * 3e-7)
                << number;
        }
    EXPECT_NEAR(convert_bits(39, 27315, celsius).value.value.f32, 0, 5e-5);
    EXPECT_EQ(convert_bits(35, 100, bft).value.value.f32, 1) << "1 m/s is 1.94 kt";
    EXPECT_EQ(convert_bits(62, f64(0.1), m).value.type, CV_FLOAT);
    EXPECT_EQ(convert_bits(62, f64(0.1), m).value.value.f64, 0.1) << "tagged single, stored double";
    for (const DF df : {23, 25, 76, 77})
        EXPECT_EQ(convert_bits(df, 1, V).value.value.u64, 0x7FFFFFFFFFFFFFFFu) << "a double for a wrong unit";
    const std::uint8_t value_behind_format[16] = {36, 0, 0xF4, 0x01};
    EXPECT_NEAR(convert(60009, value_behind_format + 2, kph).value.value.f32, 1.8, 1e-6);
}

TEST(SpecialFormats, BitFieldTakesCountBytes) {
    constexpr std::uint64_t bits = 0x8877665544332211;
    for (int count = -1; count <= 10; ++count) {
        const Converted c = convert_bits(52, bits, V, count);
        EXPECT_EQ(c.value.type, CV_U64);
        EXPECT_EQ(c.value.value.u64, count >= 1 && count <= 8 ? bits & (~0ull >> (64 - 8 * count)) : bits);
        EXPECT_EQ(c.count, count);
    }
}

TEST(SpecialFormats, CodesWithoutReservedValues) {
    constexpr std::uint64_t ones = ~0ull;
    const struct {
        DF df;
        int type;
        std::uint64_t expected;
        // clang-format off
    } cases[] = {
        {60010, CV_U8, 15}, {60011, CV_U8, 15}, {60013, CV_U8, 15}, {60012, CV_U8, 3}, {60014, CV_U8, 3},
        {60015, CV_U8, 3}, {60016, CV_U8, 63}, {60017, CV_U16, 0xFFFF}, {60018, CV_U32, 0x1FFFFFFF},
        {60019, CV_U64, ones}, {115, CV_U64, ones},
    };
    // clang-format on
    for (const auto& [df, type, expected] : cases)
        for (const UnitId u : {raw_bits, raw_count, V}) {
            const Converted c = convert_bits(df, ones, u);
            EXPECT_EQ(c.value.type, type) << df;
            EXPECT_EQ(c.value.value.u64, expected) << df;
            EXPECT_EQ(c.count, untouched) << df;
        }
    for (const DF df : {2518, 2526, 2527, 2528, 2529, 2530})
        for (const unsigned state : {0u, 3u, 4u, 7u, 255u}) {
            const Converted c = convert_bits(df, state, raw_bits);
            EXPECT_EQ(c.value.type, CV_U8);
            EXPECT_EQ(c.value.value.u8, state < 4 ? state : 255);
            EXPECT_EQ(c.count, 1);
        }
}

TEST(SpecialFormats, CountMayBeMissing) {
    const std::uint8_t raw[32] = {2, 1};
    for (const DFDef& format : all_formats()) {
        if (format.df == 63 || format.df == 3002 || (format.df >= 2518 && format.df <= 2530)) continue;
        ConvValue out{-1, {}};
        format.conv(&out, raw + 2, raw_bits, nullptr);
        EXPECT_NE(out.type, -1) << format.df;
    }
}

}  // namespace
}  // namespace pgn_vistel::test
