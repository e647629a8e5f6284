#include <bit>
#include <cmath>
#include <limits>

#include "core/convert.h"
#include "core/tables.h"
#include "core/value_text.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using namespace unit;

TextScratch scratch;

std::vector<FormatPlan> all_plans() {
    std::vector<FormatPlan> plans;
    for (std::uint32_t df = 0; df < 65536; ++df)
        if (const FormatPlan* const plan = find_format_plan(static_cast<DF>(df))) plans.push_back(*plan);
    return plans;
}

struct Converted {
    Value value;
    int taken;
};

Converted convert_bits(DF df, std::uint64_t bits, UnitId u, int bytes = 0, std::uint16_t before = 0) {
    Converted c;
    c.taken = convert(*find_format_plan(df), {bits, before, bytes}, u, scratch, c.value);
    return c;
}

double number_in(const Value& v) {
    switch (v.type) {
        case ValueType::single: return v.number.f32();
        case ValueType::real: return v.number.f64();
        case ValueType::u64: return static_cast<double>(v.number.u64());
        default: return static_cast<double>(integer_of(v));
    }
}

TEST(Conversions, NumbersAndIdentifiersOfEveryWidth) {
    int checked = 0;
    for (const FormatPlan& plan : all_plans()) {
        const bool scales = plan.reading == Reading::scaled, is_signed = plan.is_signed != 0;
        if (!scales && plan.reading != Reading::integer) continue;
        SCOPED_TRACE(plan.df);
        const ValueType raw_type = integer_type(plan.width, is_signed);
        const std::uint64_t top = ~std::uint64_t{0} >> (64 - plan.width + is_signed);
        for (const std::uint64_t refused : {top, top - 1, top - 2}) {
            for (const UnitId u : {UnitId{raw_count}, UnitId{plain_65}, UnitId{gear}})
                EXPECT_EQ(convert_bits(plan.df, refused, u).value.type, ValueType::none);
            EXPECT_EQ(convert_bits(plan.df, refused, raw_bits).value.type, raw_type);
            EXPECT_EQ(convert_bits(plan.df, refused, raw_bits).value.number.u64() & top, refused);
        }
        for (const std::uint64_t accepted : {std::uint64_t{0}, top - 3, top + 1}) {
            if (accepted == top + 1 && !is_signed) continue;
            // top + 1 is the most negative number
            const auto number = static_cast<std::int64_t>(accepted == top + 1 ? ~top : accepted);
            const Converted count = convert_bits(plan.df, accepted, raw_count);
            EXPECT_EQ(count.taken, plan.width / 8);
            EXPECT_EQ(count.value.type, scales ? ValueType::single : raw_type);
            const double expected = is_signed ? static_cast<double>(number) : static_cast<double>(accepted);
            EXPECT_EQ(number_in(count.value), scales ? static_cast<float>(expected) : expected);
            EXPECT_EQ(convert_bits(plan.df, accepted, raw_bits).value.number.i64(), number);
        }
        ++checked;
    }
    EXPECT_GT(checked, 100);
}

float apply(UnitRule rule, double value, UnitId u) {
    Value out;
    apply_unit_rule(rule, static_cast<float>(value), u, scratch, out);
    return out.type == ValueType::single ? out.number.f32() : NAN;
}

