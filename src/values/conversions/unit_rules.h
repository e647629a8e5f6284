#pragma once

#include <cstdint>

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/units.h"

namespace pgn_vistel {

// The quantity layer: each rule takes a value in its base unit and stores it in the unit asked for, or as not
// available where the quantity has no such unit. `unit::raw_count` keeps the base unit.

using UnitRule = void(ConvValue* out, float value, UnitId unit);

UnitRule unit_rule_length_cm, unit_rule_volume_l, unit_rule_voltage_v, unit_rule_current_a,
    unit_rule_temperature_k, unit_rule_pressure_kpa, unit_rule_pressure_pa, unit_rule_speed_mm_s,
    unit_rule_speed_m_s, unit_rule_force_n, unit_rule_torque_nm, unit_rule_mass_kg, unit_rule_frequency_hz,
    unit_rule_resistance_ohm, unit_rule_power_w, unit_rule_charge_c, unit_rule_charge_ah, unit_rule_plain,
    unit_rule_data_size_b, unit_rule_acceleration, unit_rule_angle_rad, unit_rule_angular_rate,
    unit_rule_angular_accel, unit_rule_magnetic_ut, unit_rule_energy_wh, unit_rule_duration_s;

void unit_rule_seconds(ConvValue* out, std::uint32_t seconds, UnitId unit);

/// `days` is a valid day count; the caller has dealt with reserved codes.
void unit_rule_date_days(ConvValue* out, std::uint16_t days, UnitId unit);

/// Identifiers and counters: shown as they are, whatever the width.
template <class Integer>
void unit_rule_integer(ConvValue* out, ConvType type, Integer value, UnitId unit);

}  // namespace pgn_vistel

#include "values/conversions/store.h"

template <class Integer>
void pgn_vistel::unit_rule_integer(ConvValue* out, ConvType type, Integer value, UnitId unit) {
    if (unit == unit::plain_64 || unit == unit::plain_65)
        store_integer(out, type, value);
    else
        store_not_available(out);
}
