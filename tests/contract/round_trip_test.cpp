#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <set>

#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

// A raw number, shown as a value in a unit and typed as it was shown, has to come back. The formats are those
// of the table, so that a new one is tested without a word here.

/// What does not come back: parsers have units and kinds of their own (docs/decisions.md). No units: in none.
struct OneWay {
    std::uint32_t df;
    std::vector<UnitId> units;
    const char* reason;
};

const OneWay one_way[] = {
    {5, {}, "typed in angles, shown in angular accelerations"},
    {12, {}, "a double is typed as a single, and in no unit"},
    {35, {unit::bft}, "a Beaufort force is no speed"},
    {36, {unit::bft}, "a Beaufort force is no speed"},
    {48, {}, "typed unsigned"},
    {62, {}, "nothing can be typed"},
    {75, {}, "typed lengths count for a hundred of those shown"},
    {78, {}, "typed in degrees of longitude, shown in lengths"},
    {82, {unit::bft}, "a Beaufort force is no speed"},
    {86, {}, "typed unsigned"},
    {87, {unit::bft}, "a Beaufort force is no speed"},
    {89, {}, "typed in degrees of an angle, shown in those of a position"},
    {90, {}, "typed in degrees of an angle, shown in those of a position"},
    {92, {unit::kW, unit::kVA, unit::kVAR, unit::mW, unit::mVA, unit::mVAR}, "typed as the raw count"},
    {94, {unit::kW, unit::kVA, unit::kVAR, unit::mW, unit::mVA, unit::mVAR}, "typed as the raw count"},
    {95, {}, "typed as the raw count"},
    {96, {}, "typed as the raw count"},
    {97, {}, "typed as the raw count"},
    {104, {}, "typed masses are squared"},
    {106, {}, "volts are typed without the scale of 0.1"},
    {108, {}, "typed unsigned"},
    {109, {}, "typed lengths count for a hundred thousand of those shown"},
    {3001, {}, "typed pressures count for a thousand of those shown"},
    {60003, {}, "the record keeps the typed number, no raw one"},
    {60020, {unit::kWh}, "typed as the raw count"},
    {60021, {}, "typed as the raw count"},
    {60026, {unit::bft}, "a Beaufort force is no speed"},
};

const OneWay* find_one_way(std::uint32_t df, UnitId u) {
    for (const OneWay& row : one_way)
        if (row.df == df && (row.units.empty() || std::ranges::find(row.units, u) != row.units.end()))
            return &row;
    return nullptr;
}

/// The highest raw number that comes back, where that is less than what conversions show.
const std::map<std::uint32_t, std::uint64_t> highest = {
    {56, 0x7FFFFFFFFFFFFFFF},  // a number of 64 bits is typed as a signed one
    {2436, 0xFAFF},           {2440, 0xFAFF},     {2448, 0xFAFF},
    {2452, 4147483647},                                           // shown negative above that
    {2456, 4147483647},       {2460, 4147483647}, {2464, 32768},  // a power factor of 1
    {2468, 0xFAFFFFFF},       {2516, 0xFAFE},
};

struct RawForm {
    ConvType type;
    int bytes;
};

/// The raw number's type and width; no bytes for what is no number.
RawForm raw_form(DF df) {
    const Converted c = convert_bits(df, 0, unit::raw_bits);
    const auto type = static_cast<ConvType>(c.value.type);
    if (type == CV_FLOAT) return {type, 4};
    if (type == CV_DOUBLE) return {type, 8};
    if ((type < CV_U8 || type > CV_I64) && type != CV_TIME_OF_DAY) return {type, 0};
    if (c.count != untouched) return {type, c.count};
    return {type, type <= CV_I8 ? 1 : type <= CV_I16 ? 2 : type <= CV_I32 ? 4 : 8};
}