TEST(Conversions, Physics) {
    const std::tuple<UnitRule, double, UnitId, double> cases[] = {
        // clang-format off
        {UnitRule::speed_mm_s, 1852000.0 / 3600, kt, 1}, {UnitRule::length_cm, 185200, nm, 1},
        {UnitRule::length_cm, 30.48, ft, 1}, {UnitRule::angle_rad, 3.14159265, deg, 180},
        {UnitRule::volume_l, 3.785411784, gal, 1}, {UnitRule::temperature_k, 273.15, celsius, 0},
        {UnitRule::temperature_k, 273.15, fahrenheit, 32}, {UnitRule::temperature_k, 373.15, fahrenheit, 212},
        {UnitRule::temperature_k, 233.15, fahrenheit, -40}, {UnitRule::temperature_k, 300, raw_count, 300},
        {UnitRule::pressure_kpa, 101.325, unit::atm, 1}, {UnitRule::pressure_kpa, 101.325, mbar, 1013.25},
        {UnitRule::force_n, 9.80665, kg, 1}, {UnitRule::duration_s, 5400, hours, 1.5},
        // Beaufort: a bound belongs to the higher force
        {UnitRule::speed_mm_s, 40000, bft, 12}, {UnitRule::speed_m_s, -50, bft, 0}, {UnitRule::speed_m_s, NAN, bft, 12},
        // clang-format on
    };
    for (const auto& [rule, base, unit, expected] : cases)
        EXPECT_NEAR(apply(rule, base, unit), expected, std::max(2e-6 * std::fabs(expected), 4e-5))
            << "unit " << unit << " of " << base;
    const float one_knot = 1 / apply(UnitRule::speed_m_s, 1, kt);
    int exact = 0;
    for (const auto& [knots, force] : {std::pair{1.0f, 1}, {3.0f, 2}, {6.0f, 3}, {10.0f, 4}, {16.0f, 5}}) {
        float speed = one_knot * knots * 0.9999f;
        EXPECT_EQ(apply(UnitRule::speed_m_s, speed, bft), force - 1);
        while (apply(UnitRule::speed_m_s, speed, kt) < knots) speed = std::nextafter(speed, 99.0f);
        EXPECT_EQ(apply(UnitRule::speed_m_s, speed, bft), force);
        exact += apply(UnitRule::speed_m_s, speed, kt) == knots;
    }
    EXPECT_GT(exact, 0);
}

constexpr std::uint64_t f32(float v) {
    return std::bit_cast<std::uint32_t>(v);
}

