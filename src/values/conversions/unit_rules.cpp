#include "values/conversions/unit_rules.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>

#include "values/calendar_text.h"

namespace pgn_vistel {

namespace {

struct UnitFactor {
    UnitId unit;
    float factor;
};

/// Factor by unit; 0 where the quantity does not have the unit.
class FactorTable {
  public:
    consteval FactorTable(std::initializer_list<UnitFactor> factors) {
        for (const UnitFactor& f : factors) by_unit_[static_cast<std::size_t>(f.unit)] = f.factor;
    }
    float operator[](UnitId u) const {
        return static_cast<unsigned>(u) < unit::count ? by_unit_[static_cast<std::size_t>(u)] : 0;
    }

  private:
    std::array<float, unit::count> by_unit_{};
};

// The product of two single precision numbers is exact in double precision: rounded once, on storing.
void store_scaled(ConvValue* out, const FactorTable& factors, float value, UnitId u) {
    const float factor = factors[u];
    if (factor != 0)
        store_float(out, static_cast<double>(value) * static_cast<double>(factor));
    else
        store_not_available(out);
}

// Factors are single precision. Several differ in the last digits from what a textbook gives (a knot is taken
// as 0.514444 m/s, for example): displays that stand side by side have to agree, so they stay.

constexpr FactorTable length_cm = {
    {unit::m, 0.01f},          {unit::ft, 0.0328084f}, {unit::ftm, 0.005468067f}, {unit::nm, 5.3995677e-6f},
    {unit::stm, 6.213712e-6f}, {unit::km, 1e-5f},      {unit::inch, 0.3937008f},  {unit::mm, 10.0f},
    {unit::cm, 1.0f},          {unit::raw_count, 1.0f}};

constexpr FactorTable volume_l = {{unit::gal, 0.26417205f},     {unit::gal_hr, 0.26417205f},
                                  {unit::imp_gal, 0.21996924f}, {unit::imp_gal_hr, 0.21996924f},
                                  {unit::m3, 0.001f},           {unit::m3_hr, 0.001f},
                                  {unit::litre, 1.0f},          {unit::litre_hr, 1.0f},
                                  {unit::raw_count, 1.0f}};

constexpr FactorTable voltage_v = {{unit::V, 1.0f}, {unit::mV, 1000.0f}, {unit::raw_count, 1.0f}};

constexpr FactorTable current_a = {{unit::A, 1.0f}, {unit::mA, 1000.0f}, {unit::raw_count, 1.0f}};

constexpr FactorTable pressure_kpa = {
    {unit::bar, 0.01f},      {unit::mbar, 10.0f},      {unit::atm, 0.009869233f}, {unit::Pa, 1000.0f},
    {unit::Pa_s, 1000.0f},   {unit::inHg, 0.2953337f}, {unit::mmHg, 7.500617f},   {unit::psi, 0.14503774f},
    {unit::raw_count, 1.0f}, {unit::kPa, 1.0f}};

constexpr FactorTable pressure_pa = {{unit::bar, 1e-5f},         {unit::mbar, 0.01f},
                                     {unit::atm, 9.869233e-6f},  {unit::Pa, 1.0f},
                                     {unit::raw_count, 1.0f},    {unit::Pa_s, 1.0f},
                                     {unit::Pa_h, 1.0f},         {unit::inHg, 0.00029533374f},
                                     {unit::mmHg, 0.007500617f}, {unit::psi, 0.00014503773f},
                                     {unit::kPa, 0.001f}};

constexpr FactorTable speed_mm_s = {
    {unit::m_s, 0.001f},  {unit::kt, 0.0019438461f}, {unit::mph, 0.0022369362f},  {unit::kph, 0.0035999997f},
    {unit::mm_s, 1.0f},   {unit::raw_count, 1.0f},   {unit::inch_s, 0.03937008f}, {unit::ft_s, 0.00328084f},
    {unit::m_min, 0.06f}, {unit::ft_min, 0.1968504f}};

constexpr FactorTable speed_m_s = {{unit::m_s, 1.0f},         {unit::raw_count, 1.0f}, {unit::kt, 1.9438462f},
                                   {unit::mph, 2.2369363f},   {unit::kph, 3.5999997f}, {unit::mm_s, 1000.0f},
                                   {unit::inch_s, 39.37008f}, {unit::ft_s, 3.28084f},  {unit::m_min, 60.0f},
                                   {unit::ft_min, 196.8504f}};

constexpr FactorTable force_n = {{unit::N, 1.0f},
                                 {unit::raw_count, 1.0f},
                                 {unit::lb, 0.22480868f},
                                 {unit::lbf, 0.22480868f},
                                 {unit::kg, 0.10197162f},
                                 {unit::kgf, 0.10197162f},
                                 {unit::kN, 0.001f},
                                 {unit::tf, 0.00010197162f},
                                 {unit::tonf_us, 0.00011240447f},
                                 {unit::tonf_uk, 0.00010036114f}};

constexpr FactorTable torque_nm = {{unit::Nm, 1.0f},
                                   {unit::raw_count, 1.0f},
                                   {unit::ft_lb, 0.7375613f},
                                   {unit::lbf_ft, 0.7375613f},
                                   {unit::in_lb, 8.85074f}};

constexpr FactorTable mass_kg = {{unit::lb, 2.20462f}, {unit::gram, 1000.0f}};

constexpr FactorTable frequency_hz = {
    {unit::Hz, 1.0f}, {unit::raw_count, 1.0f}, {unit::kHz, 0.001f}, {unit::MHz, 1e-6f}, {unit::GHz, 1e-9f}};

// Milliohms are offered to the user but not served; the value then reads as not available.
constexpr FactorTable resistance_ohm = {
    {unit::ohm, 1.0f}, {unit::raw_count, 1.0f}, {unit::kohm, 0.001f}, {unit::Mohm, 1e-6f}};

constexpr FactorTable power_w = {{unit::W, 1.0f},      {unit::raw_count, 1.0f}, {unit::VA, 1.0f},
                                 {unit::VAR, 1.0f},    {unit::kW, 0.001f},      {unit::kVA, 0.001f},
                                 {unit::kVAR, 0.001f}, {unit::mW, 1000.0f},     {unit::mVA, 1000.0f},
                                 {unit::mVAR, 1000.0f}};

constexpr FactorTable charge_c = {{unit::C, 1.0f}, {unit::raw_count, 1.0f}, {unit::Ah, 0.00027777778f}};

constexpr FactorTable charge_ah = {{unit::Ah, 1.0f}, {unit::raw_count, 1.0f}, {unit::C, 3600.0f}};

constexpr FactorTable plain = {{unit::plain_64, 1.0f},
                               {unit::plain_65, 1.0f},
                               {unit::plain_66, 1.0f},
                               {unit::percent, 1.0f},
                               {unit::raw_count, 1.0f}};

constexpr FactorTable data_size_b = {{unit::byte, 1.0f},   {unit::raw_count, 1.0f}, {unit::KB, 0x1p-10f},
                                     {unit::MB, 0x1p-20f}, {unit::GB, 0x1p-30f},    {unit::TB, 0x1p-40f}};

constexpr FactorTable acceleration = {
    {unit::m_s2, 1.0f}, {unit::raw_count, 1.0f}, {unit::g_force, 0.10197162f}, {unit::ft_s2, 3.28084f}};

// True and magnetic, angle and rate are told apart by the unit's name only.
constexpr FactorTable angle_rad = {
    {unit::deg, 57.29578f},   {unit::deg_mag, 57.29578f}, {unit::deg_true, 57.29578f},
    {unit::deg_s, 57.29578f}, {unit::deg_s2, 57.29578f},  {unit::rad, 1.0f},
    {unit::rad_mag, 1.0f},    {unit::rad_true, 1.0f},     {unit::raw_count, 1.0f},
    {unit::rad_s2, 1.0f},     {unit::rad_s, 1.0f},        {unit::deg_min, 3437.7468f},
    {unit::rpm, 9.549296f}};

constexpr FactorTable angular_rate = {{unit::deg_s, 57.29578f},
                                      {unit::deg_min, 3437.7468f},
                                      {unit::rpm, 9.549296f},
                                      {unit::raw_count, 1.0f},
                                      {unit::rad_s, 1.0f}};

constexpr FactorTable angular_accel = {
    {unit::raw_count, 1.0f}, {unit::rad_s2, 1.0f}, {unit::deg_s2, 57.29578f}, {unit::deg_min2, 206264.81f}};

constexpr FactorTable magnetic_ut = {
    {unit::T, 1e-6f}, {unit::raw_count, 1.0f}, {unit::uT, 1.0f}, {unit::mT, 0.001f}, {unit::gauss, 0.01f}};

constexpr FactorTable energy_wh = {{unit::raw_count, 1.0f}, {unit::Wh, 1.0f}, {unit::kWh, 0.001f}};

constexpr FactorTable duration_s = {{unit::hours, 0.00027777778f},
                                    {unit::minutes, 0.016666668f},
                                    {unit::seconds, 1.0f},
                                    {unit::raw_count, 1.0f}};

/// Beaufort force of a speed in knots; a bound belongs to the higher force, and so does a speed that is no
/// number at all.
int beaufort_force(float knots) {
    constexpr float bounds[] = {1, 3, 6, 10, 16, 21, 27, 33, 40, 47, 55, 63};
    int force = 0;
    while (force < 12 && !(knots < bounds[force])) ++force;
    return force;
}

void store_speed(ConvValue* out, const FactorTable& factors, float value, UnitId u) {
    store_scaled(out, factors, value, u == unit::bft ? UnitId{unit::kt} : u);
    if (u == unit::bft) store_float(out, beaufort_force(out->value.f32));
}

}  // namespace

void unit_rule_length_cm(ConvValue* out, float v, UnitId u) {
    store_scaled(out, length_cm, v, u);
}
void unit_rule_volume_l(ConvValue* out, float v, UnitId u) {
    store_scaled(out, volume_l, v, u);
}
void unit_rule_voltage_v(ConvValue* out, float v, UnitId u) {
    store_scaled(out, voltage_v, v, u);
}
void unit_rule_current_a(ConvValue* out, float v, UnitId u) {
    store_scaled(out, current_a, v, u);
}
void unit_rule_pressure_kpa(ConvValue* out, float v, UnitId u) {
    store_scaled(out, pressure_kpa, v, u);
}
void unit_rule_pressure_pa(ConvValue* out, float v, UnitId u) {
    store_scaled(out, pressure_pa, v, u);
}
void unit_rule_speed_mm_s(ConvValue* out, float v, UnitId u) {
    store_speed(out, speed_mm_s, v, u);
}
void unit_rule_speed_m_s(ConvValue* out, float v, UnitId u) {
    store_speed(out, speed_m_s, v, u);
}
void unit_rule_force_n(ConvValue* out, float v, UnitId u) {
    store_scaled(out, force_n, v, u);
}
void unit_rule_torque_nm(ConvValue* out, float v, UnitId u) {
    store_scaled(out, torque_nm, v, u);
}
void unit_rule_frequency_hz(ConvValue* out, float v, UnitId u) {
    store_scaled(out, frequency_hz, v, u);
}
void unit_rule_resistance_ohm(ConvValue* out, float v, UnitId u) {
    store_scaled(out, resistance_ohm, v, u);
}
void unit_rule_power_w(ConvValue* out, float v, UnitId u) {
    store_scaled(out, power_w, v, u);
}
void unit_rule_charge_c(ConvValue* out, float v, UnitId u) {
    store_scaled(out, charge_c, v, u);
}
void unit_rule_charge_ah(ConvValue* out, float v, UnitId u) {
    store_scaled(out, charge_ah, v, u);
}
void unit_rule_plain(ConvValue* out, float v, UnitId u) {
    store_scaled(out, plain, v, u);
}
void unit_rule_data_size_b(ConvValue* out, float v, UnitId u) {
    store_scaled(out, data_size_b, v, u);
}
void unit_rule_acceleration(ConvValue* out, float v, UnitId u) {
    store_scaled(out, acceleration, v, u);
}
void unit_rule_angle_rad(ConvValue* out, float v, UnitId u) {
    store_scaled(out, angle_rad, v, u);
}
void unit_rule_angular_rate(ConvValue* out, float v, UnitId u) {
    store_scaled(out, angular_rate, v, u);
}
void unit_rule_angular_accel(ConvValue* out, float v, UnitId u) {
    store_scaled(out, angular_accel, v, u);
}
void unit_rule_magnetic_ut(ConvValue* out, float v, UnitId u) {
    store_scaled(out, magnetic_ut, v, u);
}
void unit_rule_energy_wh(ConvValue* out, float v, UnitId u) {
    store_scaled(out, energy_wh, v, u);
}

void unit_rule_temperature_k(ConvValue* out, float kelvin, UnitId u) {
    const double celsius = static_cast<double>(kelvin) - static_cast<double>(273.15f);
    switch (u) {
        case unit::celsius: store_float(out, celsius); break;
        case unit::fahrenheit: store_float(out, celsius * static_cast<double>(1.8f) + 32); break;
        case unit::raw_count: store_float(out, kelvin); break;
        default: store_not_available(out); break;
    }
}

void unit_rule_mass_kg(ConvValue* out, float kilograms, UnitId u) {
    // In kilograms and as a raw count only the type is set and the record keeps the value it came with: hosts
    // know it so. A caller that wants "not available" there presets the record with it.
    if (u == unit::kg || u == unit::raw_count)
        out->type = CV_FLOAT;
    else
        store_scaled(out, mass_kg, kilograms, u);
}

void unit_rule_duration_s(ConvValue* out, float seconds, UnitId u) {
    if (duration_s[u] != 0) {
        store_scaled(out, duration_s, seconds, u);
        return;
    }
    // Every other unit asks for a clock. Negative durations wrap around, as an unsigned count does.
    static wchar_t text[64];
    constexpr float limit = 9.0e18f;
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, -limit, limit));
    if (print_time_of_day(text, std::size(text), static_cast<std::uint32_t>(whole), u, false) > 0)
        store_text(out, text);
    else
        store_not_available(out);
}

void unit_rule_seconds(ConvValue* out, std::uint32_t seconds, UnitId u) {
    if (u == unit::seconds || u == unit::raw_count)
        store_integer(out, CV_TIME_OF_DAY, seconds);
    else
        unit_rule_duration_s(out, static_cast<float>(seconds), u);
}

void unit_rule_date_days(ConvValue* out, std::uint16_t days, UnitId u) {
    if (u == unit::raw_count || u == unit::days) {
        store_integer(out, CV_U16, days);
        return;
    }
    static wchar_t text[256];
    if (print_date(text, std::size(text), days, u, nullptr) > 0)
        store_text(out, text);
    else
        store_not_available(out);
}

}  // namespace pgn_vistel
