#include "values/conversions/unit_rules.h"

#include <cmath>
#include <map>
#include <numbers>
#include <set>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using namespace unit;

constexpr double pi = std::numbers::pi;

// What a unit is in the coherent unit of its dimension, from the definitions of the units.
// clang-format off
const std::map<UnitId, double> si = {
    {m, 1}, {ft, 0.3048}, {ftm, 1.8288}, {nm, 1852}, {stm, 1609.344}, {km, 1000}, {cm, 0.01}, {mm, 0.001},
    {inch, 0.0254}, {m_s, 1}, {kt, 1852.0 / 3600}, {mph, 0.44704}, {kph, 1 / 3.6}, {mm_s, 0.001},
    {inch_s, 0.0254}, {ft_s, 0.3048}, {m_min, 1.0 / 60}, {ft_min, 0.3048 / 60}, {gal, 3.785411784},
    {imp_gal, 4.54609}, {litre, 1}, {m3, 1000}, {gal_hr, 3.785411784}, {imp_gal_hr, 4.54609}, {litre_hr, 1},
    {m3_hr, 1000}, {V, 1}, {mV, 0.001}, {A, 1}, {mA, 0.001}, {deg, pi / 180}, {rad, 1}, {deg_mag, pi / 180},
    {deg_true, pi / 180}, {rad_mag, 1}, {rad_true, 1}, {deg_s, pi / 180}, {deg_min, pi / 180 / 60},
    {rad_s, 1}, {rpm, 2 * pi / 60}, {deg_s2, pi / 180}, {deg_min2, pi / 180 / 3600}, {rad_s2, 1}, {bar, 1e5},
    {mbar, 100}, {atm, 101325}, {Pa, 1}, {kPa, 1000}, {inHg, 3386.389}, {mmHg, 133.322387},
    {psi, 6894.757293}, {W, 1}, {kW, 1000}, {mW, 0.001}, {VA, 1}, {kVA, 1000}, {mVA, 0.001}, {VAR, 1},
    {kVAR, 1000}, {mVAR, 0.001}, {ohm, 1}, {kohm, 1000}, {Mohm, 1e6}, {N, 1}, {kN, 1000}, {kgf, 9.80665},
    {lbf, 4.4482216152605}, {tf, 9806.65}, {tonf_us, 8896.443230521}, {tonf_uk, 9964.01641818352}, {Nm, 1},
    {ft_lb, 1.3558179483314}, {lbf_ft, 1.3558179483314}, {in_lb, 0.1129848290276}, {Hz, 1}, {kHz, 1e3},
    {MHz, 1e6}, {GHz, 1e9}, {hours, 3600}, {minutes, 60}, {seconds, 1}, {m_s2, 1}, {g_force, 9.80665},
    {ft_s2, 0.3048}, {T, 1}, {mT, 1e-3}, {uT, 1e-6}, {gauss, 1e-4}, {Ah, 3600}, {C, 1}, {Wh, 3600},
    {kWh, 3.6e6}, {byte, 1}, {KB, 1024.0}, {MB, 1048576.0}, {GB, 1073741824.0}, {TB, 1099511627776.0},
    {lb, 0.45359237}, {gram, 0.001},
};
// clang-format on

// The constants are single precision, and a few are the rounder ones of other displays: a knot of 0.514444
// m/s, an inch of mercury of 3386 Pa.
double tolerance(UnitId u) {
    return u == inHg ? 1.5e-4 : 2e-6;
}

/// 100 counts of a format in the coherent unit; NaN where the format does not serve the unit.
double coherent(DF df, UnitId u) {
    const Converted c = convert_bits(df, 100, u);
    if (!is_available(c.value)) return NAN;
    if (c.value.type == CV_TIME_OF_DAY) return c.value.value.u32 * si.at(u);
    return c.value.type == CV_FLOAT ? c.value.value.f32 * si.at(u) : NAN;
}

TEST(UnitRules, AllUnitsOfAFormatAgree) {
    std::set<UnitId> compared;
    for (const DFDef& format : all_formats()) {
        const auto df = static_cast<DF>(format.df);
        if (convert_bits(df, 100, gear).value.type == CV_FLOAT) continue;  // gives one number for every unit
        if (df == 3 || df == 12 || df == 70) continue;  // 100 is next to nothing in these floating formats
        double reference = NAN;
        UnitId first = 0;
        for (const auto& [u, factor] : si) {
            const double value = coherent(df, u);
            if (std::isnan(value) || (u == lb && is_available(convert_bits(df, 100, N).value))) continue;
            if (std::isnan(reference)) reference = value, first = u;
            EXPECT_NEAR(value, reference, std::fabs(reference) * (tolerance(u) + tolerance(first)))
                << "format " << df << " units " << first << " and " << u;
            if (u != first) compared.insert({u, first});
        }
    }
    for (const auto& [u, factor] : si)
        EXPECT_TRUE(compared.contains(u)) << "unit " << u << " is served by nothing";
}

