#include <map>
#include <memory>
#include <set>
#include <span>

#include "support/testing.h"
#include "values/parsers/special.h"

namespace pgn_vistel::test {
namespace {

using namespace unit;

constexpr auto counts = raw_count;

struct Typed {
    UnitId unit;
    const char* text;
    std::int64_t raw;
};

struct TypedIn {
    ConvType type;
    std::vector<DF> formats;
    std::vector<Typed> cases;
};

// By rule: what is typed and the raw number that it becomes.
// clang-format off
const TypedIn by_units[] = {
    {CV_I16, {1}, {{m_s2, "1.5", 150}, {counts, "1.5", 150}, {g_force, "1.5", 0x7FFF}, {m_s2, "abc", 0x7FFF},
                   {m_s2, "400", 0x7FFE}, {m_s2, "-327.68", -32768}, {m_s2, "-328", 0x7FFE}}},
    {CV_U16, {2}, {{deg, "90", 15707}, {deg_mag, "90", 15707}, {deg_true, "90", 15707}, {counts, "90", 15707},
                   {rad, "1", 10000}, {rad_mag, "1", 10000}, {rad_true, "1", 10000}, {deg, "-1", 0xFFFE},
                   {deg_lat, "1", 0xFFFF}}},
    {CV_I16, {4}, {{deg_true, "-90", -15707}, {rad_true, "-1", -10000}, {counts, "-90", -15707}, {V, "1", 0x7FFF}}},
    {CV_I16, {5}, {{deg, "180", 31}, {counts, "180", 31}, {rad, "2", 20}, {deg_s2, "180", 0x7FFF},
                   {rad_s2, "2", 0x7FFF}, {deg_true, "180", 0x7FFF}}},
    {CV_I16, {7}, {{A, "-1.5", -15}, {counts, "2", 20}, {mA, "1", 0x7FFF}}},
    {CV_I16, {8}, {{A, "1", 10000}, {counts, "1", 10000}, {mA, "100", 1000}, {V, "1", 0x7FFF}}},
    {CV_I32, {16}, {{dB, "1.5", 150}, {counts, "1.5", 150}, {plain_66, "1", 0x7FFFFFFF}}},
    {CV_I16, {31}, {{dB, "1.5", 150}, {counts, "1.5", 150}}},
    {CV_I16, {19}, {{N, "100", 10}, {counts, "100", 10}, {kN, "1", 0x7FFF}}},
    {CV_I16, {20}, {{N, "100", 1000}}},
    {CV_U32, {21}, {{Hz, "100", 10}, {counts, "100", 10}, {kHz, "1", 0xFFFFFFFF}}},
    {CV_U16, {22}, {{Hz, "50.25", 5025}}}, {CV_U16, {26}, {{Hz, "50.9", 50}}}, {CV_U16, {107}, {{Hz, "50", 500}}},
    {CV_I32, {23}, {{deg_lat, "47.5", 475000000}, {counts, "47.5", 475000000}, {deg_long, "47.5", 0x7FFFFFFF},
                    {deg_lat, "300", 0x7FFFFFFE}}},
    {CV_I32, {25}, {{deg_long, "-47.5", -475000000}, {deg_lat, "47.5", 0x7FFFFFFF}}},
    {CV_I64, {76}, {{deg_lat, "47.5", 475000000000000000}, {counts, "-1", -10000000000000000},
                    {deg_long, "1", INT64_MAX}, {deg_lat, "1000", INT64_MIN}}},
    {CV_I64, {77}, {{deg_long, "47.5", 475000000000000000}, {deg_lat, "1", INT64_MAX}}},
    {CV_I64, {78}, {{deg_long, "1000", 1000000000}, {counts, "-1000", -1000000000}, {m, "1000", INT64_MAX}}},
    {CV_I32, {89, 90}, {{deg, "-45", -4500000}, {counts, "45", 4500000}, {deg_lat, "45", 0x7FFFFF},
                        {deg, "90", 0x7FFFFE}}},
    {CV_U16, {27}, {{T, "0.001", 1000}, {counts, "0.001", 1000}, {uT, "1", 0xFFFF}}},
    {CV_U16, {28, 99}, {{W, "500", 500}, {counts, "500", 500}, {kW, "0.5", 500}, {kVA, "1", 0xFFFF}}},
    {CV_U32, {108}, {{W, "500", 500}, {counts, "5", 5}, {kW, "0.5", 500}, {W, "-1", 0xFFFFFFFE}}},
    {CV_U16, {68}, {{W, "1.5", 1500}, {kW, "1", 0xFFFF}}},
    {CV_U32, {32}, {{ohm, "10.9", 10}, {kohm, "1", 0xFFFFFFFF}}}, {CV_U16, {33}, {{ohm, "10.5", 1050}}},
    {CV_I16, {34}, {{deg_s, "60", 10}, {deg_min, "3600", 10}, {rpm, "10", 10}, {counts, "10", 10}, {rad_s, "1", 0x7FFF}}},
    {CV_U16, {72}, {{deg_s, "60", 40}, {deg_min, "3600", 40}, {rpm, "10", 40}, {counts, "10", 40}}},
    {CV_I16, {73}, {{deg_s, "10", 5585}, {counts, "10", 5585}, {deg_min, "600", 5585}, {rpm, "1", 3351}, {rad_s, "1", 0x7FFF}}},
    {CV_I32, {85}, {{deg_s, "1", 558505}, {deg_min, "60", 558505}, {rpm, "1", 3351032}, {counts, "1", 558505}}},
    {CV_I16, {42}, {{V, "12.5", 1250}, {mV, "1", 0x7FFF}}}, {CV_I16, {43}, {{V, "1.25", 12500}}},
    {CV_U16, {102}, {{V, "12.5", 12500}, {counts, "12.5", 12500}, {mV, "12.5", 12}}},
    {CV_U16, {106}, {{V, "12.5", 12}, {counts, "12", 12}, {mV, "1", 0xFFFF}}},
    {CV_U16, {100}, {{Ah, "75.5", 75}, {counts, "75", 75}, {C, "1", 0xFFFF}}},
    {CV_I32, {114}, {{A, "-1.5", -150}, {counts, "1.5", 150}, {mA, "1", 0x7FFFFF}, {A, "1e5", 0x7FFFFE}}},
    {CV_FLOAT, {3, 70}, {{rad, "0.5", 0x3F000000}, {rad_true, "-0.5", 0xBF000000}, {deg, "57.29578", 0x3F800000},
                         {counts, "57.29578", 0x3F800000}, {V, "1", 0x7FFFFFFF}, {rad, "x", 0x7FFFFFFF},
                         {deg, "", 0x7FFFFFFF}, {rad, "1e99", 0x7F800000}}},
};

const TypedIn times[] = {
    {CV_U32, {6}, {{hours, "1", 36000000}, {minutes, "1", 600000}, {seconds, "1", 10000}, {counts, "1", 10000},
                   {days, "1", 0xFFFFFFFF}, {clock_24, "1", 0xFFFFFFFF}}},
    {CV_I32, {40}, {{hours, "-1", -3600000}, {seconds, "1.5", 1500}, {counts, "1.5", 1500}, {days, "1", 0x7FFFFFFF}}},
    {CV_I32, {45}, {{seconds, "1.5", 1500000000}, {minutes, "1", 0x7FFFFFFE}}},
    {CV_U32, {65}, {{minutes, "1", 60000}}}, {CV_U32, {67}, {{hours, "1.5", 5400}}},
    {CV_U16, {66}, {{seconds, "1.5", 150}}}, {CV_U16, {80}, {{minutes, "1.5", 90}}}, {CV_U16, {81}, {{minutes, "1", 600}}},
    {CV_U8, {88}, {{seconds, "0.5", 100}, {counts, "0.5", 100}, {hours, "1", 254}, {days, "0", 255}}},
    {CV_U8, {111}, {{seconds, "0.5", 50}}},
    {CV_I16, {71}, {{hours, "-2", -120}, {minutes, "5.9", 5}, {counts, "5", 5}, {seconds, "90", 1}, {days, "1", 0x7FFF}}},
    {CV_U16, {98}, {{hours, "2", 120}, {seconds, "90", 1}, {minutes, "x", 0xFFFF}}},
    {CV_U16, {116}, {{seconds, "65.535", 65535}, {seconds, "65.537", 65537}, {hours, "1000", 0x7FFFFFFE}, {days, "1", 0xFFFF}}},
};

// A unit without a factor gives 0, not the code of "not available". Factors are single precision, so the number
// may end just below the whole one and lose a count.
const TypedIn by_factor[] = {
    {CV_U32, {9}, {{m, "10", 1000}, {cm, "7", 7}, {counts, "7", 7}, {inch, "10", 25}, {mm, "10", 0}, {V, "10", 0}}},
    {CV_U16, {13}, {{m, "1000", 65534}, {ft, "10", 304}, {km, "0.5", 50000}, {m, "-1", 65534}}},
    {CV_I16, {14}, {{ftm, "1", 182}, {m, "-300", -30000}}},
    {CV_I32, {15}, {{cm, "-1", -1}, {nm, "1", 185200}, {stm, "1", 160934}}},
    {CV_I16, {10}, {{cm, "1.5", 150}}}, {CV_I16, {46}, {{cm, "1.5", 15}}}, {CV_I32, {83}, {{m, "1", 10000}}},
    {CV_U32, {11}, {{counts, "1", 1852}, {m, "1", 1}, {nm, "1", 1852}, {cm, "250", 2}, {mm, "5", 0}}},
    {CV_I16, {74}, {{m, "-5", -5}, {counts, "500", 5}}}, {CV_U16, {75}, {{m, "1", 1000}}},
    {CV_I32, {79}, {{cm, "1.5", 1500}}}, {CV_I32, {91}, {{cm, "1.5", 15}, {km, "100", 0x7FFFFE}}},
    {CV_U8, {109}, {{cm, "2.5", 250}, {m, "0.5", 0xFE}, {mm, "1", 0}}},
    {CV_I16, {17}, {{litre, "-5", -5}, {gal, "10", 37}, {imp_gal, "10", 45}, {m3, "2", 1999}, {qt, "1", 0}}},
    {CV_U16, {44}, {{litre_hr, "5", 5}}}, {CV_I16, {18}, {{gal_hr, "1", 37}, {imp_gal_hr, "1", 45}}},
    {CV_U32, {86}, {{m3_hr, "1", 10000}, {counts, "5", 50}, {litre, "-1", 0xFFFFFFFE}}},
    {CV_U32, {60001}, {{litre, "20000000", 20000000}}},
    {CV_I32, {60002}, {{litre_hr, "-12.5", -125}, {counts, "1", 10}, {V, "1", 0}}},
    {CV_U16, {29}, {{kPa, "101.9", 101}, {bar, "1", 100}, {mbar, "1000", 100}, {Pa, "5000", 5}, {Pa_s, "5000", 0}}},
    {CV_I16, {113}, {{kPa, "-5", -5}, {counts, "5", 5}}}, {CV_I16, {3001}, {{kPa, "5", 5000}}},
    {CV_U16, {47}, {{unit::atm, "1", 1013}, {psi, "10", 689}}}, {CV_U16, {48}, {{inHg, "1", 338}, {mmHg, "100", 1333}}},
    {CV_I32, {103}, {{kPa, "1.5", 15000}}},
    {CV_U16, {35}, {{m_s, "1", 100}, {kt, "100", 5144}, {counts, "100", 5144}, {mph, "10", 447}, {kph, "36", 1000},
                    {mm_s, "1000", 0}, {ft_s, "1", 0}, {bft, "4", 0xFFFE}, {bft, "0", 0}}},
    {CV_I16, {36}, {{counts, "1", 514}, {m_s, "-1", -999}, {bft, "-4", 0x7FFE}}},
    {CV_I16, {82}, {{counts, "1", 5144}}}, {CV_I16, {87}, {{counts, "10", 514}}},
    {CV_U16, {60005}, {{A, "0.015625", 31999}, {mA, "10", 20480}, {counts, "0.02", 40959}, {V, "1", 0}}},
    {CV_U16, {60006}, {{V, "1.5", 6144}, {mV, "1500", 6144}, {counts, "1.5", 6144}, {A, "1", 0}}},
    {CV_U16, {38}, {{celsius, "0", 2731}, {counts, "32", 2731}, {fahrenheit, "32", 2731}, {V, "1", 0}, {celsius, "x", 0xFFFF}}},
    {CV_U16, {39}, {{celsius, "-300", 65534}, {fahrenheit, "212", 37315}}},
    {CV_U32, {105}, {{celsius, "-273.15", 0}, {celsius, "20000", 0xFFFFFE}}},
};

const TypedIn without_unit[] = {
    {CV_U8, {53, 93, 110}, {{m, "252.9", 252}, {V, "253", 254}, {counts, "-1", 254}, {m, "x", 255}}},
    {CV_I8, {30, 57, 97}, {{percent, "-128", -128}, {m, "124", 124}, {m, "125", 126}, {m, "x", 127}}},
    {CV_U16, {41, 54, 95, 96, 112, 60008, 60009}, {{V, "65532", 65532}, {A, "65533", 65534}, {mA, "12.5", 12}, {m, "x", 65535}}},
    {CV_I16, {58, 60004}, {{m, "-32768", -32768}, {m, "32765", 32766}, {m, "x", 32767}}},
    {CV_U32, {55, 92, 94}, {{W, "4294967040", 4294967040}, {kW, "1.5", 1}, {m, "4294967296", 0xFFFFFFFE}, {m, "x", 0xFFFFFFFF}}},
    {CV_I32, {59}, {{m, "-2147483648", INT32_MIN}, {m, "2147483648", 0x7FFFFFFE}, {m, "x", 0x7FFFFFFF}}},
    {CV_U64, {56}, {{m, "1e18", 999999984306749440}, {V, "-1", -1}, {m, "1e19", INT64_MIN}, {m, "x", -1}}},
    {CV_I64, {60}, {{m, "-1e18", -999999984306749440}, {m, "x", INT64_MAX}}},
    {CV_U64, {117}, {{m, "281474976710655", 0x1000000000000}, {m, "x", 0xFFFFFFFFFFFF}}},
    {CV_I16, {69}, {{V, "-1.5", -150}}}, {CV_I16, {84}, {{percent, "0.4", 100}, {V, "0.4", 100}}},
    {CV_U8, {101}, {{m, "1", 0}, {m, "1.1", 50}, {V, "0.9", 254}}},
    {CV_U16, {3000}, {{ppm, "70000", 70000}, {V, "-1", -1}, {m, "1e30", INT64_MIN}, {m, "x", 0xFFFF}}},
    {CV_U64, {52, 115}, {{V, "18446744073709551614", -2}, {m, "-1", -1}, {m, "12.7", 12}, {m, "x", -1}, {m, "99999999999999999999", -1}}},
    {CV_U8, {60010, 60011, 60012, 60013, 60014, 60015, 60016}, {{V, "9", 9}, {m, "300", 44}, {m, "-1", 255}, {m, "x", 255}}},
    {CV_U16, {60017}, {{V, "65537", 1}, {m, "x", 0xFFFF}}},
    {CV_U32, {60018, 60020, 60021}, {{V, "4294967294", 4294967294}, {kWh, "1.9", 1}, {m, "4294967296", 0xFFFFFFFF}, {m, "x", 0xFFFFFFFF}}},
    {CV_U64, {60019}, {{V, "1122334455667788", 0x1122334455667788}, {m, "0xff", 255}, {m, "x", -1}}},
    {CV_U8, {2518, 2526, 2527, 2528, 2529, 2530}, {{m, "0", 0}, {V, "3", 3}, {m, "4", 254}, {m, "9", 254}, {m, "-1", 254},
                                                   {m, "4294967297", 254}, {m, "x", 255}}},
    {CV_U8, {0}, {{m, "5", 255}, {raw_bits, "", 255}}},
    {CV_FLOAT, {12, 49, 61}, {{V, "-1.5", 0xBFC00000}, {nm, "1.5", 0x3FC00000}, {m, "x", 0x7FFFFFFF}, {m, "", 0x7FFFFFFF}, {m, " ", 0x7FFFFFFF}}},
    {CV_FLOAT, {62, 64}, {{m, "5", 0x7FFFFFFF}, {raw_bits, "5", 0x7FFFFFFF}}},
};

const TypedIn with_bounds[] = {
    {CV_U32, {2452, 2456, 2460}, {{W, "-2000000000", 0}, {counts, "0", 2000000000}, {VA, "1000", 2000001000}, {VAR, "-1.9", 1999999999},
                                  {kW, "1", 2000001000}, {kVA, "-2e6", 0}, {kVAR, "1", 2000001000}, {mW, "1", 0xFFFFFFFF},
                                  {W, "-2000000128", 0xFFFFFFFE}, {W, "2211081215", 0xFB000000}, {W, "2211082000", 0xFFFFFFFE}}},
    {CV_U16, {2516}, {{deg, "-200", 0}, {counts, "0", 25600}, {rad, "1", 32933}, {deg, "301.99", 64254}, {deg, "302", 0xFFFE},
                      {rad, "-4", 0xFFFE}, {deg_true, "1", 0xFFFF}}},
    {CV_U16, {2436}, {{Hz, "50", 6400}, {counts, "50", 6400}, {Hz, "501.9921875", 64255}, {Hz, "502", 0xFFFE}, {Hz, "-0.01", 0xFFFE}, {kHz, "1", 0xFFFF}}},
    {CV_U16, {2440}, {{V, "64255", 64255}, {counts, "0", 0}, {V, "64255.5", 0xFFFE}, {V, "-0.5", 0xFFFE}, {A, "1", 0xFFFF}}},
    {CV_U16, {2448}, {{A, "64255", 64255}, {A, "0", 0}, {A, "-0.5", 0xFFFE}, {counts, "64256", 0xFFFE}, {V, "1", 0xFFFF}}},
    {CV_U16, {2464}, {{V, "-1", 0}, {m, "0", 16384}, {m, "1", 32768}, {m, "1.001", 0xFFFE}, {m, "-1.001", 0xFFFE}, {m, "x", 0xFFFF}}},
    {CV_U32, {2468}, {{V, "0", 0}, {m, "4211081215", 0xFB000000}, {m, "4211082000", 0xFFFFFFFE}, {m, "-1", 0xFFFFFFFE}, {m, "x", 0xFFFFFFFF}}},
};

const TypedIn odd_ones[] = {
    {CV_U32, {104}, {{counts, "12.7", 12}, {lb, "10", 220}, {kg, "2", 400000000}, {lb, "1e10", 0xFFFFFFFE}, {gram, "1", 0xFFFFFFFF}, {kg, "x", 0xFFFFFFFF}}},
    {CV_FLOAT, {60003}, {{byte, "1.5", 0x3FC00000}, {V, "1.5", 0x3FC00000}, {KB, "1024", 0x3F800000}, {MB, "1048576", 0x3F800000},
                         {GB, "1073741824", 0x3F800000}, {TB, "1.099511627776e12", 0x3F800000}, {byte, "x", 0x7FFFFFFF},
                         {TB, "1e40", 0x6DEB1950}, {byte, "1e40", 0x7F800000}}},
};

const TypedIn probed[] = {
    {CV_U32, {60025}, {{Hz, "50", 50000}, {kHz, "0.05", 50000}, {counts, "50", 50}, {V, "50", 0xFFFFFFFF}, {Hz, "x", 0xFFFFFFFF}}},
    {CV_I32, {60022}, {{percent, "-1.5", -1500}, {percent, "0.0005", 1}, {V, "1", 0x7FFFFFFF}}},
    {CV_I32, {60041}, {{A, "-1", -10000}, {mA, "1", 10}}}, {CV_I32, {60026}, {{kt, "1", 514444}}},
    {CV_I32, {60029}, {{ohm, "1", 1000}, {mohm, "1", 0x7FFFFFFF}}}, {CV_U32, {60040}, {{ppm, "5000", 5}}},
    {CV_I32, {60036}, {{V, "1", 1000000}}}, {CV_I32, {60026}, {{bft, "4", 357913952}}},  // taken for linear
};
// clang-format on

TEST(Parsers, TextsBecomeRawNumbers) {
    const std::pair<const char*, std::span<const TypedIn>> groups[] = {{"by units", by_units},
                                                                       {"times", times},
                                                                       {"by factor", by_factor},
                                                                       {"without unit", without_unit},
                                                                       {"with bounds", with_bounds},
                                                                       {"odd ones", odd_ones},
                                                                       {"probed", probed}};
    for (const auto& [name, group] : groups)
        for (const auto& [type, formats, cases] : group)
            for (const DF df : formats)
                for (const auto& [unit, text, raw] : cases) {
                    const ConvValue out = parse(df, text, unit);
                    EXPECT_EQ(out.type, type) << name << ", format " << df;
                    EXPECT_EQ(out.value.i64, raw)
                        << name << ", format " << df << " '" << text << "' in unit " << unit;
                }
}

TEST(Parsers, RawCountIsARealUnit) {
    const std::pair<UnitId, std::vector<DF>> groups[] = {
        // clang-format off
        {m_s2, {1}}, {deg, {2, 3, 4, 5, 70, 89, 90, 2516}}, {A, {7, 8, 114, 2448, 60005}},
        {V, {42, 43, 102, 106, 2440, 60006}}, {dB, {16, 31}}, {N, {19, 20}}, {Hz, {21, 22, 26, 107, 2436}},
        {deg_lat, {23, 76}}, {deg_long, {25, 77, 78}}, {T, {27}}, {W, {28, 68, 99, 108, 2452, 2456, 2460}},
        {ohm, {32, 33}}, {rpm, {34, 72}}, {deg_s, {73, 85}}, {Ah, {100}}, {minutes, {71, 98}},
        {seconds, {6, 40, 45, 65, 66, 67, 80, 81, 88, 111, 116}}, {fahrenheit, {38, 39, 105}},
        {cm, {9, 10, 13, 14, 15, 46, 74, 75, 79, 83, 91, 109}}, {nm, {11}}, {kt, {35, 36, 82, 87}},
        {litre, {17, 18, 44, 86, 60001, 60002}}, {kPa, {29, 47, 48, 103, 113, 3001}},
        // clang-format on
    };
    for (const auto& [unit, formats] : groups)
        for (const DF df : formats) {
            int differing = 0;  // texts that do not all end in one code
            for (const char* text : {"0.0005", "0.25", "1.25", "25", "250"}) {
                const ConvValue typed = parse(df, text, raw_count);
                EXPECT_EQ(typed.value.u64, parse(df, text, unit).value.u64) << df << " '" << text << "'";
                differing += typed.value.u64 != parse(df, "?", unit).value.u64;
            }
            EXPECT_GT(differing, 0) << df;
        }
}

TEST(Parsers, UnreadableTextReadsAsNotAvailable) {
    // But not where the field has no such code or is of another kind than what is typed.
    const std::set<DF> reads_as_number = {12,    48,    62,    86,    108,   3001,  60003, 60010,
                                          60011, 60012, 60013, 60014, 60015, 60016, 60018};
    for (const DFDef& format : all_formats()) {
        SCOPED_TRACE(format.name);
        ASSERT_NE(format.parse, nullptr);
        EXPECT_EQ(format.parse(nullptr, "1", m), nullptr);
        const auto df = static_cast<DF>(format.df);
        const ConvValue unreadable = parse(df, "?", m), missing = parse(df, nullptr, m);
        EXPECT_EQ(missing.type, unreadable.type);
        if (unreadable.type >= CV_TEXT_NARROW) continue;
        EXPECT_EQ(missing.value.u64, unreadable.value.u64);
        const ConvValue read = convert_bits(df, unreadable.value.u64, raw_count).value;
        EXPECT_EQ(is_available(read), reads_as_number.contains(df));
    }
}

TEST(Parsers, EmptyTextIsZero) {
    // The scanner reports the end of the text, not a failure, so what is typed is 0 in the unit chosen.
    const struct {
        DF df;
        UnitId unit;
        std::int64_t raw;
        // clang-format off
    } cases[] = {
        {1, m_s2, 0}, {13, m, 0}, {40, seconds, 0}, {54, m, 0}, {56, m, 0}, {104, kg, 0}, {2518, m, 0},
        {60010, m, 0}, {60019, m, 0}, {60022, percent, 0}, {60003, byte, 0x7FFFFFFF}, {101, m, 254}, {2464, m, 16384},
        {2516, deg, 25600}, {39, celsius, 27315}, {1, m, 0x7FFF},
        // clang-format on
    };
    for (const auto& [df, unit, raw] : cases)
        for (const char* text : {"", "  \t"}) EXPECT_EQ(parse(df, text, unit).value.i64, raw) << df;
}

// ---- texts ----

std::vector<std::uint8_t> bytes_at(const void* at, std::size_t count) {
    const auto* const first = static_cast<const std::uint8_t*>(at);
    return {first, first + count};
}

TEST(Parsers, ShortTexts) {
    const auto field = [](const std::string& text) {
        const ConvValue out = parse(50, text.c_str(), m);
        EXPECT_EQ(out.type, CV_RAW_FIELD);
        return bytes_at(out.value.raw, out.value.raw[0]);
    };
    using Bytes = std::vector<std::uint8_t>;
    EXPECT_EQ(field("Abc"), (Bytes{5, 1, 'A', 'b', 'c'}));
    EXPECT_EQ(field("\xE9"), (Bytes{3, 1, 0xE9}));
    EXPECT_EQ(field(""), (Bytes{2, 1}));
    // The code page's euro sign and omega have no single byte in the field.
    EXPECT_EQ(field("5\x80\xE9"), (Bytes{8, 0, '5', 0, 0xAC, 0x20, 0xE9, 0}));
    EXPECT_EQ(field("\x81"), (Bytes{4, 0, 0xA9, 0x03}));
    EXPECT_EQ(field(std::string(250, 'x')).size(), 252u);
    EXPECT_EQ(field(std::string(10000, 'x')).size(), 252u);
    EXPECT_EQ(field(std::string(10000, 'x') + "\x80").size(), 252u);
    EXPECT_EQ(field(std::string(124, 'x') + "\x80")[0], 252);
    EXPECT_EQ(parse(50, nullptr, m).value.raw[0], 2);

    for (const char* text : {"Port engine", "5 \x80", "\x81 \xE9"}) {
        const Converted back = convert(50, parse(50, text, m).value.raw, m);
        std::string narrowed;
        for (const wchar_t* c = back.value.value.wide; *c != 0; ++c)
            narrowed += *c == 0x20AC ? '\x80' : *c == 0x3A9 ? '\x81' : static_cast<char>(*c);
        EXPECT_EQ(narrowed, text);
    }
}

TEST(Parsers, OtherTexts) {
    // Medium texts: the length says what is left behind the first two characters, in a field of three bytes
    // more than the text.
    const std::pair<std::string, std::size_t> medium[] = {{"", 0},
                                                          {"a", 0},
                                                          {"ab", 0},
                                                          {"abc", 1},
                                                          {std::string(500, 'x'), 498},
                                                          {std::string(10000, 'x'), 1869}};
    for (const auto& [text, length] : medium) {
        const ConvValue out = parse(51, text.c_str(), m);
        EXPECT_EQ(out.type, CV_TEXT_NARROW);
        EXPECT_EQ(bytes_at(out.value.narrow, 3),
                  (std::vector<std::uint8_t>{static_cast<std::uint8_t>(length),
                                             static_cast<std::uint8_t>(length >> 8), 1}));
        EXPECT_EQ(std::string(out.value.narrow + 3), text.substr(0, 1871));
    }
    for (const DF df : {63, 3002}) {
        for (const std::string& text : {std::string(""), std::string("01 02\x80"), std::string(10000, 'x')}) {
            const ConvValue out = parse(df, text.c_str(), m);
            EXPECT_EQ(out.type, CV_TEXT_NARROW);
            EXPECT_EQ(std::string(out.value.narrow), text.substr(0, 255));
        }
        EXPECT_STREQ(parse(df, nullptr, m).value.narrow, "");
    }
    // Each has an area of its own, which holds until its next call.
    const ConvValue fixed = parse(63, "fixed", m), dump = parse(3002, "dump", m),
                    medium_text = parse(51, "medium", m);
    parse(50, "short", m);
    EXPECT_STREQ(fixed.value.narrow, "fixed");
    EXPECT_STREQ(dump.value.narrow, "dump");
    EXPECT_STREQ(medium_text.value.narrow + 3, "medium");
}

TEST(Parsers, SelfDescribedValues) {
    const std::map<UnitId, DF> formats = {{m, 79},
                                          {ft, 79},
                                          {ftm, 79},
                                          {nm, 79},
                                          {stm, 79},
                                          {km, 79},
                                          {cm, 79},
                                          {inch, 79},
                                          {m_s, 36},
                                          {kt, 36},
                                          {mph, 36},
                                          {kph, 36},
                                          {bft, 36},
                                          {mm_s, 36},
                                          {V, 106},
                                          {A, 114},
                                          {mA, 114},
                                          {deg, 4},
                                          {rad, 4},
                                          {celsius, 105},
                                          {fahrenheit, 105},
                                          {bar, 103},
                                          {mbar, 103},
                                          {unit::atm, 103},
                                          {Pa, 103},
                                          {inHg, 103},
                                          {mmHg, 103},
                                          {psi, 103},
                                          {kPa, 103},
                                          {ohm, 32},
                                          {N, 20},
                                          {deg_s, 73},
                                          {deg_min, 73},
                                          {rpm, 34},
                                          {dB, 31},
                                          {m3_hr, 60002},
                                          {litre_hr, 60002},
                                          {gal_hr, 60002},
                                          {imp_gal_hr, 60002},
                                          {m_s2, 1},
                                          {mV, 60006},
                                          {deg_s2, 5},
                                          {rad_s2, 5},
                                          {microstrain, 60004}};
    const std::map<DF, std::size_t> three_and_four = {{105, 3}, {114, 3}, {60002, 3},
                                                      {79, 4},  {103, 4}, {32, 4}};
    for (UnitId u = -1; u <= unit::count; ++u) {
        SCOPED_TRACE(u);
        const ConvValue out = parse(60007, "2.5", u);
        const auto field = self_described_field();
        const auto chosen = formats.find(u);
        if (chosen == formats.end()) {
            EXPECT_EQ(out.type, CV_RAW_FIELD);
            EXPECT_EQ(out.value.u64, 0u);
            EXPECT_EQ(field.size(), 0u);
            continue;
        }
        const ConvValue direct = parse(chosen->second, "2.5", u);
        EXPECT_EQ(out.type, direct.type);
        EXPECT_EQ(out.value.u64, direct.value.u64);
        const auto width = three_and_four.find(chosen->second);
        const std::size_t bytes = width == three_and_four.end() ? 2 : width->second;
        ASSERT_EQ(field.size(), 2 + bytes);
        EXPECT_EQ(field[0] | field[1] << 8, chosen->second);
        EXPECT_EQ(bytes_at(&field[2], bytes), bytes_at(&direct.value, bytes));
    }
    parse(60007, "-12.5", litre_hr);
    std::uint8_t sent[16] = {};
    std::memcpy(sent, self_described_field().data(), self_described_field().size());
    EXPECT_FLOAT_EQ(convert(60007, sent, litre_hr).value.value.f32, -12.5f);
}

// ---- hostile texts ----

TEST(Parsers, AnyTextIsSafe) {
    std::vector<std::string> texts = {"1e999",
                                      "-1e999",
                                      "1e-999",
                                      "-",
                                      ".",
                                      "1e",
                                      "0x10",
                                      "nan",
                                      "inf",
                                      "-inf",
                                      std::string(10000, '9'),
                                      std::string(10000, ' '),
                                      std::string(10000, '-'),
                                      "0." + std::string(10000, '0') + "1",
                                      std::string(10000, '\x80'),
                                      "1e" + std::string(10000, '9'),
                                      "\x01\x7F\xFF\r\n",
                                      "9223372036854775808"};
    std::mt19937 random(20261009);
    constexpr char likely[] = "0123456789+-.eExX \t,naif\x80\xFF";
    for (int i = 0; i < 200; ++i) {
        std::string text(random() % 24, '0');
        for (char& c : text)
            c = random() % 4 == 0 ? static_cast<char>(random() % 255 + 1)
                                  : likely[random() % (sizeof likely - 1)];
        texts.push_back(text);
    }
    std::vector<UnitId> units = {-1, raw_count, raw_bits, unit::count, 1 << 30, INT32_MIN};
    for (int i = 0; i < 12; ++i) units.push_back(static_cast<UnitId>(random() % unit::count));
    for (const std::string& text : texts) {
        // On the heap and no longer than it has to be, so that a step too far is seen.
        const auto copy = std::make_unique<char[]>(text.size() + 1);
        std::copy(text.begin(), text.end(), copy.get());
        for (const DFDef& format : all_formats())
            for (const UnitId u : units) {
                ConvValue out{-1, {}};
                ASSERT_EQ(format.parse(&out, copy.get(), u), &out);
                ASSERT_TRUE(out.type >= CV_FLOAT && out.type <= CV_RAW_FIELD) << format.name;
            }
    }
}

}  // namespace
}  // namespace pgn_vistel::test
