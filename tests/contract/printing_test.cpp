#include <cmath>
#include <limits>

#include "contract/records.h"
#include "contract/value_printer.h"
#include "contract/wide_format.h"

namespace pgn_vistel::test {
namespace {

std::wstring text_of(const ConvValue& v, const wchar_t* format = nullptr) {
    return printed([&](wchar_t* b, int) { return print_conv_value(b, format, v); }, print_limit);
}

std::wstring q(const wchar_t* format, float value) {
    return printed([&](wchar_t* b, int) { return format_q(b, format, value); }, print_limit);
}

TEST(FormatQ, SignificantDigits) {
    const struct {
        const wchar_t* format;
        float value;
        const wchar_t* expected;
        // clang-format off
    } cases[] = {
        {L"%5q", 12.3456f, L"12.346"}, {L"%5q", 123456, L"123456"}, {L"%8.2q", 3.14159f, L"3.14"}, {L"%5q", 0, L"0.00000"},
        {L"%5q", 9.99999f, L"10.0000"}, {L"%5q", 99999, L"99999"}, {L"%5q", -0.25f, L"-0.25000"}, {L"%+5q", 12.5f, L"12.500"},
        {L"%q", 3.7f, L" 4"}, {L"%q", 0.25f, L"0"}, {L"%1q", 0.25f, L"0.2"}, {L"%.3q", 3.75f, L" 4"}, {L"%3.5q", 0.12345f, L"0.123"},
        {L"%5.0q", 1.5f, L"1.5000"}, {L"%10q", 2147483648.0f, L"2147483648"}, {L"%12q", 1e12f, L"999999995904.00"},
        {L"a %5q b %% c", 1.5f, L"a 1.5000 b % c"}, {L"%5q", NAN, L"-"}, {L"%d", 3.9f, L"3"}, {L"%ld", -3.9f, L"-3"},
        {L"%lu", 4294967040.0f, L"4294967040"}, {L"%.1f", 2.25f, L"2.2"}, {L"no conversion", 1, L"no conversion"}, {L"100%", 1, L"100"},
        {L"%5", 1, L""},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(q(c.format, c.value), c.expected) << c.value;
}

TEST(FormatQ, HostileFormats) {
    EXPECT_EQ(q(L"%5q%s%s%s%n", 1).substr(0, 6), L"1.0000");
    EXPECT_EQ(q(L"%99999999999999q", 1).size(), 255u);
    EXPECT_EQ(q((L"%5q" + std::wstring(1000, L'x')).c_str(), 1), L"1.0000" + std::wstring(249, L'x'));
    EXPECT_EQ(q((L"%" + std::wstring(1000, L'1') + L"q").c_str(), 1).size(), 255u);
    EXPECT_EQ(q((L"%" + std::wstring(1000, L'.') + L"q").c_str(), 1), L" 1");
    for (const float v : {1e30f, -1e30f, std::numeric_limits<float>::infinity()})
        for (const wchar_t* const format : {L"%d", L"%u", L"%5q", L"%5q %d", L"%.200q", L"%e"}) q(format, v);
}

TEST(ValuePrinter, TypesAndReservedCodes) {
    const struct {
        ConvValue value;
        const wchar_t* expected;
        // clang-format off
    } cases[] = {
        {whole(CV_U8, 252), L"252"}, {whole(CV_U8, 253), L"-"}, {whole(CV_I8, -128), L"-128"}, {whole(CV_I8, 125), L"-"},
        {whole(CV_U16, 0xFFFD), L"-"}, {whole(CV_I16, 0x7FFC), L"32764"}, {whole(CV_I16, 0x7FFD), L"-"},
        {whole(CV_U32, 0xFFFFFFFC), L"4294967292"}, {whole(CV_U32, 0xFFFFFFFD), L"-"}, {whole(CV_I32, INT32_MIN), L"-2147483648"},
        {whole(CV_I32, 0x7FFFFFFD), L"-"}, {whole(CV_U64, -4), L"18446744073709551612"}, {whole(CV_U64, -3), L"-"},
        {whole(CV_I64, INT64_MIN), L"-9223372036854775808"}, {whole(CV_I64, INT64_MAX - 2), L"-"},
        {whole(CV_TIME_OF_DAY, 3725), L" 1:02:05"}, {whole(CV_TIME_OF_DAY, 0xFFFFFFFC), L"1193046:28:12"},
        {whole(CV_TIME_OF_DAY, 0xFFFFFFFD), L"-"}, {single(12.3456f), L"12.346"}, {single(12.3456f, CV_FLOAT_PLAIN), L"12.346"},
        {single(NAN), L"-"}, {real(47.123456789), L"47.123455"}, {real(NAN), L"-"}, {whole(CV_CHAR, 0x81), L"\x03A9"},
        {whole(CV_WCHAR, 0x103A9), L"\x03A9"}, {whole(CV_WCHAR_PLAIN, 'y'), L"y"}, {narrow("caf\xE9 \x80"), L"caf\x00E9 \x0080"},
        {wide(L"wide", CV_TEXT_WIDE), L"wide"}, {wide(L"wide"), L"wide"}, {whole(CV_NOT_AVAILABLE, 5), L"-"},
        {whole(18, 5), L""}, {whole(CV_RAW_FIELD, 0), L""}, {whole(INT32_MAX, 5), L"-"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(text_of(c.value), c.expected) << "type " << c.value.type;
    const std::wstring x300(300, L'x');
    EXPECT_EQ(text_of(wide(x300.c_str())), std::wstring(255, L'x'));
    EXPECT_EQ(text_of(narrow(std::string(300, 'x').c_str())), std::wstring(255, L'x'));
}

TEST(ValuePrinter, CallerFormats) {
    const struct {
        ConvValue value;
        const wchar_t *format, *expected;
        // clang-format off
    } cases[] = {
        // accepted
        {whole(CV_U16, 10), L"%hu (0x%04X)", L"10 (0x000A)"},
        {single(2.5f), L"100%% done %f", L"100% done 2.500000"}, {real(2.5), L"%8.2q", L"2.50"},
        {single(2.5f), L"%+.1e", L"+2.5e+00"}, {whole(CV_I8, -2), L"%x", L"fffffffe"},
        {whole(CV_U8, 7), L"%05d", L"00007"}, {whole(CV_U8, 7), L"%+ld", L"+7"},
        {whole(CV_U8, 7), L"%#hx", L"0x7"}, {whole(CV_U64, 10), L"%I64x", L"a"},
        {whole(CV_U64, 10), L"%llu", L"10"}, {whole(CV_I64, -10), L"%I64d", L"-10"},
        {whole(CV_I64, -10), L"%I64", L"-10"}, {whole(CV_TIME_OF_DAY, 3725), L"%u h", L"1 h"},
        {whole(CV_TIME_OF_DAY, 3725), L"%d.%d.%d", L"1.2.5"}, {whole(CV_CHAR, 'x'), L"<%c>", L"<x>"},
        {wide(L"ab"), L"<%5s>", L"<   ab>"}, {narrow("ab"), L"<%ls>", L"<ab>"},
        {whole(CV_U16, 7), L"%d %d %d|", L"7  |"}, {whole(CV_U16, 7), L"%d|%s|", L"7||"},
        {whole(CV_U16, 7), L"%d%", L"7"}, {wide(L"ab"), L"%s%s%s", L"ab"},
        // refused: the type's own
        {whole(CV_U64, 10), L"%u", L"10"}, {whole(CV_U64, 10), L"%I64d", L"10"},
        {whole(CV_U64, 10), L"%llx", L"10"}, {whole(CV_I64, 10), L"%I64u", L"10"},
        {whole(CV_I64, 10), L"%d", L"10"}, {single(2.5f), L"%d", L"2.5000"}, {single(2.5f), L"%g", L"2.5000"},
        {whole(CV_CHAR, 'x'), L"%s", L"x"}, {wide(L"ab"), L"%d", L"ab"}, {whole(CV_U8, 255), L"%d", L"-"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(text_of(c.value, c.format), c.expected) << "type " << c.value.type;
    for (const wchar_t* const refused : {L"%ls", L"%n", L"plain", L"", L"100%%", L"%", L"%f", L"%I64u",
                                         L"%-5d", L"%*d", L"%++d", L"%l", L"%i", L"%s%s%s"})
        EXPECT_EQ(text_of(whole(CV_U16, 10), refused), L"10");
    EXPECT_EQ(text_of(whole(CV_U16, 7), L"%999999d"), std::wstring(255, L' '));
    EXPECT_EQ(text_of(whole(CV_U16, 7), (std::wstring(400, L'x') + L"%d").c_str()), std::wstring(255, L'x'));
}

TEST(ValuePrinter, HexadecimalForms) {
    // clang-format off
    const std::pair<ConvValue, const wchar_t*> cases[] = {
        {whole(CV_U8, 10), L"10 (0x0A)"}, {whole(CV_I8, -2), L"-2 (0xFFFFFFFE)"},
        {whole(CV_U16, 10), L"10 (0x000A)"}, {whole(CV_I16, 10), L"10 (0x0A)"},
        {whole(CV_U32, 10), L"10 (0x0000000A)"}, {whole(CV_I32, -1), L"-1 (0xFFFFFFFF)"},
        {whole(CV_U64, 0x123456789A), L"78187493530 (0x3456789A)"}, {whole(CV_I64, 10), L"10"},
        {single(2.5f), L"2.5000"},
    };
    // clang-format on
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(text_of(value, print_format_hex(value.type)), expected);
    EXPECT_STREQ(print_format_default(CV_I64), L"%I64");
    for (const int type : {-1, 18, int{CV_RAW_FIELD}, int{CV_NOT_AVAILABLE}, 1000}) {
        EXPECT_EQ(print_format_default(type), nullptr);
        EXPECT_EQ(print_format_hex(type), nullptr);
    }
}

std::wstring formatted(const wchar_t* format, std::initializer_list<FormatArg> args, int size = 256) {
    return printed(
        [&](wchar_t* b, int n) {
            return format_wide(b, n, format, {args.begin(), args.size()});
        },
        size);
}

TEST(WideFormat, Conversions) {
    const struct {
        const wchar_t* format;
        FormatArg arg;
        const wchar_t* expected;
        // clang-format off
    } cases[] = {
        {L"%d", 42, L"42"}, {L"%5d|", 42, L"   42|"}, {L"%-5d|", 42, L"42   |"}, {L"%05d", -42, L"-0042"},
        {L"%+d", 42, L"+42"}, {L"% d", 42, L" 42"}, {L"%+d", -1, L"-1"}, {L"%.4d", -42, L"-0042"},
        {L"%8.4d|", 42, L"    0042|"}, {L"%08.4d|", 42, L"    0042|"}, {L"%.0d", 0, L""},
        {L"%-05d|", 4, L"4    |"}, {L"%d", 1ll << 32, L"0"}, {L"%I64d", 1ll << 32, L"4294967296"},
        {L"%lld", -(1ll << 40), L"-1099511627776"}, {L"%I64", -5, L"-5"},
        {L"%I64u", -1, L"18446744073709551615"}, {L"%I32d", 1ll << 32, L"0"}, {L"%hu", 65537, L"1"},
        {L"%hd", 40000, L"-25536"}, {L"%hhu", 257, L"1"}, {L"%lu", -1, L"4294967295"},
        {L"%ld", INT64_MIN, L"0"}, {L"%I64d", INT64_MIN, L"-9223372036854775808"},
        {L"% 6u", 59904, L" 59904"}, {L"%x", 255, L"ff"}, {L"%#x", 255, L"0xff"}, {L"%#X", 255, L"0XFF"},
        {L"%#x", 0, L"0"}, {L"%o", 8, L"10"}, {L"0x%04X", 10, L"0x000A"}, {L"0x%02X", -2, L"0xFFFFFFFE"},
        {L"0x%16X", 255, L"0x              FF"}, {L"%#2ld", 1, L" 1"}, {L"%f", 1.5, L"1.500000"},
        {L"%.0f", 2.5, L"2"}, {L"%6.3f", 12.3456, L"12.346"}, {L"%-10.2f|", 12.345, L"12.35     |"},
        {L"%08.2f", -1.5, L"-0001.50"}, {L"%e", 12345.0, L"1.234500e+04"}, {L"%E", 1e-300, L"1.000000E-300"},
        {L"%g", 0.0001, L"0.0001"}, {L"%.3G", 1e20, L"1E+20"}, {L"%f", -0.0, L"-0.000000"},
        {L"%.20f", 0.5, L"0.50000000000000000000"}, {L"%.1f", 1e22, L"10000000000000000000000.0"},
        {L"%s", L"wide", L"wide"}, {L"%ls", L"wide", L"wide"}, {L"%6s|", L"ab", L"    ab|"},
        {L"%-6ls|", L"ab", L"ab    |"}, {L"%.2s", L"abc", L"ab"},
        {L"%c", FormatArg::of_character(L'\x03A9'), L"\x03A9"}, {L"100%%", 0, L"100%"},
        {L"%%%d%%", 7, L"%7%"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(formatted(c.format, {c.arg}), c.expected);
    EXPECT_EQ(formatted(L"%#2ld:%02d:%02d %s", {1, 2, 5, L"AM"}), L" 1:02:05 AM");
}

TEST(WideFormat, NeverTakesWhatItWasNotGiven) {
    EXPECT_EQ(formatted(L"%d %d %s|", {1}), L"1  |");
    EXPECT_EQ(formatted(L"%s%s%s", {}), L"");
    EXPECT_EQ(formatted(L"%s|", {123}), L"|") << "a number is no text";
    EXPECT_EQ(formatted(L"%c|", {L"text"}), L"|");
    EXPECT_EQ(formatted(L"%d|%f|", {L"text", L"text"}), L"||");
    EXPECT_EQ(formatted(L"%s|", {static_cast<const wchar_t*>(nullptr)}), L"|");
    EXPECT_EQ(formatted(L"%d|%f", {2.9, 3}), L"2|3.000000") << "numbers stand for each other";
    EXPECT_EQ(formatted(L"%d", {1e300}), formatted(L"%d", {INT64_MAX})) << "and saturate";
    EXPECT_EQ(formatted(L"abc%", {1}), L"abc");
    EXPECT_EQ(formatted(L"abc%-08.3l", {1}), L"abc");
    EXPECT_EQ(formatted(L"%", {}), L"");
    for (const wchar_t* const format : {L"%n", L"%*d", L"%k", L"%1$d", L"%!", L"%hhn%lln"})
        formatted(format, {1, 2});
}

TEST(WideFormat, HostileWidths) {
    EXPECT_EQ(formatted(L"%999999d", {7}), std::wstring(255, L' '));
    EXPECT_EQ(formatted(L"%-999999999999999999999d", {7}), L"7" + std::wstring(254, L' '));
    EXPECT_EQ(formatted(L"%.999999d", {7}), std::wstring(255, L'0'));
    EXPECT_EQ(formatted(L"%.999999f", {0.5}), L"0.5" + std::wstring(252, L'0'));
    EXPECT_EQ(formatted(L"%999999s", {L"a"}), std::wstring(255, L' '));
    EXPECT_EQ(formatted(L"%.999999e", {1.0}, 12).substr(0, 5), L"1.000");
    EXPECT_EQ(formatted(L"%f", {1.7976931348623157e308}).substr(0, 5), L"17976");
    EXPECT_EQ(formatted(L"%.400f", {-1.7976931348623157e308}).substr(0, 4), L"-179");
}

TEST(WideFormat, StopsAtTheBuffersEnd) {
    for (int size = 0; size <= 12; ++size)
        EXPECT_EQ(formatted(L"ab%dcd%s", {1234, L"xyz"}, size),
                  std::wstring(L"ab1234cdxyz").substr(0, static_cast<std::size_t>(std::max(size - 1, 0))));
    EXPECT_EQ(format_wide(nullptr, 10, L"abc", {}), 0);
    wchar_t guard = L'?';
    EXPECT_EQ(format_wide(&guard, 0, L"abc", {}), 0);
    EXPECT_EQ(format_wide(&guard, -3, L"abc", {}), 0);
    EXPECT_EQ(guard, L'?');
}

}  // namespace
}  // namespace pgn_vistel::test