float apply(UnitRule* rule, double value, UnitId u) {
    ConvValue out = whole(CV_RAW_FIELD, 0x7FFFFFFF);
    rule(&out, static_cast<float>(value), u);
    return out.type == CV_FLOAT ? out.value.f32 : NAN;
}

TEST(UnitRules, Physics) {
    const struct {
        UnitRule* rule;
        double base;
        UnitId unit;
        double expected;
        // clang-format off
    } cases[] = {
        {unit_rule_speed_mm_s, 1852000.0 / 3600, kt, 1}, {unit_rule_speed_m_s, 1852.0 / 3600, kt, 1},
        {unit_rule_length_cm, 185200, nm, 1}, {unit_rule_volume_l, 3.785411784, gal, 1},
        {unit_rule_temperature_k, 273.15, celsius, 0}, {unit_rule_temperature_k, 273.15, fahrenheit, 32},
        {unit_rule_temperature_k, 373.15, celsius, 100}, {unit_rule_temperature_k, 373.15, fahrenheit, 212},
        {unit_rule_temperature_k, 233.15, fahrenheit, -40}, {unit_rule_temperature_k, 300, raw_count, 300},
        {unit_rule_pressure_kpa, 101.325, atm, 1}, {unit_rule_pressure_pa, 101325, atm, 1},
        {unit_rule_pressure_pa, 500, Pa_h, 500}, {unit_rule_pressure_kpa, 1, Pa_s, 1000},
        {unit_rule_force_n, 9.80665, kg, 1}, {unit_rule_force_n, 4.4482216, lb, 1},
        {unit_rule_duration_s, 5400, hours, 1.5}, {unit_rule_plain, 7, plain_64, 7},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_NEAR(apply(c.rule, c.base, c.unit), c.expected, std::max(2e-6 * std::fabs(c.expected), 4e-5))
            << "unit " << c.unit << " of " << c.base;
}

TEST(UnitRules, OtherUnitsAreRefused) {
    for (const DFDef& format : all_formats()) {
        const auto df = static_cast<DF>(format.df);
        const auto type = [df](UnitId u) { return convert_bits(df, 100, u).value.type; };
        if (type(raw_count) != CV_FLOAT || type(ground) != CV_NOT_AVAILABLE)
            continue;  // heeds no unit, or a time
        for (const UnitId u : {-1000, -1, 11, int{gear}, 140, 1 << 30})
            EXPECT_EQ(type(u), CV_NOT_AVAILABLE) << "format " << df << " unit " << u;
    }
    EXPECT_EQ(convert_bits(32, 100, mohm).value.type, CV_NOT_AVAILABLE) << "offered, but not served";
    EXPECT_EQ(convert_bits(29, 100, Pa_h).value.type, CV_NOT_AVAILABLE);
}

TEST(UnitRules, BeaufortBoundsBelongToTheHigherForce) {
    constexpr float bounds[] = {1, 3, 6, 10, 16, 21, 27, 33, 40, 47, 55, 63};
    const std::pair<UnitRule*, float> rules[] = {{unit_rule_speed_m_s, 1.9438462f},
                                                 {unit_rule_speed_mm_s, 0.0019438461f}};
    for (const auto& [rule, knots] : rules) {
        for (int force = 1; force <= 12; ++force) {
            const float bound = bounds[force - 1];
            float speed = bound / knots * 0.99999f;
            while (static_cast<float>(double{speed} * double{knots}) < bound)
                speed = std::nextafter(speed, INFINITY);
            EXPECT_EQ(apply(rule, speed, bft), force);
            EXPECT_EQ(apply(rule, std::nextafter(speed, 0.0f), bft), force - 1);
        }
        EXPECT_EQ(apply(rule, 62.99 / knots, bft), 11);
        EXPECT_EQ(apply(rule, -100, bft), 0);
        EXPECT_EQ(apply(rule, NAN, bft), 12);
    }
}

TEST(UnitRules, DurationsAsClock) {
    const auto clock_of = [](float value, UnitId u) -> std::wstring {
        ConvValue out{CV_NOT_AVAILABLE, {}};
        unit_rule_duration_s(&out, value, u);
        return out.type == CV_TEXT ? out.value.wide : L"?";
    };
    EXPECT_EQ(clock_of(45296.9f, clock_24), L"12:34:56");
    EXPECT_EQ(clock_of(45296, clock_12), L"12:34:56 PM");
    EXPECT_EQ(clock_of(0, -1), L"00:00:00");
    EXPECT_EQ(clock_of(360000, m), L"100:00:00");
    EXPECT_EQ(clock_of(-3600, clock_24), L"1193045:28:16") << "2^32 - 3600 seconds";
    EXPECT_EQ(clock_of(-1, clock_24), L"-") << "2^32 - 1 is a reserved code";
}

}  // namespace
}  // namespace pgn_vistel::test
