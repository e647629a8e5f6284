#include <cmath>

#include "values/conversions/numeric.h"
#include "values/conversions/special.h"

namespace pgn_vistel {

namespace {

void store_double(ConvValue* out, double value) {
    out->type = CV_DOUBLE;
    out->value.f64 = value;
}

// Positions keep double precision: single precision would be off by a metre.
template <class Kind, UnitId own_unit>
void convert_position(ConvValue* out, const void* at, UnitId unit, int* count, double degrees) {
    const auto number = Kind::read(at);
    store_count(count, Kind::bytes);
    if (unit == unit::raw_bits) {
        store_integer(out, Kind::raw_type, number);
    } else if (Kind::is_refused(number)) {
        store_not_available(out);
    } else if (unit == unit::raw_count) {
        store_double(out, static_cast<double>(number));
    } else if (unit == own_unit) {
        store_double(out, static_cast<double>(number) * degrees);
    } else {
        out->type = CV_NOT_AVAILABLE;
        out->value.u64 = 0x7FFFFFFFFFFFFFFF;  // here the NaN is a double
    }
}

constexpr double degrees_per_count_32 = static_cast<double>(1e-7f);
constexpr double degrees_per_count_64 = 1e-16;

}  // namespace

void convert_undefined(ConvValue* out, const void* at, UnitId unit, int* count) {
    store_count(count, 4);
    if (unit == unit::raw_bits)
        store_integer(out, CV_U32, raw::load<std::uint32_t>(at));
    else
        store_not_available(out);
}

void convert_never_available(ConvValue* out, const void*, UnitId, int*) {
    store_not_available(out);
}

void convert_float_angle(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto radians = raw::load<float>(at);
    store_count(count, 4);
    if (unit == unit::raw_bits)
        store_float(out, radians);  // as an angle's raw count, but a NaN goes through
    else if (std::isnan(radians))
        store_not_available(out);
    else
        unit_rule_angle_rad(out, radians, unit);
}

void convert_float_plain(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto value = raw::load<float>(at);
    store_count(count, 4);
    if (unit != unit::raw_bits && std::isnan(value))
        store_not_available(out);
    else
        store_float(out, value);
}

void convert_double_distance(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto metres = raw::load<double>(at);
    store_count(count, 8);
    if (unit == unit::raw_bits)
        store_double(out, metres);
    else if (std::isnan(metres))
        store_not_available(out);
    else if (unit == unit::raw_count)
        store_float(out, metres);
    else
        unit_rule_length_cm(out, scale(static_cast<float>(metres), 100.0f), unit);
}

void convert_double_plain(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto value = raw::load<double>(at);
    store_count(count, 8);
    if (unit == unit::raw_bits) {
        store_double(out, value);
    } else if (std::isnan(value)) {
        store_not_available(out);
    } else if (unit == unit::raw_count) {
        store_float(out, value);
    } else {
        // Tagged single, stored double: a reader of the tag sees the low half. Hosts know it so, and the way
        // back from text tells by it that only the raw form can be inverted.
        store_double(out, value);
        out->type = CV_FLOAT;
    }
}

void convert_latitude_32(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_position<raw::i32, unit::deg_lat>(out, at, unit, count, degrees_per_count_32);
}

void convert_longitude_32(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_position<raw::i32, unit::deg_long>(out, at, unit, count, degrees_per_count_32);
}

void convert_latitude_64(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_position<raw::i64, unit::deg_lat>(out, at, unit, count, degrees_per_count_64);
}

void convert_longitude_64(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_position<raw::i64, unit::deg_long>(out, at, unit, count, degrees_per_count_64);
}

void convert_position_24(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_listed<raw::i24, unit::deg_lat, unit::deg_long>(out, at, unit, count, 1e-5f);
}

void convert_percent_absolute(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto percent = raw::u8::read(at);
    store_count(count, 1);
    if (unit == unit::raw_bits || !raw::u8::is_refused(percent))
        store_integer(out, CV_U8, percent);
    else
        store_not_available(out);
}

void convert_peukert(ConvValue* out, const void* at, UnitId unit, int* count) {
    // Exponents start at 1.0 and go up in steps of 0.002.
    convert_number<raw::u8>(out, at, unit, count,
                            [&](auto number) { store_float(out, scale(number + 500, 0.002f)); });
}

void convert_salinity(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto number = raw::u16::read(at);
    store_count(count, 2);
    const bool served = unit == unit::plain_66 || unit == unit::raw_count || unit == unit::ppm;
    if (unit == unit::raw_bits || (served && !raw::u16::is_refused(number)))
        store_integer(out, CV_U16, number);
    else
        store_not_available(out);
}

void convert_format_number(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto number = raw::u16::read(at);
    store_count(count, 2);
    if (unit == unit::raw_bits || !raw::u16::is_refused(number))
        store_integer(out, CV_U16, number);
    else
        store_not_available(out);
}

void convert_device_address(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto address = raw::u48::read(at);
    store_count(count, raw::u48::bytes);
    const bool as_sent = unit == unit::raw_bits;  // reads as a raw count, without the test
    if (!as_sent && raw::u48::is_refused(address))
        store_not_available(out);
    else if (as_sent || unit == unit::raw_count)
        store_integer(out, CV_U64, address);
    else
        unit_rule_integer(out, CV_U64, address, unit);
}

void convert_ac_power(ConvValue* out, const void* at, UnitId unit, int* count) {
    // Zero power is sent as 2 GW. The raw form is signed, and the raw count has the offset taken off.
    const auto number = raw::u32::read(at);
    store_count(count, 4);
    if (unit == unit::raw_bits)
        store_integer(out, CV_I32, static_cast<std::int32_t>(number));
    else if (raw::u32::is_refused(number))
        store_not_available(out);
    else
        unit_rule_power_w(out, static_cast<float>(static_cast<std::int32_t>(number - 2000000000u)), unit);
}

void convert_power_factor(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto number = raw::u16::read(at);
    store_count(count, 2);
    if (unit == unit::raw_bits)
        store_integer(out, CV_U16, number);
    else if (raw::u16::is_refused(number))
        store_not_available(out);
    else
        store_float(out, scale(number - 16384, unit == unit::raw_count ? 1.0f : 0x1p-14f));
}

void convert_ac_energy(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_open<raw::u32>(out, at, unit, count, 1.0f);
}

void convert_offset_angle(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto number = raw::u16::read(at);
    store_count(count, 2);
    if (unit == unit::raw_bits) {
        store_integer(out, CV_U16, number);
        return;
    }
    const float factor = unit == unit::deg         ? 0.0078125f
                         : unit == unit::rad       ? 0.00013635385f
                         : unit == unit::raw_count ? 1.0f
                                                   : 0;
    if (factor == 0 || raw::u16::is_refused(number))
        store_not_available(out);
    else
        store_float(out, scale(number - 25600, factor));
}

void convert_date(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto days = raw::u16::read(at);
    store_count(count, 2);
    if (unit == unit::raw_bits)
        store_integer(out, CV_U16, days);
    else if (raw::u16::is_refused(days))
        store_not_available(out);
    else
        unit_rule_date_days(out, days, unit);
}

void convert_run_time(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto seconds = raw::u32::read(at);
    store_count(count, 4);
    if (unit == unit::raw_bits)
        store_integer(out, CV_TIME_OF_DAY, seconds);
    else if (raw::u32::is_refused(seconds))
        store_not_available(out);
    else
        unit_rule_seconds(out, seconds, unit);
}

void convert_period_minutes(ConvValue* out, const void* at, UnitId unit, int* count) {
    // The code for "out of range" is handed on as the clock type's own, whatever the unit.
    if (raw::u16::read(at) == 0xFFFE) {
        store_count(count, 2);
        store_integer(out, CV_TIME_OF_DAY, 0xFFFFFFFEu);
        return;
    }
    convert_scaled<raw::u16, unit_rule_duration_s>(out, at, unit, count, 60.0f);
}

}  // namespace pgn_vistel
