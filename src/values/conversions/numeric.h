#pragma once

#include "pgn_vistel/units.h"
#include "values/conversions/raw.h"
#include "values/conversions/store.h"
#include "values/conversions/unit_rules.h"

namespace pgn_vistel {

/// The steps that numeric formats share: count, raw bits, reserved codes, raw count. What is left, a valid
/// number in a real unit, goes to `scaled(number)`.
template <class Kind, class Scaled>
void convert_number(ConvValue* out, const void* at, UnitId unit, int* count, Scaled scaled) {
    const auto number = Kind::read(at);
    store_count(count, Kind::bytes);
    if (unit == unit::raw_bits)
        store_integer(out, Kind::raw_type, number);
    else if (Kind::is_refused(number))
        store_not_available(out);
    else if (unit == unit::raw_count)
        store_float(out, static_cast<double>(number));
    else
        scaled(number);
}

/// The scale is a single precision constant, applied in double precision and rounded once.
template <class Number>
float scale(Number number, float factor) {
    return static_cast<float>(static_cast<double>(number) * static_cast<double>(factor));
}

template <class Kind, UnitRule* rule>
void convert_scaled(ConvValue* out, const void* at, UnitId unit, int* count, float factor) {
    convert_number<Kind>(out, at, unit, count, [&](auto number) { rule(out, scale(number, factor), unit); });
}

/// A format that serves the listed units alone, all with the same factor.
template <class Kind, UnitId... units>
void convert_listed(ConvValue* out, const void* at, UnitId unit, int* count, float factor) {
    convert_number<Kind>(out, at, unit, count, [&](auto number) {
        if ((false || ... || (unit == units)))
            store_float(out, scale(number, factor));
        else
            store_not_available(out);
    });
}

/// A format without a check of the unit.
template <class Kind>
void convert_open(ConvValue* out, const void* at, UnitId unit, int* count, float factor) {
    convert_number<Kind>(out, at, unit, count, [&](auto number) { store_float(out, scale(number, factor)); });
}

/// Identifiers and counters keep their integer type, as a raw count too.
template <class Kind>
void convert_integer(ConvValue* out, const void* at, UnitId unit, int* count) {
    const auto number = Kind::read(at);
    store_count(count, Kind::bytes);
    if (unit != unit::raw_bits && Kind::is_refused(number))
        store_not_available(out);
    else if (unit == unit::raw_bits || unit == unit::raw_count)
        store_integer(out, Kind::raw_type, number);
    else
        unit_rule_integer(out, Kind::raw_type, number, unit);
}

}  // namespace pgn_vistel
