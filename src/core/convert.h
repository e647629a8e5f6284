#pragma once

#include <cfloat>
#include <cstdint>

#include "core/numbers.h"
#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

// Otherwise a result would depend on what the compiler keeps in registers.
static_assert(FLT_EVAL_METHOD == 0, "single precision must be computed as such");

namespace pgn_vistel::core {

/// The raw bits of a field, as a number whose bits beyond the field are 0.
struct RawField {
    std::uint64_t bits = 0;
    std::uint16_t before = 0;  ///< the two bytes in front: the format of a value behind it stands there
    int bytes = 0;             ///< that a bit field has; it takes 8 where this is not 1 .. 8
};

// What follows stores the value of a field in a unit, and returns the bytes that the field takes by its
// format, or -1 where the format does not say. Units: see `FieldReading`.

/// Formats of numbers and codes: all but those of texts.
int convert(const FormatPlan& format, const RawField& raw, UnitId unit, TextScratch& scratch, Value& out);

/// Formats of texts. `field` has `available` bytes, behind which there are zeros; `bytes` is the field's own
/// size.
int convert_text(const FormatPlan& format, const std::uint8_t* field, int available, int bytes,
                 TextScratch& scratch, Value& out);

/// What one base unit of a rule is in a unit; 0 where it takes more than a factor, or the unit is not served.
inline float unit_factor(UnitRule rule, UnitId unit) {
    if (!is_unit(unit)) return rule == UnitRule::any ? 1.0f : 0.0f;
    return unit_factors[static_cast<std::size_t>(rule)][unit];
}

/// Takes a value from the rule's base unit to any unit. `unit::raw_count` keeps the base unit.
void apply_unit_rule(UnitRule rule, float value, UnitId unit, TextScratch& scratch, Value& out);

inline void store_none(Value& out) {
    out.type = ValueType::none;
    out.number = {};
}

inline void store_single(Value& out, double value) {
    out.type = ValueType::single;
    out.number = Value::Number::of(static_cast<float>(value));
}

inline void store_real(Value& out, double value) {
    out.type = ValueType::real;
    out.number = Value::Number::of(value);
}

inline void store_integer(Value& out, ValueType type, std::int64_t value) {
    out.type = type;
    out.number = Value::Number::of(value);
}

inline void store_text(Value& out, const void* data, int count, Encoding encoding) {
    out.type = ValueType::text;
    out.text = {data, count, encoding};
}

/// The tag of an integer by its width (24 bits count as 32) and sign.
constexpr ValueType integer_type(int width, bool is_signed) {
    const int step = width <= 8 ? 0 : width <= 16 ? 2 : width <= 32 ? 4 : 6;
    return static_cast<ValueType>(static_cast<int>(ValueType::u8) + step + (is_signed ? 1 : 0));
}

/// A number of up to 64 bits, with its sign in all bits.
inline std::int64_t widened(std::uint64_t bits, int width, bool is_signed) {
    const int unused = 64 - width;
    const std::uint64_t high = bits << unused;
    return is_signed ? static_cast<std::int64_t>(high) >> unused : static_cast<std::int64_t>(high >> unused);
}

/// NMEA 2000 reserves the top three codes of each width for "not available", "out of range" and "reserved";
/// they are refused together.
inline bool is_refused(std::int64_t number, int width, bool is_signed) {
    const std::uint64_t top = ~std::uint64_t{0} >> (64 - width + (is_signed ? 1 : 0));
    return is_signed ? number >= static_cast<std::int64_t>(top) - 2
                     : static_cast<std::uint64_t>(number) >= top - 2;
}

/// Of a position in 32 bits.
constexpr double degrees_per_count_32 = static_cast<double>(1e-7f);

/// Whether a count needs double precision: positions do, and what single precision has no digits for.
inline bool is_fine(const FormatPlan& format, std::int64_t number) {
    constexpr std::int64_t most = 1 << FLT_MANT_DIG;
    return format.rule == UnitRule::latitude_32 || format.rule == UnitRule::longitude_32 || number >= most ||
           number <= -most;
}

/// Whether a number of the corrected definitions is a code that is no value.
inline bool is_none(const FormatPlan& format, const Measure& measure, std::int64_t number) {
    return number >= format.first_reserved || number == measure.none[0] || number == measure.none[1];
}

/// A number of the corrected definitions in a unit that has a factor. Single precision does not see the
/// roundings of double precision: no decimal of so few digits lies in the middle between two singles. What is
/// fine is exact but for the one rounding of the division, in the unit that it is counted in.
inline double measured(const Measure& measure, std::int64_t number, float factor, bool fine) {
    const auto count = static_cast<double>(number + measure.offset);
    const auto by_unit = static_cast<double>(factor);
    return fine ? count * measure.times / measure.over * by_unit : count * (measure.step * by_unit);
}

/// The same in the unit that it is counted in, where its digits are so few that its shortest form has them.
inline Decimal decimal_of(const Measure& measure, std::int64_t number, bool fine) {
    constexpr std::int64_t single_digits = 1'000'000, double_digits = 1'000'000'000'000'000;
    const std::int64_t limit = fine ? double_digits : single_digits;
    const std::int64_t count = number + measure.offset;
    if (measure.multiple == 0 || count >= limit || count <= -limit) return {0, -1};
    const std::int64_t digits = count * measure.multiple;
    return {digits, digits < limit && digits > -limit ? measure.decimals : -1};
}

/// The scale is a single precision constant, applied in double precision and rounded once.
inline float scaled(std::int64_t number, float factor) {
    return static_cast<float>(static_cast<double>(number) * static_cast<double>(factor));
}

}  // namespace pgn_vistel::core
