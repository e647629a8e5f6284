#include <memory>
#include <set>

#include "contract/parsers/special.h"
#include "contract/records.h"
#include "core/plan.h"

namespace pgn_vistel::test {
namespace {

using namespace core::unit;

using Typed = std::tuple<UnitId, const char*, std::int64_t>;

// What is typed and the raw number that it becomes, beyond what round_trip_test.cpp has typed as it is shown:
// steps, ends of ranges, units that are not served, texts that are no numbers.
const std::tuple<DF, ConvType, std::vector<Typed>> typed[] = {
    // clang-format off
    // lists of units, with steps of their own
    {1, CV_I16, {{m_s2, "1.5", 150}, {raw_count, "1.5", 150}, {g_force, "1.5", 0x7FFF}, {m_s2, "abc", 0x7FFF},
                 {m_s2, "400", 0x7FFE}, {m_s2, "-327.68", -32768}, {m_s2, "-328", 0x7FFE}, {m_s2, "", 0}}},
    {2, CV_U16, {{deg, "90", 15707}, {deg, "-1", 0xFFFE}, {deg_lat, "1", 0xFFFF}}},
    {76, CV_I64, {{deg_lat, "47.5", 475000000000000000}, {deg_lat, "1000", INT64_MIN}}},
    {3, CV_FLOAT, {{rad, "0.5", 0x3F000000}, {V, "1", 0x7FFFFFFF}, {deg, "", 0x7FFFFFFF}, {rad, "1e99", 0x7F800000}}},
    {6, CV_U32, {{minutes, "1", 600000}, {raw_count, "1", 10000}, {days, "1", 0xFFFFFFFF}}},
    // factors: a unit without one gives 0, and single precision may lose a count
    {9, CV_U32, {{m, "10", 1000}, {raw_count, "7", 7}, {inch, "10", 25}, {mm, "10", 0}, {V, "10", 0}}},
    {17, CV_I16, {{gal, "10", 37}, {m3, "2", 1999}, {qt, "1", 0}}},
    {36, CV_I16, {{m_s, "-1", -999}, {bft, "-4", 0x7FFE}}},
    {38, CV_U16, {{fahrenheit, "32", 2731}, {V, "1", 0}, {celsius, "x", 0xFFFF}}}, {39, CV_U16, {{celsius, "", 27315}}},
    // no unit, every width
    {53, CV_U8, {{m, "252.9", 252}, {V, "253", 254}, {raw_count, "-1", 254}, {m, "x", 255}}},
    {57, CV_I8, {{percent, "-128", -128}, {m, "124", 124}, {m, "125", 126}, {m, "x", 127}}},
    {54, CV_U16, {{V, "65532", 65532}, {A, "65533", 65534}, {m, "  \t", 0}}}, {58, CV_I16, {{m, "32765", 32766}}},
    {55, CV_U32, {{W, "4294967040", 4294967040}, {m, "4294967296", 0xFFFFFFFE}}},
    {59, CV_I32, {{m, "-2147483648", INT32_MIN}, {m, "x", 0x7FFFFFFF}}}, {105, CV_U32, {{celsius, "20000", 0xFFFFFE}}},
    {56, CV_U64, {{m, "1e18", 999999984306749440}, {m, "1e19", INT64_MIN}, {m, "x", -1}}},
    {60, CV_I64, {{m, "-1e18", -999999984306749440}, {m, "x", INT64_MAX}}}, {117, CV_U64, {{m, "x", 0xFFFFFFFFFFFF}}},
    {101, CV_U8, {{m, "1.1", 50}, {V, "0.9", 254}}}, {3000, CV_U16, {{ppm, "70000", 70000}, {m, "1e30", INT64_MIN}}},
    // whole numbers, hexadecimal ones, states
    {52, CV_U64, {{V, "18446744073709551614", -2}, {m, "12.7", 12}, {m, "x", -1}}}, {0, CV_U8, {{m, "5", 255}}},
    {60010, CV_U8, {{m, "300", 44}, {m, "-1", 255}}}, {60018, CV_U32, {{m, "4294967296", 0xFFFFFFFF}}},
    {2518, CV_U8, {{V, "3", 3}, {m, "4", 254}, {m, "-1", 254}, {m, "x", 255}}},
    {62, CV_FLOAT, {{raw_bits, "5", 0x7FFFFFFF}}},
    // ranges, which go before the steps, and offsets
    {2452, CV_U32, {{W, "-2000000000", 0}, {mW, "1", 0xFFFFFFFF}, {W, "2211081215", 0xFB000000},
            {W, "2211082000", 0xFFFFFFFE}}},
    {2516, CV_U16, {{deg, "-200", 0}, {deg, "301.99", 64254}, {deg, "302", 0xFFFE}, {deg_true, "1", 0xFFFF}}},
    {2464, CV_U16, {{V, "-1", 0}, {m, "1", 32768}, {m, "1.001", 0xFFFE}, {m, "x", 0xFFFF}}},
    // masses, which are multiplied with themselves, and data sizes, which stay as typed
    {104, CV_U32, {{raw_count, "12.7", 12}, {lb, "10", 220}, {kg, "2", 400000000}, {gram, "1", 0xFFFFFFFF}}},
    {60003, CV_FLOAT, {{V, "1.5", 0x3FC00000}, {KB, "1024", 0x3F800000}, {byte, "1e40", 0x7F800000}}},
    // probed; Beaufort is taken for linear
    {60025, CV_U32, {{V, "50", 0xFFFFFFFF}, {Hz, "x", 0xFFFFFFFF}}},
    {60022, CV_I32, {{percent, "0.0005", 1}, {percent, "", 0}}},
    {60026, CV_I32, {{bft, "4", 357913952}}},
    // clang-format on
};

TEST(Parsers, TextsBecomeRawNumbers) {
    for (const auto& [df, type, cases] : typed)
        for (const auto& [unit, text, raw] : cases) {
            const ConvValue out = parse(df, text, unit);
            EXPECT_EQ(out.type, type) << "format " << df;
            EXPECT_EQ(out.value.i64, raw) << "format " << df << " '" << text << "' in unit " << unit;
        }
}

TEST(Parsers, UnreadableTextReadsAsNotAvailable) {
    // But not where the field has no such code or is of another kind than what is typed.
    const auto reads_as_number = [](DF df) {
        return std::set<DF>{12, 48, 62, 86, 108, 3001, 60003, 60018}.contains(df) ||
               (df >= 60010 && df <= 60016);
    };
    for (const DFDef& format : all_format_rows()) {
        SCOPED_TRACE(format.name);
        ASSERT_NE(format.parse, nullptr);
        EXPECT_EQ(format.parse(nullptr, "1", m), nullptr);
        const auto df = static_cast<DF>(format.df);
        const ConvValue unreadable = parse(df, "?", m), missing = parse(df, nullptr, m);
        EXPECT_EQ(missing.type, unreadable.type);
        if (unreadable.type >= CV_TEXT_NARROW) continue;
        EXPECT_EQ(missing.value.u64, unreadable.value.u64);
        const ConvValue read = convert_bits(df, unreadable.value.u64, raw_count).value;
        EXPECT_EQ(is_available(read), reads_as_number(df));
    }
}

// ---- texts ----

Bytes bytes_at(const void* at, std::size_t count) {
    const auto* const first = static_cast<const std::uint8_t*>(at);
    return {first, first + count};
}

TEST(Parsers, ShortTexts) {
    // The first bytes. The code page's euro sign and omega have no single byte in the field.
    const std::string longest(10000, 'x');
    const std::pair<std::string, Bytes> cases[] = {{"Ab\xE9", {5, 1, 'A', 'b', 0xE9}},
                                                   {"", {2, 1}},
                                                   {"5\x80\xE9", {8, 0, '5', 0, 0xAC, 0x20, 0xE9, 0}},
                                                   {longest, {252, 1, 'x'}},
                                                   {longest.substr(0, 124) + "\x80", {252, 0, 'x', 0}},
                                                   {longest + "\x80", {252, 0, 'x', 0}}};
    for (const auto& [text, expected] : cases) {
        const ConvValue out = parse(50, text.c_str(), m);
        EXPECT_EQ(out.type, CV_RAW_FIELD);
        EXPECT_EQ(bytes_at(out.value.raw, expected.size()), expected);
    }
    EXPECT_EQ(parse(50, nullptr, m).value.raw[0], 2);
}

TEST(Parsers, OtherTexts) {
    // Medium texts: the length says what is left behind the first two characters, in a field of three bytes
    // more than the text.
    for (const auto& [count, length] :
         {std::pair{0u, 0u}, {2u, 0u}, {3u, 1u}, {500u, 498u}, {10000u, 1869u}}) {
        const std::string text(count, 'x');
        const ConvValue out = parse(51, text.c_str(), m);
        EXPECT_EQ(out.type, CV_TEXT_NARROW);
        EXPECT_EQ(bytes_at(out.value.narrow, 3),
                  (Bytes{static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8), 1}));
        EXPECT_EQ(std::string(out.value.narrow + 3), text.substr(0, 1871));
    }
    for (const DF df : {core::format::text_fixed, core::format::hex_dump}) {
        for (const std::string& text : {std::string(""), std::string("01 02\x80"), std::string(10000, 'x')}) {
            const ConvValue out = parse(df, text.c_str(), m);
            EXPECT_EQ(out.type, CV_TEXT_NARROW);
            EXPECT_EQ(std::string(out.value.narrow), text.substr(0, 255));
        }
        EXPECT_STREQ(parse(df, nullptr, m).value.narrow, "");
    }
    // Each has an area of its own, which holds until its next call.
    const ConvValue fixed = parse(63, "fixed", m), dump = parse(3002, "dump", m);
    parse(51, "medium", m);
    EXPECT_EQ(std::string(fixed.value.narrow) + dump.value.narrow, "fixeddump");
}

TEST(Parsers, SelfDescribedValues) {
    int formats = 0;
    for (UnitId u = -1; u <= unit::count; ++u) {
        SCOPED_TRACE(u);
        const ConvValue out = parse(60007, "2.5", u);
        const auto field = self_described_field();
        if (field.empty()) {  // a unit that stands for no format
            EXPECT_EQ(out.type, CV_RAW_FIELD);
            EXPECT_EQ(out.value.u64, 0u);
            continue;
        }
        ++formats;
        const auto df = static_cast<DF>(field[0] | field[1] << 8);
        ASSERT_EQ(find_format_plan(df)->described, 1) << df;
        const ConvValue direct = parse(df, "2.5", u);
        EXPECT_EQ(out.type, direct.type);
        EXPECT_EQ(out.value.u64, direct.value.u64);
        const auto bytes = static_cast<std::size_t>(find_format_plan(df)->width / 8);
        ASSERT_EQ(field.size(), 2 + bytes);
        EXPECT_EQ(bytes_at(&field[2], bytes), bytes_at(&direct.value, bytes));
    }
    EXPECT_GT(formats, 30);
}

// ---- hostile texts ----

TEST(Parsers, AnyTextIsSafe) {
    std::vector<std::string> texts = {"1e999", "1e-999", "-", "nan", "0." + std::string(10000, '0') + "1"};
    for (const char c : {'9', ' ', '-', '\x80'}) texts.emplace_back(10000, c);
    std::mt19937 random(20261009);
    constexpr char likely[] = "0123456789+-.eExX \t,naif\x80\xFF";
    for (int i = 0; i < 200; ++i) {
        std::string text(random() % 24, '0');
        for (char& c : text)
            c = random() % 4 == 0 ? static_cast<char>(random() % 255 + 1)
                                  : likely[random() % (sizeof likely - 1)];
        texts.push_back(text);
    }
    std::vector<UnitId> units = {-1, raw_count, raw_bits, unit::count, 1 << 30};
    for (int i = 0; i < 12; ++i) units.push_back(static_cast<UnitId>(random() % unit::count));
    for (const std::string& text : texts) {
        // On the heap and no longer than it has to be, so that a step too far is seen.
        const auto copy = std::make_unique<char[]>(text.size() + 1);
        std::copy(text.begin(), text.end(), copy.get());
        for (const DFDef& format : all_format_rows())
            for (const UnitId u : units) {
                ConvValue out{-1, {}};
                ASSERT_EQ(format.parse(&out, copy.get(), u), &out);
                ASSERT_TRUE(out.type >= CV_FLOAT && out.type <= CV_RAW_FIELD) << format.name;
            }
    }
}

}  // namespace
}  // namespace pgn_vistel::test
