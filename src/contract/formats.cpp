#include "pgn_vistel/formats.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <span>

#include "contract/parsers/numeric.h"
#include "contract/parsers/special.h"
#include "contract/units.h"
#include "contract/values.h"
#include "core/convert.h"

namespace pgn_vistel {

namespace {

using core::FormatPlan;
using core::RawField;
using core::Reading;

const FormatPlan& plan_of(DF df) {
    return *core::find_format_plan(df);
}

/// A host's bytes: no more of them than the format has.
std::uint64_t load(const void* raw, int bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, raw, static_cast<std::size_t>(bytes));
    return word;
}

/// Format number and value, one behind the other.
std::uint64_t load_described(const void* raw) {
    constexpr int size_of_number = sizeof(DF);
    const std::uint64_t number = load(raw, size_of_number);
    const FormatPlan* const named = core::find_format_plan(static_cast<DF>(number));
    const int bytes = named != nullptr && named->described != 0 ? named->width / 8 : 0;
    return number | load(static_cast<const std::uint8_t*>(raw) + size_of_number, bytes) << 8 * size_of_number;
}

RawField raw_field(const FormatPlan& plan, const void* raw, int count) {
    switch (plan.reading) {
        case Reading::bit_field: {
            const int bytes = count >= 1 && count <= 8 ? count : 8;
            return {load(raw, bytes), 0, bytes};
        }
        case Reading::self_described: return {load_described(raw), 0, 0};
        case Reading::self_described_before: {
            const std::uint64_t word = load_described(static_cast<const std::uint8_t*>(raw) - sizeof(DF));
            return {word >> 8 * sizeof(DF), static_cast<std::uint16_t>(word), 0};
        }
        default: return {load(raw, plan.width / 8), 0, 0};
    }
}

/// The format of a field's value: the one that it names, else the field's own.
const FormatPlan* format_of_value(const FormatPlan& plan, const RawField& raw) {
    switch (plan.reading) {
        case Reading::self_described: return core::find_format_plan(static_cast<DF>(raw.bits));
        case Reading::self_described_before: return core::find_format_plan(raw.before);
        default: return &plan;
    }
}

/// Whether the record keeps the number that it came with: a mass has none in kilograms. Reserved codes are
/// not available there, as in any unit.
bool keeps_number(const FormatPlan& plan, const RawField& raw, UnitId unit) {
    const FormatPlan* const format = unit == unit::kg ? format_of_value(plan, raw) : nullptr;
    if (format == nullptr || format->rule != core::UnitRule::mass_kg) return false;
    core::Value counted;
    core::convert(plan, raw, unit::raw_count, shared_scratch(), counted);
    return counted.type == core::ValueType::single;
}

void convert(const FormatPlan& plan, ConvValue* out, const void* raw, UnitId unit, int* count) {
    core::Value value;
    const int given = count != nullptr ? *count : 0;
    int taken;
    if (core::is_text(plan.reading)) {
        taken = core::convert_text(plan, static_cast<const std::uint8_t*>(raw), INT_MAX, given,
                                   shared_scratch(), value);
        store_value(out, value, plan.reading);
    } else {
        const RawField field = raw_field(plan, raw, given);
        const UnitId asked = is_unit(unit) ? unit : UnitId{-1};
        taken = core::convert(plan, field, asked, shared_scratch(), value);
        if (keeps_number(plan, field, asked))
            out->type = CV_FLOAT;
        else
            store_value(out, value, plan.reading);
    }
    if (count != nullptr && taken >= 0) *count = taken;
}

/// The conversion of a format with the exported shape. Formats that share one have the same function.
template <DF df>
void convert_df(ConvValue* out, const void* raw, UnitId unit, int* count) {
    static const FormatPlan& plan = plan_of(df);
    convert(plan, out, raw, unit, count);
}

/// A double that is no dictionary entry's. But for the raw units it is tagged as a single and stored as a
/// double: a reader of the tag sees the low half. The way back from text tells by it that only the raw form
/// can be inverted.
template <>
void convert_df<core::format::double_precision>(ConvValue* out, const void* raw, UnitId unit, int* count) {
    const auto number = std::bit_cast<double>(load(raw, sizeof(double)));
    core::Value value;
    if (unit == unit::raw_count && !std::isnan(number))
        core::store_single(value, number);
    else if (unit == unit::raw_bits || !std::isnan(number))
        core::store_real(value, number);
    store_value(out, value, Reading::double_plain);
    if (value.type == core::ValueType::real && unit != unit::raw_bits) out->type = CV_FLOAT;
    if (count != nullptr) *count = sizeof number;
}

struct FormatConversion {
    DF df;
    ConvFunction conv;
};

// Formats below 118, by number; the two numbers without a format have a conversion that never has a value.
constexpr ConvFunction conv_table[] = {
#include "df_conv_table.inc"
};

// The larger numbers, in the list's own order.
constexpr FormatConversion conv_list[] = {
#include "df_conv_list.inc"
};

constexpr DFDef format_table[] = {
#include "format_table.inc"
};

constexpr DDDef dictionary[] = {
#include "dictionary_formats.inc"
};

}  // namespace

std::span<const DFDef> all_format_rows() {
    return format_table;
}

std::span<const DDDef> all_dictionary_rows() {
    return dictionary;
}

ConvFunction find_conversion(DF df) {
    if (df < std::size(conv_table)) return conv_table[df];
    const auto row = std::ranges::find(conv_list, df, &FormatConversion::df);
    return row != std::end(conv_list) ? row->conv : nullptr;
}

int convert_field(DF df, ConvValue* out, const void* at, UnitId unit) {
    if (out == nullptr || at == nullptr || unit >= unit_count) return -1;
    const ConvFunction conversion = find_conversion(df);
    if (conversion == nullptr) return -2;
    int count = INT_MAX;  // no length to offer: each format takes its own most
    conversion(out, at, unit, &count);
    return out->type >= CV_NOT_AVAILABLE ? -1 : count;
}

}  // namespace pgn_vistel
