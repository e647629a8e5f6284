#include "pgn_vistel/formats.h"

#include <bit>

#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

using namespace core::unit;
using Db = QV_N2K_PGN_DB_c;

TEST(Formats, ConversionByNumber) {
    for (const DF df : std::initializer_list<DF>{118, 2435, 2445, 3003, 60000, 60030, 60045, 65535})
        EXPECT_EQ(find_conversion(df), nullptr) << df;
    const std::uint8_t raw[32] = {2, 1};
    for (const DFDef& format : all_format_rows()) {
        EXPECT_EQ(format.conv, find_conversion(static_cast<DF>(format.df)));
        ConvValue out{-1, {}};
        format.conv(&out, raw + 2, raw_bits, nullptr);
        EXPECT_NE(out.type, -1) << format.df << ": the count may be missing";
    }
    EXPECT_EQ(Db::DF_to_conv_DF(105), reinterpret_cast<void*>(find_conversion(105)));
    EXPECT_STREQ(all_format_rows()[9].name, "DF09");
    EXPECT_EQ(Db::DF_to_DispDataType(105), quantity::temperature);
    EXPECT_EQ(Db::DispDataType_to_DF(quantity::temperature), 38);
    EXPECT_EQ(Db::DispDataType_to_DF(65), 65535);
}

TEST(Formats, ConversionOfOneField) {
    const std::uint8_t raw[16] = {10, 0};
    const std::tuple<DF, UnitId, int> cases[] = {
        // clang-format off
        {54, plain_65, 2}, {54, 139, -1}, {9, 139, -1}, {69, 139, 2}, {69, 140, -1}, {54, -1, -1}, {6, -1, 4},
        {52, 0, INT32_MAX}, {24, raw_count, -1}, {118, 0, -2}, {60030, 0, -2}, {50, m, 10}, {51, m, 10},
        // clang-format on
    };
    ConvValue out{CV_NOT_AVAILABLE, {}};
    for (const auto& [df, unit, expected] : cases)
        EXPECT_EQ(Db::conv_DF(df, &out, raw, unit), expected) << df << " in unit " << unit;
    for (const DF text : {format::text_short, format::text_medium}) {
        const std::uint8_t good[] = {4, text == format::text_short ? std::uint8_t{1} : std::uint8_t{0}, 1,
                                     'a'};
        Db::conv_DF(text, &out, good, 0);
        const std::wstring last = out.value.wide;
        const std::uint8_t takes_nothing[] = {0, 0, 1};
        EXPECT_EQ(Db::conv_DF(text, &out, takes_nothing, 0), 0);
        EXPECT_EQ(out.value.wide, last);
        wchar_t printed[256];
        EXPECT_EQ(Db().print_val(printed, text, takes_nothing, 0), -1);
        EXPECT_FALSE(last.empty());
    }
    EXPECT_EQ(Db::conv_DF(118, nullptr, raw, 0), -1);
    EXPECT_EQ(Db::conv_DF(118, &out, nullptr, 0), -1);
}

TEST(Formats, Records) {
    constexpr std::uint64_t nan = 0x7FF8000000000000;
    const std::tuple<DF, std::uint64_t, UnitId, int, std::uint64_t, int> cases[] = {
        // clang-format off
        {57, 0x80, raw_bits, CV_I8, ~std::uint64_t{0x7F}, 1}, {54, 0xFFFF, plain_65, CV_NOT_AVAILABLE, 0x7FFFFFFF, 2},
        {105, 0xFFFFFE, raw_bits, CV_U32, 0xFFFFFE, 3}, {114, 0xFFFFFE, raw_bits, CV_I32, ~std::uint64_t{1}, 3},
        {67, 3600, seconds, CV_TIME_OF_DAY, 3600, 4}, {52, ~0ull, m, CV_U64, ~0ull, untouched},
        {60010, 0xAB, m, CV_U8, 0xB, untouched},
        // a double where the unit is wrong, and a double that is tagged as a single
        {23, 1, V, CV_NOT_AVAILABLE, 0x7FFFFFFFFFFFFFFF, 4},
        {62, 0x3FB999999999999A, m, CV_FLOAT, 0x3FB999999999999A, 8},
        {62, 0x3FB999999999999A, raw_bits, CV_DOUBLE, 0x3FB999999999999A, 8},
        {62, 0x3FB999999999999A, raw_count, CV_FLOAT, 0x3DCCCCCD, 8}, {62, nan, raw_bits, CV_DOUBLE, nan, 8},
        {62, nan, raw_count, CV_NOT_AVAILABLE, 0x7FFFFFFF, 8}, {62, nan, m, CV_NOT_AVAILABLE, 0x7FFFFFFF, 8},
        // kilograms leave the number as it was
        {104, 1, kg, CV_FLOAT, came_with, 4}, {60007, 0x10068, kg, CV_FLOAT, came_with, 4},
        {104, 0xFFFFFFFD, kg, CV_NOT_AVAILABLE, 0x7FFFFFFF, 4}, {60007, 0x0023, kph, CV_NOT_AVAILABLE, 0x7FFFFFFF, untouched},
        // clang-format on
    };
    for (const auto& [df, bits, unit, type, value, count] : cases) {
        const Converted got = convert_bits(df, bits, unit);
        EXPECT_EQ(got.value.type, type) << df;
        EXPECT_EQ(got.value.value.u64, value) << df;
        EXPECT_EQ(got.count, count) << df;
    }
}

TEST(Formats, TextsHoldUntilTheNextOfTheirFormat) {
    const std::uint8_t short_text[] = {5, 1, 'A', 0x80, 'c'}, medium[] = {5, 0, 1, 'o', 'k'},
                       fixed[] = {'f', 0xE9, 0xFF};
    const ConvValue texts[] = {
        convert(50, short_text, V).value,        convert(51, medium, V).value,
        convert(63, fixed, V, 3).value,          convert(3002, fixed, V, 2).value,
        convert_bits(41, 19000, date_ymd).value, convert_bits(40, 3725000, clock_24).value};
    const auto wide_text = [&](int i) { return std::wstring(texts[i].value.wide); };
    EXPECT_EQ(wide_text(0), std::wstring(L"A\x20AC") + L"c");
    EXPECT_EQ(wide_text(1) + wide_text(4) + wide_text(5), L"ok2022-01-0801:02:05");
    EXPECT_STREQ(texts[2].value.narrow, "f\xE9");
    EXPECT_STREQ(texts[3].value.narrow, "66 E9");
    for (const int i : {0, 1, 4, 5}) EXPECT_EQ(texts[i].type, CV_TEXT);
    for (const int i : {2, 3}) EXPECT_EQ(texts[i].type, CV_TEXT_NARROW);
    const std::uint8_t refused[] = {5, 9, 'X', 'Y', 'Z'};
    EXPECT_STREQ(convert(50, refused, V).value.value.wide, texts[0].value.wide) << "the previous text";
    EXPECT_EQ(convert(50, refused, V).count, 5);
    EXPECT_EQ(convert(63, fixed, V, 0).value.value.narrow[0], 0);
}

}  // namespace
}  // namespace pgn_vistel::test
