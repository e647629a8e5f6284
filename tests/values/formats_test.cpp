#include "pgn_vistel/formats.h"

#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using namespace unit;
using Db = QV_N2K_PGN_DB_c;

// Width, reserved codes, pseudo units and resolution of every format that follows the numeric scheme.

struct Kind {
    int bytes;
    bool is_signed;
    ConvType raw_type;
};

constexpr Kind u8{1, false, CV_U8}, i8{1, true, CV_I8}, u16{2, false, CV_U16}, i16{2, true, CV_I16},
    u24{3, false, CV_U32}, i24{3, true, CV_I32}, u32{4, false, CV_U32}, i32{4, true, CV_I32},
    u64{8, false, CV_U64}, i64{8, true, CV_I64};

constexpr UnitId any = -1;  // the format answers to every unit

struct Resolution {
    DF df;
    Kind kind;
    UnitId unit;
    double per_count;
};

// clang-format off
constexpr Resolution resolutions[] = {
    {1, i16, m_s2, 0.01}, {2, u16, rad, 1e-4}, {4, i16, rad, 1e-4}, {5, i16, rad_s2, 0.1},
    {6, u32, seconds, 1e-4}, {7, i16, A, 0.1}, {8, i16, A, 1e-4}, {9, u32, cm, 1}, {10, i16, cm, 0.01},
    {11, u32, m, 1}, {13, u16, cm, 1}, {14, i16, cm, 1}, {15, i32, cm, 1}, {16, i32, dB, 0.01},
    {17, i16, litre, 1}, {18, i16, litre_hr, 0.1}, {19, i16, N, 10}, {20, i16, N, 0.1}, {21, u32, Hz, 10},
    {22, u16, Hz, 0.01}, {26, u16, Hz, 1}, {27, u16, uT, 1}, {28, u16, W, 1}, {29, u16, kPa, 1},
    {30, i8, percent, 1}, {31, i16, dB, 0.01}, {32, u32, ohm, 1}, {33, u16, ohm, 0.01}, {34, i16, rpm, 1},
    {35, u16, m_s, 0.01}, {36, i16, mm_s, 1}, {40, i32, seconds, 0.001}, {42, i16, V, 0.01},
    {43, i16, V, 1e-4}, {44, u16, litre, 1}, {45, i32, seconds, 1e-9}, {46, i16, mm, 1}, {47, u16, kPa, 0.1},
    {48, i16, Pa_s, 10}, {65, u32, seconds, 0.001}, {66, u16, seconds, 0.01}, {68, u16, W, 0.001},
    {69, i16, any, 0.01}, {71, i16, minutes, 1}, {72, u16, rpm, 0.25}, {73, i16, rad_s, 3.125e-5},
    {74, i16, m, 1}, {75, u16, m, 0.1}, {78, i64, m, 1e-6}, {79, i32, cm, 0.001}, {80, u16, seconds, 1},
    {81, u16, seconds, 0.1}, {82, i16, mm_s, 0.1}, {83, i32, cm, 0.01}, {84, i16, percent, 0.004},
    {85, i32, rad_s, 3.125e-8}, {86, i32, litre, 0.1}, {87, i16, m_s, 0.01}, {88, u8, seconds, 0.005},
    {89, i24, deg_lat, 1e-5}, {89, i24, deg_long, 1e-5}, {90, i24, deg_lat, 1e-5}, {90, i24, deg_long, 1e-5},
    {91, i24, mm, 1}, {92, u32, VAR, 1}, {94, u32, W, 1}, {95, u16, A, 0.1}, {96, u16, V, 0.01},
    {97, i8, any, 0.01}, {99, u16, W, 1}, {100, u16, Ah, 1}, {102, u16, mV, 1}, {103, i32, Pa, 0.1},
    {104, u32, gram, 1e7}, {106, u16, V, 0.1}, {107, u16, Hz, 0.1}, {108, i32, W, 1}, {109, u8, m, 10},
    {110, u8, plain_66, 1}, {111, u8, seconds, 0.01}, {113, i16, kPa, 1}, {114, i24, A, 0.01},
    {116, u16, seconds, 0.001}, {2436, u16, Hz, 1.0 / 128}, {2440, u16, V, 1}, {2444, u16, V, 1},
    {2448, u16, A, 1}, {2468, u32, any, 1}, {3000, u16, ppm, 1}, {3001, u16, kPa, 1}, {60001, u24, litre, 1},
    {60002, i24, litre_hr, 0.1}, {60003, u64, byte, 1}, {60004, i16, any, 1}, {60005, u16, mA, 1.0 / 2048},
    {60006, u16, V, 1.0 / 4096}, {60020, u32, Wh, 1}, {60021, u32, Ah, 0.001}, {60022, i32, percent, 0.001},
    {60023, i32, Ah, 0.001}, {60024, i32, Wh, 0.001}, {60025, u32, Hz, 0.001}, {60026, i32, m_s, 1e-6},
    {60027, i32, m_s2, 1e-6}, {60028, i32, N, 0.001}, {60029, i32, ohm, 0.001}, {60031, i32, Pa_s, 1e-5},
    {60032, i32, rad, 1e-6}, {60033, i32, rad_s2, 1e-4}, {60034, i32, rpm, 0.001}, {60035, u32, uT, 0.01},
    {60036, i32, V, 1e-6}, {60037, u32, V, 0.001}, {60038, i32, W, 0.001}, {60039, i32, Nm, 0.001},
    {60040, u32, ppm, 1000}, {60041, i32, A, 1e-4}, {60042, u32, A, 0.001}, {60043, i32, VAR, 0.001},
    {60044, i32, VA, 0.001},
};
// clang-format on