TEST(Conversions, FormatsWithARuleOfTheirOwn) {
    constexpr ValueType NA = ValueType::none, TIME = ValueType::seconds, F = ValueType::single,
                        D = ValueType::real, U8 = ValueType::u8, U16 = ValueType::u16, U32 = ValueType::u32,
                        U64 = ValueType::u64, I32 = ValueType::i32, I64 = ValueType::i64;
    constexpr UnitId bits = raw_bits, counts = raw_count;
    constexpr std::uint64_t ones = ~std::uint64_t{0};
    const std::tuple<DF, std::uint64_t, std::vector<std::tuple<UnitId, ValueType, double>>> cases[] = {
        // clang-format off
        {0, 0x12345678, {{bits, U32, 0x12345678}, {counts, NA, 0}}}, {24, 1, {{bits, NA, 0}}},
        // floating angles, numbers and distances
        {3, f32(1), {{deg, F, 57.29578}, {counts, F, 1}, {bits, F, 1}, {V, NA, 0}}},
        {70, f32(NAN), {{bits, F, NAN}, {deg, NA, 0}}},
        {61, f32(-1.5), {{ppm, F, -1.5}, {counts, F, -1.5}}}, {61, f32(NAN), {{bits, F, NAN}, {ppm, NA, 0}}},
        {12, std::bit_cast<std::uint64_t>(1852.0), {{nm, F, 1}, {bits, D, 1852}, {counts, F, 1852}, {V, NA, 0}}},
        // positions
        {23, 600000000, {{deg_lat, D, 60}, {counts, D, 6e8}, {bits, I32, 6e8}, {deg_long, NA, 0}}},
        {23, 0x7FFFFFFD, {{deg_lat, NA, 0}, {counts, NA, 0}, {bits, I32, 0x7FFFFFFD}}},
        {25, 0xFFFFFFF6, {{deg_long, D, -1e-6}}}, {76, 600000000000000000, {{deg_lat, D, 60}, {bits, I64, 6e17}}},
        {77, -10000000000000000ull, {{deg_long, D, -1}}},
        // dates, run times, periods: 0xFFFE of a period is a code of the clock in every unit
        {41, 65532, {{days, U16, 65532}, {hours, NA, 0}}}, {41, 65533, {{bits, U16, 65533}, {date_ymd, NA, 0}}},
        {67, 5400, {{hours, F, 1.5}, {seconds, TIME, 5400}, {bits, TIME, 5400}}},
        {67, 0xFFFFFFFD, {{hours, NA, 0}, {counts, NA, 0}, {bits, TIME, 4294967293}}},
        {98, 90, {{hours, F, 1.5}, {counts, F, 90}, {bits, U16, 90}}}, {98, 0xFFFE, {{V, TIME, 4294967294}}},
        {98, 0xFFFD, {{minutes, NA, 0}}},
        // 48 bits in 8 bytes
        {117, 0xFFFFFFFFFFFC, {{plain_65, U64, 0xFFFFFFFFFFFC}, {V, NA, 0}}},
        {117, 0xFFFFFFFFFFFD, {{counts, NA, 0}, {bits, U64, 0xFFFFFFFFFFFD}}},
        {117, 0x1000000000000, {{counts, NA, 0}}},
        // codes
        {93, 252, {{tonf_uk, U8, 252}}}, {93, 253, {{percent, NA, 0}, {bits, U8, 253}}},
        {112, 350, {{ppm, U16, 350}, {percent, NA, 0}}}, {2518, 3, {{bits, U8, 3}}}, {2530, 4, {{bits, U8, 255}}},
        {60010, ones, {{V, U8, 15}}}, {60012, ones, {{V, U8, 3}}}, {60016, ones, {{V, U8, 63}}},
        {60017, ones, {{V, U16, 0xFFFF}}}, {60018, ones, {{V, U32, 0x1FFFFFFF}}}, {60019, ones, {{V, U64, 0x1p64}}},
        // offsets
        {2452, 2000001500, {{W, F, 1500}, {counts, F, 1500}, {bits, I32, 2000001500}, {V, NA, 0}}},
        {2456, 1999999000, {{kVAR, F, -1}}},
        {2464, 32768, {{plain_64, F, 1}, {counts, F, 16384}, {bits, U16, 32768}}}, {2464, 0xFFFD, {{plain_64, NA, 0}}},
        {2516, 2560, {{deg, F, -180}, {rad, F, -3.14159265}, {counts, F, -23040}, {deg_true, NA, 0}}},
        {101, 0, {{plain_66, F, 1}}}, {101, 250, {{V, F, 1.5}}},
        // values that name their format: 500 mm/s, and a format that none may name
        {60007, 0x01F40024, {{kph, F, 1.8}, {V, NA, 0}}}, {60007, 0x01F40023, {{kph, NA, 0}}},
        // clang-format on
    };
    for (const auto& [df, raw, outcomes] : cases)
        for (const auto& [u, type, expected] : outcomes) {
            SCOPED_TRACE(testing::Message() << "format " << df << " raw " << raw << " unit " << u);
            const Value got = convert_bits(df, raw, u).value;
            ASSERT_EQ(got.type, type);
            if (type == NA) continue;
            const double number = number_in(got);
            EXPECT_TRUE(std::isnan(expected) ? std::isnan(number)
                                             : std::fabs(number - expected) <= std::fabs(expected) * 3e-7)
                << number;
        }
    EXPECT_EQ(number_in(convert_bits(60009, 500, kph, 0, 36).value),
              number_in(convert_bits(36, 500, kph).value));
    for (int bytes = -1; bytes <= 10; ++bytes)
        EXPECT_EQ(convert_bits(52, ones, V, bytes).value.number.u64(),
                  bytes >= 1 && bytes <= 8 ? ones >> (64 - 8 * bytes) : ones);
}

// ---- texts ----

std::string text_in(const Value& value) {
    EXPECT_EQ(value.type, ValueType::text);
    std::string text;
    for_each_character(value.text, INT_MAX, [&](std::uint32_t c) {
        char area[4];
        text.append(area, static_cast<std::size_t>(write_utf8(area, c) - area));
    });
    return text;
}