/// A value as a user reads it, with all its figures; empty for what is none or no number.
std::string text_of(DF df, const ConvValue& v) {
    char text[64];
    const auto print = [&](auto... what) {
        return std::string(text, std::to_chars(text, text + sizeof text, what...).ptr);
    };
    if (!is_available(v)) return "";
    switch (v.type) {
        case CV_FLOAT: return std::isfinite(v.value.f32) ? print(v.value.f32) : "";
        case CV_DOUBLE: return std::isfinite(v.value.f64) ? print(v.value.f64) : "";
        case CV_I8:
        case CV_I16:
        case CV_I32:
        case CV_I64: return print(v.value.i64);
        case CV_U8:
        case CV_U16:
        case CV_U32:
        case CV_TIME_OF_DAY:
        case CV_U64: return print(v.value.u64, df == 60019 ? 16 : 10);  // frame data is typed in hexadecimal
        default: return "";
    }
}

std::uint64_t low_bytes(std::uint64_t bits, int bytes) {
    return bits << (64 - 8 * bytes) >> (64 - 8 * bytes);
}

/// Truncation costs up to one count. The value and two constants are single precision, and so is the product
/// with them: four roundings of 2^-24 each, of a raw number that an offset may have made larger; twice that
/// is allowed.
double tolerance(DF df, std::uint64_t raw, const RawForm& form) {
    const auto shift = 64 - 8 * form.bytes;
    const bool is_signed =
        form.type == CV_I8 || form.type == CV_I16 || form.type == CV_I32 || form.type == CV_I64;
    const double number = is_signed ? static_cast<double>(static_cast<std::int64_t>(raw << shift) >> shift)
                                    : static_cast<double>(raw);
    const ConvValue count = convert_bits(df, raw, unit::raw_count).value;
    const double shifted = count.type == CV_FLOAT ? count.value.f32 : 0;
    return 1 + std::max(std::fabs(number), std::fabs(shifted)) * 0x1p-21;
}

/// The result may be out of range where rounding pushes the lowest number of a kind below its limit.
bool is_pushed_out(std::uint64_t raw, const RawForm& form, const ConvValue& typed) {
    const std::uint64_t sign = std::uint64_t{1} << (8 * form.bytes - 1);
    const std::uint64_t code = low_bytes(typed.value.u64, form.bytes);
    return (raw == 0 && code == 2 * sign - 2) || (raw == sign && code == sign - 2);
}

bool comes_back(DF df, std::uint64_t raw, const RawForm& form, const ConvValue& typed) {
    if (form.type == CV_FLOAT) {
        const float sent = convert_bits(df, raw, unit::raw_bits).value.value.f32;
        return typed.type == CV_FLOAT && std::fabs(typed.value.f32 - sent) <= std::fabs(sent) * 0x1p-21f;
    }
    const auto shift = 64 - 8 * form.bytes;
    const auto off = static_cast<std::int64_t>((typed.value.u64 - raw) << shift) >> shift;
    return std::fabs(static_cast<double>(off)) <= tolerance(df, raw, form) || is_pushed_out(raw, form, typed);
}

/// All numbers of a byte, some of the wider ones with both ends of their range.
std::vector<std::uint64_t> raw_numbers(const RawForm& form) {
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t raw = 0; raw < (form.bytes == 1 ? 256 : 0); ++raw) numbers.push_back(raw);
    std::mt19937_64 random(20261009);
    for (int i = 0; i < 500; ++i) numbers.push_back(low_bytes(random() >> i % (8 * form.bytes), form.bytes));
    for (const int near_end : {-5, -4, -3, -1, 0, 1, 2})
        for (const std::uint64_t end : {std::uint64_t{0}, std::uint64_t{1} << (8 * form.bytes - 1)})
            numbers.push_back(low_bytes(end + static_cast<std::uint64_t>(near_end), form.bytes));
    if (form.type == CV_FLOAT)  // beyond this, singles have fewer figures or a factor overflows them
        std::erase_if(numbers, [](std::uint64_t bits) {
            const float magnitude = std::fabs(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
            return !(magnitude > 1e-30f && magnitude < 1e30f);
        });
    return numbers;
}

