#include "contract/parsers/unit_factors.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

#include "contract/values.h"
#include "core/convert.h"

namespace pgn_vistel {

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

bool is_one_of(UnitId unit, std::initializer_list<UnitId> units) {
    return std::ranges::find(units, unit) != units.end();
}

float factor_by_rule(core::UnitRule rule, float amount, UnitId unit) {
    core::Value converted;
    core::apply_unit_rule(rule, amount, unit, shared_scratch(), converted);
    return converted.type == core::ValueType::single ? converted.number.f32() : nan;
}

}  // namespace

float length_factor(float amount, UnitId u) {
    return u == unit::mm ? nan : factor_by_rule(core::UnitRule::length_cm, amount, u);
}

float volume_factor(float amount, UnitId u) {
    // Typed gallons are not quite the ones that values are shown with: they differ by a ten-millionth, which
    // single precision just shows.
    switch (u) {
        case unit::gal:
        case unit::gal_hr: return static_cast<float>(double{amount} * double{0.26417208f});
        case unit::imp_gal:
        case unit::imp_gal_hr: return static_cast<float>(double{amount} * double{0.21996926f});
        default: return factor_by_rule(core::UnitRule::volume_l, amount, u);
    }
}

float voltage_factor(float amount, UnitId u) {
    return factor_by_rule(core::UnitRule::voltage_v, amount, u);
}

float current_factor(float amount, UnitId u) {
    return factor_by_rule(core::UnitRule::current_a, amount, u);
}

float pressure_factor(float amount, UnitId u) {
    return u == unit::Pa_s ? nan : factor_by_rule(core::UnitRule::pressure_kpa, amount, u);
}

float speed_factor(float amount, UnitId u) {
    const bool served = is_one_of(u, {unit::m_s, unit::kt, unit::mph, unit::kph, unit::bft, unit::raw_count});
    return served ? factor_by_rule(core::UnitRule::speed_mm_s, amount, u) : nan;
}

float mass_factor(float amount, UnitId u) {
    if (u == unit::kg || u == unit::raw_count) return amount;  // the unit rule leaves these two undone
    return u == unit::lb ? factor_by_rule(core::UnitRule::mass_kg, amount, u) : nan;
}

std::optional<double> kelvin_of(float number, UnitId u) {
    constexpr double freezing = double{273.15f};
    switch (u) {
        case unit::celsius: return number + freezing;
        case unit::fahrenheit:
        case unit::raw_count: return (double{number} - 32) / double{1.8f} + freezing;
        default: return nan;
    }
}

std::optional<double> seconds_of(float number, UnitId u) {
    switch (u) {
        case unit::hours: return number * 3600.0;
        case unit::minutes: return number * 60.0;
        case unit::seconds:
        case unit::raw_count: return number;
        default: return std::nullopt;
    }
}

std::optional<double> minutes_of(float number, UnitId u) {
    switch (u) {
        case unit::hours: return number * 60.0;
        case unit::minutes:
        case unit::raw_count: return number;
        case unit::seconds: return number / 60.0;
        default: return std::nullopt;
    }
}

}  // namespace pgn_vistel