std::uint64_t top_code(const Kind& kind) {
    return ~std::uint64_t{0} >> (64 - 8 * kind.bytes + (kind.is_signed ? 1 : 0));
}

TEST(Formats, NumbersFollowOneScheme) {
    for (const auto& [df, kind, own_unit, per_count] : resolutions) {
        SCOPED_TRACE(df);
        const UnitId unit = own_unit == any ? UnitId{gear} : own_unit;
        const std::uint64_t top = top_code(kind);
        for (const std::uint64_t refused : {top, top - 1, top - 2}) {
            for (const UnitId u : {unit, UnitId{raw_count}}) {
                const Converted c = convert_bits(df, refused, u);
                EXPECT_EQ(c.value.type, CV_NOT_AVAILABLE);
                EXPECT_EQ(c.value.value.u32, 0x7FFFFFFFu);
                EXPECT_EQ(c.count, kind.bytes);
            }
            const Converted bits = convert_bits(df, refused, raw_bits);
            EXPECT_EQ(bits.value.type, kind.raw_type);
            EXPECT_EQ(bits.value.value.u64 & top, refused);
        }
        for (const std::uint64_t accepted : {std::uint64_t{0}, top - 3, top + 1}) {
            if (accepted == top + 1 && !kind.is_signed) continue;
            // top + 1 is the most negative number
            const auto number = static_cast<std::int64_t>(accepted == top + 1 ? ~top : accepted);
            const float expected = kind.is_signed ? static_cast<float>(number)
                                                  : static_cast<float>(static_cast<std::uint64_t>(number));
            const Converted count = convert_bits(df, accepted, raw_count);
            EXPECT_EQ(count.value.type, CV_FLOAT);
            EXPECT_EQ(count.value.value.f32, expected);
            EXPECT_EQ(convert_bits(df, accepted, unit).value.type, CV_FLOAT);
            EXPECT_EQ(convert_bits(df, accepted, raw_bits).value.value.i32,
                      static_cast<std::int32_t>(number));
        }
        const double raw = kind.bytes == 1 ? 100 : 12345;
        const Converted scaled = convert_bits(df, static_cast<std::uint64_t>(raw), unit);
        EXPECT_NEAR(scaled.value.value.f32, raw * per_count, raw * per_count * 2.5e-7);

        // A unit of another quantity: nothing, but for times, which take it for a clock.
        const bool is_time = own_unit == seconds || own_unit == minutes;
        EXPECT_EQ(convert_bits(df, 100, gear).value.type, is_time           ? CV_TEXT
                                                          : own_unit == any ? CV_FLOAT
                                                                            : CV_NOT_AVAILABLE);
    }
    EXPECT_FLOAT_EQ(convert_bits(9, 3000000000u, m).value.value.f32, 3e7f) << "above the sign bit";
    EXPECT_FLOAT_EQ(convert_bits(60003, 1ull << 63, TB).value.value.f32, 8388608.0f);
}