struct Trip {
    std::set<std::uint64_t> typed;  ///< what the texts became; one result for all means a unit not served
    int shown = 0;
    int lost = 0;
    int lost_above = 0;  ///< beyond the highest number that comes back
    std::string first_loss;
};

Trip travel(const DFDef& format, UnitId u, const RawForm& form) {
    Trip trip;
    const auto df = static_cast<DF>(format.df);
    const auto limit = highest.find(format.df);
    if (text_of(df, convert_bits(df, 100, u).value).empty()) return trip;  // a unit that is not shown
    for (const std::uint64_t number : raw_numbers(form)) {
        const std::string text = text_of(df, convert_bits(df, number, u).value);
        if (text.empty()) continue;
        ConvValue typed{};
        format.parse(&typed, text.c_str(), u);
        ++trip.shown;
        if (trip.typed.size() < 2) trip.typed.insert(typed.value.u64);
        // Some formats ignore bits; theirs is the number that is left.
        if (low_bytes(typed.value.u64, form.bytes) == number && typed.type > CV_DOUBLE) continue;
        const std::uint64_t raw =
            form.type <= CV_DOUBLE
                ? number
                : low_bytes(convert_bits(df, number, unit::raw_bits).value.value.u64, form.bytes);
        if (comes_back(df, raw, form, typed)) continue;
        if (limit != highest.end() && raw > limit->second) {
            ++trip.lost_above;
            continue;
        }
        if (trip.lost++ == 0)
            trip.first_loss = std::to_string(raw) + " as '" + text + "' became type " +
                              std::to_string(typed.type) + ", " + std::to_string(typed.value.i64);
    }
    return trip;
}

/// Follows a format through all units. A unit that the parser does not serve gives one result for every text.
void check_format(const DFDef& format, const RawForm& form) {
    const auto df = static_cast<DF>(format.df);
    const auto type = [df](UnitId u) { return convert_bits(df, 100, u).value.type; };
    const bool heeds_no_unit = type(unit::gear) == type(unit::tonf_uk) && type(unit::gear) < CV_TEXT_NARROW;
    ConvValue nothing{};
    format.parse(&nothing, "abc", unit::m);
    int shown = 0, served = 0, excused = 0;
    for (UnitId u = 0; u < unit::count; ++u) {
        // A raw count is typed in one of the real units, which parsers_test.cpp names.
        if (u == unit::raw_count || u == unit::raw_bits || (heeds_no_unit && u != unit::gear)) continue;
        SCOPED_TRACE(std::string(format.name) + " unit " + std::to_string(u));
        const OneWay* const known = find_one_way(format.df, u);
        const Trip trip = travel(format, u, form);
        if (trip.shown == 0) continue;
        ++shown;
        if (known != nullptr) ++excused;
        if (trip.typed.size() == 1) {
            EXPECT_TRUE(*trip.typed.begin() == 0 || *trip.typed.begin() == nothing.value.u64);
            EXPECT_TRUE(known == nullptr || known->units.empty()) << "not served, so no exception";
        } else if (known != nullptr) {
            EXPECT_GT(trip.lost, 0) << "comes back, though " << known->reason;
        } else {
            ++served;
            EXPECT_EQ(trip.lost, 0) << "of " << trip.shown << ", first " << trip.first_loss;
            EXPECT_EQ(trip.lost_above > 0, highest.contains(format.df));
        }
    }
    EXPECT_TRUE(shown > 0 || find_one_way(format.df, unit::m) == nullptr) << format.name << " shows nothing";
    EXPECT_TRUE(shown == 0 || served > 0 || excused == shown) << format.name << " has no unit for both ways";
}

TEST(RoundTrip, EveryFormat) {
    for (const DFDef& format : all_format_rows()) {
        const RawForm form = raw_form(static_cast<DF>(format.df));
        if (form.bytes > 0) check_format(format, form);
    }
}

}  // namespace
}  // namespace pgn_vistel::test
