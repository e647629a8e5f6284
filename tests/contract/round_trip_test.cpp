#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

#include "contract/records.h"
#include "core/plan.h"

namespace pgn_vistel::test {
namespace {

// A raw number, shown as a value in a unit and typed as it was shown, has to come back. The formats are those
// of the table, so that a new one is tested without a word here.

/// What does not come back: parsers have units and kinds of their own (docs/decisions.md). No units: in none.
struct OneWay {
    std::set<std::uint32_t> formats;
    std::set<UnitId> units;
    const char* reason;
};

const OneWay one_way[] = {
    {{5}, {}, "typed in angles, shown in angular accelerations"},
    {{12}, {}, "a double is typed as a single, and in no unit"},
    {{35, 36, 82, 87, 60026}, {unit::bft}, "a Beaufort force is no speed"},
    {{48, 86, 108}, {}, "typed unsigned"},
    {{62}, {}, "nothing can be typed"},
    {{75, 106, 109, 3001}, {}, "typed with another scale than shown"},
    {{78, 89, 90}, {}, "typed in degrees of another kind than shown"},
    {{92, 94}, {unit::kW, unit::kVA, unit::kVAR, unit::mW, unit::mVA, unit::mVAR}, "typed as the raw count"},
    {{95, 96, 97, 60021}, {}, "typed as the raw count"},
    {{60020}, {unit::kWh}, "typed as the raw count"},
    {{104}, {}, "typed masses are squared"},
    {{60003}, {}, "the record keeps the typed number, no raw one"},
};

const OneWay* find_one_way(std::uint32_t df, UnitId u) {
    for (const OneWay& row : one_way)
        if (row.formats.contains(df) && (row.units.empty() || row.units.contains(u))) return &row;
    return nullptr;
}

struct RawForm {
    ConvType type;
    int bytes;
    bool is_signed;
};

/// The raw number's type and width; no bytes for what is no number.
RawForm raw_form(DF df) {
    const Converted c = convert_bits(df, 0, unit::raw_bits);
    const auto type = static_cast<ConvType>(c.value.type);
    const bool is_signed = find_format_plan(df)->is_signed != 0;
    if (type == CV_FLOAT || type == CV_DOUBLE) return {type, type == CV_FLOAT ? 4 : 8, true};
    if ((type < CV_U8 || type > CV_I64) && type != CV_TIME_OF_DAY) return {type, 0, false};
    if (c.count != untouched) return {type, c.count, is_signed};
    return {type, type <= CV_I8 ? 1 : type <= CV_I16 ? 2 : type <= CV_I32 ? 4 : 8, is_signed};
}

/// A value as a user reads it, with all its figures; empty for what is none or no number.
std::string text_of(DF df, const ConvValue& v) {
    char text[64];
    const auto print = [&](auto... what) {
        return std::string(text, std::to_chars(text, text + sizeof text, what...).ptr);
    };
    const bool is_signed = v.type >= CV_I8 && v.type <= CV_I64 && (v.type - CV_I8) % 2 == 0;
    if (!is_available(v)) return "";
    if (v.type == CV_FLOAT) return std::isfinite(v.value.f32) ? print(v.value.f32) : "";
    if (v.type == CV_DOUBLE) return std::isfinite(v.value.f64) ? print(v.value.f64) : "";
    if (is_signed) return print(v.value.i64);
    if (v.type > CV_I64 && v.type != CV_TIME_OF_DAY) return "";
    return print(v.value.u64, df == 60019 ? 16 : 10);  // frame data is typed in hexadecimal
}

std::uint64_t low_bytes(std::uint64_t bits, int bytes) {
    return bits << (64 - 8 * bytes) >> (64 - 8 * bytes);
}

std::int64_t with_sign(std::uint64_t bits, int bytes) {
    return static_cast<std::int64_t>(bits << (64 - 8 * bytes)) >> (64 - 8 * bytes);
}

/// Truncation costs up to one count. The value and two constants are single precision, and so is the product
/// with them: four roundings of 2^-24 each, of a raw number that an offset may have made larger; twice that
/// is allowed.
bool comes_back(DF df, std::uint64_t raw, const RawForm& form, const ConvValue& typed) {
    if (form.type == CV_FLOAT) {
        const float sent = convert_bits(df, raw, unit::raw_bits).value.value.f32;
        return typed.type == CV_FLOAT && std::fabs(typed.value.f32 - sent) <= std::fabs(sent) * 0x1p-21f;
    }
    const double number =
        form.is_signed ? static_cast<double>(with_sign(raw, form.bytes)) : static_cast<double>(raw);
    const ConvValue count = convert_bits(df, raw, unit::raw_count).value;
    const double shifted = count.type == CV_FLOAT ? count.value.f32 : 0;
    const auto off = static_cast<double>(with_sign(typed.value.u64 - raw, form.bytes));
    return std::fabs(off) <= 1 + std::max(std::fabs(number), std::fabs(shifted)) * 0x1p-21;
}

/// Some numbers of every size. Not the ends of the range: some parsers take a narrower one, and rounding
/// pushes the last numbers beyond it.
std::vector<std::uint64_t> raw_numbers(const RawForm& form) {
    std::vector<std::uint64_t> numbers;
    std::mt19937_64 random(20261009);
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t number = (random() >> (65 - 8 * form.bytes) >> i % (8 * form.bytes - 3)) | 1;
        numbers.push_back(low_bytes(i % 2 == 0 && form.is_signed ? 0 - number : number, form.bytes));
    }
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
    std::vector<std::string> losses;
};

Trip travel(const DFDef& format, UnitId u, const RawForm& form) {
    Trip trip;
    const auto df = static_cast<DF>(format.df);
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
        if (!comes_back(df, raw, form, typed))
            trip.losses.push_back(std::to_string(raw) + " as '" + text + "' became " +
                                  std::to_string(typed.value.i64));
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
        // A raw count is typed in one of the real units.
        if (u == unit::raw_count || u == unit::raw_bits || (heeds_no_unit && u != unit::gear)) continue;
        SCOPED_TRACE(std::string(format.name) + " unit " + std::to_string(u));
        const OneWay* const known = find_one_way(format.df, u);
        const Trip trip = travel(format, u, form);
        if (trip.shown == 0) continue;
        ++shown;
        if (known != nullptr) ++excused;
        if (known != nullptr) {
            EXPECT_FALSE(trip.losses.empty()) << "comes back, though " << known->reason;
        } else if (trip.typed.size() == 1) {
            EXPECT_TRUE(*trip.typed.begin() == 0 || *trip.typed.begin() == nothing.value.u64);
        } else {
            ++served;
            EXPECT_EQ(trip.losses, std::vector<std::string>());
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