TEST(Formats, IdentifiersKeepTheirType) {
    constexpr std::pair<DF, Kind> integers[] = {{53, u8}, {54, u16}, {55, u32}, {56, u64},
                                                {57, i8}, {58, i16}, {59, i32}, {60, i64}};
    for (const auto& [df, kind] : integers) {
        SCOPED_TRACE(df);
        const std::uint64_t top = top_code(kind);
        for (const UnitId u : {raw_count, raw_bits, plain_64, plain_65}) {
            const Converted c = convert_bits(df, top - 3, u);
            EXPECT_EQ(c.value.type, kind.raw_type);
            EXPECT_EQ(c.value.value.u64, top - 3);
            EXPECT_EQ(c.count, kind.bytes);
            EXPECT_EQ(convert_bits(df, top - 2, u).value.type,
                      u == raw_bits ? kind.raw_type : CV_NOT_AVAILABLE);
        }
        EXPECT_EQ(convert_bits(df, 5, plain_66).value.type, CV_NOT_AVAILABLE);
        EXPECT_EQ(convert_bits(df, ~std::uint64_t{0}, plain_65).value.type,
                  kind.is_signed ? kind.raw_type : CV_NOT_AVAILABLE)
            << "minus one";
    }
}

TEST(Formats, ConversionByNumber) {
    for (const DF df : {0, 24, 37, 117, 2436, 2444, 3000, 3002, 60001, 60029, 60031, 60044})
        EXPECT_NE(find_conversion(df), nullptr) << df;
    for (const DF df : {118, 2435, 2445, 3003, 60000, 60030, 60045, 65535})
        EXPECT_EQ(find_conversion(df), nullptr) << df;
    EXPECT_EQ(find_conversion(2444), find_conversion(2440));
    EXPECT_EQ(Db::DF_to_conv_DF(105), reinterpret_cast<void*>(find_conversion(105)));
    EXPECT_EQ(find_self_described(105), find_conversion(105));
    for (const DF df : {35, 60007, 65535}) EXPECT_EQ(find_self_described(df), nullptr) << df;
    for (const DFDef& format : all_formats())
        EXPECT_EQ(format.conv, find_conversion(static_cast<DF>(format.df)));
    EXPECT_STREQ(all_formats()[9].name, "DF09");
    EXPECT_STREQ(all_formats().back().name, "DF60044");
}

TEST(Formats, ConversionOfOneField) {
    const std::uint8_t raw[16] = {10, 0};
    const struct {
        DF df;
        UnitId unit;
        int expected;
        // clang-format off
    } cases[] = {
        {54, plain_65, 2}, {54, 139, -1}, {9, 139, -1}, {69, 139, 2}, {69, 140, -1}, {54, -1, -1}, {6, -1, 4},
        {24, raw_count, -1}, {37, raw_bits, -1}, {118, 0, -2}, {2445, 0, -2}, {60030, 0, -2},
    };
    // clang-format on
    ConvValue out{CV_NOT_AVAILABLE, {}};
    for (const auto& [df, unit, expected] : cases)
        EXPECT_EQ(Db::conv_DF(df, &out, raw, unit), expected) << df << " in unit " << unit;
    EXPECT_GE(Db::conv_DF(52, &out, raw, 0), 1);
    EXPECT_EQ(out.value.u64, 10u);
    EXPECT_EQ(Db::conv_DF(118, nullptr, raw, 0), -1);
    EXPECT_EQ(Db::conv_DF(118, &out, nullptr, 0), -1);
}

TEST(Formats, QuantityByFormatAndBack) {
    constexpr std::pair<int, int> quantities[] = {{1, 25},     {112, 55},   {114, 6},    {106, 5},
                                                  {60001, -1}, {60031, 63}, {2, -1},     {6, -1},
                                                  {65535, -1}, {0, -1},     {60020, 49}, {105, 10}};
    for (const auto& [df, quantity] : quantities)
        EXPECT_EQ(Db::DF_to_DispDataType(static_cast<DF>(df)), quantity) << df;

    constexpr int none = 65535;
    constexpr int formats[65] = {none,  none,  35,   none, 86,    42,    7,    4,     none, none,  38,
                                 none,  29,    68,   32,   20,    21,    none, 60032, 31,   18,    none,
                                 40,    41,    none, 1,    27,    60008, 59,   61,    none, 34,    none,
                                 none,  30,    none, none, 84,    none,  none, none,  none, none,  60021,
                                 60044, 60043, none, none, 60005, 60020, none, none,  none, 60003, 104,
                                 112,   60004, 73,   5,    79,    36,    none, 16,    48,   60039};
    for (int q = 0; q < 65; ++q) EXPECT_EQ(Db::DispDataType_to_DF(q), formats[q]) << q;
    for (const int q : {-1, 65, 66, 1000}) EXPECT_EQ(Db::DispDataType_to_DF(q), none) << q;
}

}  // namespace
}  // namespace pgn_vistel::test