std::string text_of(DF df, const Bytes& field, int bytes = 0, TextScratch& kept = scratch) {
    Value value;
    convert_text(*find_format_plan(df), field.data(), static_cast<int>(field.size()), bytes, kept, value);
    return text_in(value);
}

TEST(Texts, EveryFormat) {
    const std::tuple<DF, Bytes, std::string> cases[] = {
        // clang-format off
        {50, {5, 1, 'A', 'b', 'c', 'd'}, "Abc"}, {50, {8, 1, 'A', 'b', 0, 'd', 'e', 'f'}, "Ab"}, {50, {2, 1, 'A'}, ""},
        {50, {7, 1, 0x80, 0x81, 0x8C, 0x9C, 0xE9}, "\u20AC\u03A9\u0152\u0153\u00E9"}, {50, {20, 1, 'a', 'b'}, "ab"},
        {50, {6, 0, 'A', 0, 0xA9, 0x03, 'c', 0}, "A\u03A9"}, {50, {7, 0, 'A', 0, 'b', 0, 'c'}, "Ab"},
        {50, {8, 0, 'A', 0, 'b'}, "Ab"},
        {50, {6, 0, 0x3D, 0xD8, 0x00, 0xDE}, "\U0001F600"}, {50, {6, 0, 0x3D, 0xD8, 'a', 0}, "\uFFFDa"},
        {51, {6, 0, 1, 'A', 'b', 'c'}, "Abc"}, {51, {9, 0, 0, 'A', 0, 'b', 0, 'c', 0}, "Ab"},
        {51, {3, 0, 1}, ""}, {51, {5, 0, 0, 'A', 0}, ""},
        // clang-format on
    };
    for (const auto& [df, field, expected] : cases) EXPECT_EQ(text_of(df, field), expected);
    Bytes longest(1785, 'x');
    longest[0] = 252, longest[1] = 1;
    EXPECT_EQ(text_of(50, longest), std::string(125, 'x'));
    longest[0] = 0xF9, longest[1] = 6, longest[2] = 1;
    EXPECT_EQ(text_of(51, longest), std::string(891, 'x'));
    EXPECT_EQ(text_of(63, {'A', 'B', 0xFF, 0xFF}, 4), "AB");
    EXPECT_EQ(text_of(63, {'A', 0, 'C'}, 3), "A");
    EXPECT_EQ(text_of(63, {'A', 0xE9}, 10), "A\u00E9") << "what is there";
    EXPECT_EQ(text_of(63, Bytes(3000, 'z'), 5000), std::string(1785, 'z'));
    EXPECT_EQ(text_of(3002, {0x01, 0xAB}, 2), "01 AB");
    EXPECT_EQ(text_of(3002, Bytes(100, 0x7A), 100).size(), 251u);
    EXPECT_EQ(text_of(3002, {}, 5), "");
}

TEST(Texts, ARefusedHeaderShowsTheLastTextOfItsScratch) {
    const auto mine = std::make_unique<TextScratch>(), other = std::make_unique<TextScratch>();
    EXPECT_EQ(text_of(50, {4, 1, 'o', 'k'}, 0, *mine), "ok");
    EXPECT_EQ(text_of(51, {6, 0, 1, 'y', 'e', 's'}, 0, *mine), "yes");
    for (const Bytes& refused : {Bytes{0, 1, 'X'}, {1, 1, 'X'}, {253, 1, 'X'}, {255, 0, 'X'}, {5, 2, 'X'}}) {
        EXPECT_EQ(text_of(50, refused, 0, *mine), "ok");
        EXPECT_EQ(text_of(50, refused, 0, *other), "");
    }
    for (const Bytes& refused :
         {Bytes{0, 0, 1, 'X'}, {2, 0, 1, 'X'}, {0xFA, 6, 1}, {0xFF, 0xFF, 0}, {6, 0, 2, 'X'}}) {
        EXPECT_EQ(text_of(51, refused, 0, *mine), "yes");
        EXPECT_EQ(text_of(51, refused, 0, *other), "");
    }
}

}  // namespace
}  // namespace pgn_vistel::test
