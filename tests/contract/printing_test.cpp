#include <cfloat>
#include <cmath>
#include <cstdio>
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
    const std::tuple<const wchar_t*, float, const wchar_t*> cases[] = {
        // clang-format off
        {L"%5q", 12.3456f, L"12.346"}, {L"%5q", 123456, L"123456"}, {L"%8.2q", 3.14159f, L"3.14"},
        {L"%5q", 10, L"10.000"}, {L"%5q", 0, L"0.00000"}, {L"%5q", 9.99999f, L"10.0000"},
        {L"%5q", -0.25f, L"-0.25000"}, {L"%+5q", 12.5f, L"12.500"}, {L"%q", 3.7f, L" 4"}, {L"%q", 0.25f, L"0"},
        {L"%.3q", 3.75f, L" 4"}, {L"%12q", 1e12f, L"999999995904.00"}, {L"a %5q b %% c", 1.5f, L"a 1.5000 b % c"},
        {L"%5q", 0x1p31f, L"2147483648"}, {L"%10q", 0x1p31f, L"2147483648"}, {L"%11q", -0x1p31f, L"-2147483648.0"},
        {L"%5q", NAN, L"-"}, {L"%ld", -3.9f, L"-3"}, {L"%.1f", 2.25f, L"2.2"},
        {L"no conversion", 1, L"no conversion"}, {L"100%", 1, L"100"}, {L"%5", 1, L""}, {L"%5q%s%n", 1, L"1.0000n"},
    };
    // clang-format on
    for (const auto& [format, value, expected] : cases) EXPECT_EQ(q(format, value), expected) << value;
    EXPECT_EQ(q((L"%5q" + std::wstring(1000, L'x')).c_str(), 1), L"1.0000" + std::wstring(249, L'x'));
    EXPECT_EQ(q(L"%99999999999999q", 1).size(), 255u);
    for (const float v : {1e30f, -1e30f, std::numeric_limits<float>::infinity()})
        for (const wchar_t* const format : {L"%d", L"%u", L"%5q %d", L"%.200q", L"%e"}) q(format, v);
}

TEST(ValuePrinter, TypesAndReservedCodes) {
    const std::pair<ConvValue, const wchar_t*> cases[] = {
        // clang-format off
        {whole(CV_U8, 252), L"252"}, {whole(CV_I8, -128), L"-128"}, {whole(CV_U16, 10), L"10"},
        {whole(CV_I16, 0x7FFC), L"32764"}, {whole(CV_U32, 10), L"10"}, {whole(CV_I32, -1), L"-1"},
        {whole(CV_U64, 0x123456789A), L"78187493530"}, {whole(CV_I64, INT64_MIN), L"-9223372036854775808"},
        {whole(CV_TIME_OF_DAY, 3725), L" 1:02:05"}, {whole(CV_TIME_OF_DAY, 0xFFFFFFFC), L"1193046:28:12"},
        {single(12.3456f), L"12.346"}, {single(12.3456f, CV_FLOAT_PLAIN), L"12.346"},
        {real(47.123456789), L"47.123455"}, {whole(CV_CHAR, 0x81), L"\x03A9"}, {whole(CV_WCHAR, 0x103A9), L"\x03A9"},
        {narrow("caf\xE9 \x80"), L"caf\x00E9 \x0080"}, {wide(L"wide", CV_TEXT_WIDE), L"wide"},
        {whole(CV_RAW_FIELD_TOO, 5), L""}, {whole(CV_RAW_FIELD, 0), L""}, {whole(INT32_MAX, 5), L"-"},
        {whole(CV_NOT_AVAILABLE, 5), L"-"}, {single(NAN), L"-"}, {real(NAN), L"-"}, {whole(CV_U8, 253), L"-"},
        {whole(CV_I8, 125), L"-"}, {whole(CV_U16, 0xFFFD), L"-"}, {whole(CV_I16, 0x7FFD), L"-"},
        {whole(CV_U32, 0xFFFFFFFD), L"-"}, {whole(CV_I32, 0x7FFFFFFD), L"-"}, {whole(CV_U64, -3), L"-"},
        {whole(CV_I64, INT64_MAX - 2), L"-"}, {whole(CV_TIME_OF_DAY, 0xFFFFFFFD), L"-"},
    };
    // clang-format on
    for (const auto& [value, expected] : cases) EXPECT_EQ(text_of(value), expected) << "type " << value.type;
    EXPECT_STREQ(print_format_default(CV_I64), L"%I64");
    for (const int type : {-1, int{CV_RAW_FIELD_TOO}, int{CV_RAW_FIELD}, 1000})
        EXPECT_EQ(print_format_default(type), nullptr);
    EXPECT_EQ(text_of(wide(std::wstring(300, L'x').c_str())), std::wstring(255, L'x'));
    EXPECT_EQ(text_of(narrow(std::string(300, 'x').c_str())), std::wstring(255, L'x'));
}

TEST(ValuePrinter, CallerFormats) {
    const std::tuple<ConvValue, const wchar_t*, const wchar_t*> cases[] = {
        // clang-format off
        // accepted
        {whole(CV_U16, 10), L"%hu (0x%04X)", L"10 (0x000A)"}, {single(2.5f), L"100%% done %f", L"100% done 2.500000"},
        {real(2.5), L"%8.2q", L"2.50"}, {single(2.5f), L"%+.1e", L"+2.5e+00"}, {whole(CV_I8, -2), L"%x", L"fffffffe"},
        {whole(CV_U8, 7), L"%05d", L"00007"}, {whole(CV_U64, 10), L"%I64x", L"a"}, {whole(CV_U64, 10), L"%llu", L"10"},
        {whole(CV_U64, 0x123456789A), L"%I64u (0x%02X)", L"78187493530 (0x3456789A)"},
        {whole(CV_I64, -10), L"%I64", L"-10"}, {whole(CV_TIME_OF_DAY, 3725), L"%d.%d.%d", L"1.2.5"},
        {whole(CV_CHAR, 'x'), L"<%c>", L"<x>"}, {wide(L"ab"), L"<%5s>", L"<   ab>"}, {narrow("ab"), L"<%ls>", L"<ab>"},
        {whole(CV_U16, 7), L"%d|%s|", L"7||"}, {whole(CV_U16, 7), L"%d%", L"7"}, {wide(L"ab"), L"%s%s%s", L"ab"},
        // refused: the type's own
        {whole(CV_U64, 10), L"%u", L"10"}, {whole(CV_U64, 10), L"%I64d", L"10"}, {whole(CV_I64, 10), L"%d", L"10"},
        {single(2.5f), L"%d", L"2.5000"}, {single(2.5f), L"%g", L"2.5000"}, {whole(CV_CHAR, 'x'), L"%s", L"x"},
        {wide(L"ab"), L"%d", L"ab"}, {whole(CV_U8, 255), L"%d", L"-"},
    };
    // clang-format on
    for (const auto& [value, format, expected] : cases)
        EXPECT_EQ(text_of(value, format), expected) << "type " << value.type;
    for (const wchar_t* const refused :
         {L"%ls", L"%n", L"", L"100%%", L"%", L"%f", L"%I64u", L"%-5d", L"%*d", L"%i"})
        EXPECT_EQ(text_of(whole(CV_U16, 10), refused), L"10");
    EXPECT_EQ(text_of(whole(CV_U16, 7), L"%999999d"), std::wstring(255, L' '));
}

std::wstring formatted(const wchar_t* format, const std::vector<FormatArg>& args, int size = 256) {
    return printed([&](wchar_t* b, int n) { return format_wide(b, n, format, args); }, size);
}

TEST(WideFormat, Conversions) {
    const std::wstring blanks(255, L' '), zeros(255, L'0');
    const std::tuple<const wchar_t*, std::vector<FormatArg>, const wchar_t*> cases[] = {
        // clang-format off
        {L"%d", {1ll << 32}, L"0"}, {L"%lld", {-(1ll << 40)}, L"-1099511627776"}, {L"%I64", {-5}, L"-5"},
        {L"%I64u", {-1}, L"18446744073709551615"}, {L"%hd", {40000}, L"-25536"}, {L"%hhu", {257}, L"1"},
        {L"%I64d", {INT64_MIN}, L"-9223372036854775808"}, {L"0x%16X", {255}, L"0x              FF"},
        {L"%ls", {L"wide"}, L"wide"}, {L"%-6s|", {L"ab"}, L"ab    |"},
        {L"%.2s", {L"abc"}, L"ab"}, {L"%c", {FormatArg::of_character(L'\x03A9')}, L"\x03A9"}, {L"%%%d%%", {7}, L"%7%"},
        {L"%#2ld:%02d:%02d %s", {1, 2, 5, L"AM"}, L" 1:02:05 AM"}, {L"%#.0o", {0}, L"0"},
        // never more than was given, nor of another kind; numbers stand for each other and saturate
        {L"%d %d %s|", {1}, L"1  |"}, {L"%s%s%s", {}, L""}, {L"%s|", {123}, L"|"}, {L"%c|", {L"text"}, L"|"},
        {L"%d|%f|", {L"text", L"text"}, L"||"}, {L"%d|%f", {2.9, 3}, L"2|3.000000"},
        {L"%I64d", {1e300}, L"9223372036854775807"},
        {L"abc%", {1}, L"abc"}, {L"abc%-08.3l", {1}, L"abc"}, {L"%n%*d%k%1$d%!", {1, 2}, L"n*dk$d!"},
        // hostile widths
        {L"%999999d", {7}, blanks.c_str()}, {L"%.999999d", {7}, zeros.c_str()}, {L"%999999s", {L"a"}, blanks.c_str()},
        // clang-format on
    };
    for (const auto& [format, args, expected] : cases) EXPECT_EQ(formatted(format, args), expected);
    EXPECT_EQ(formatted(L"%.999999f", {0.5}), L"0.5" + std::wstring(252, L'0'));
    EXPECT_EQ(formatted(L"%.999999e", {1.0}, 12).substr(0, 5), L"1.000");
    EXPECT_EQ(formatted(L"%.400f", {-1.7976931348623157e308}).substr(0, 4), L"-179");
    for (int size = 0; size <= 12; ++size)
        EXPECT_EQ(formatted(L"ab%dcd%s", {1234, L"xyz"}, size),
                  std::wstring(L"ab1234cdxyz").substr(0, static_cast<std::size_t>(std::max(size - 1, 0))));
    EXPECT_EQ(format_wide(nullptr, 10, L"abc", {}), 0);
    wchar_t guard = L'?';
    for (const int size : {0, -3}) EXPECT_EQ(format_wide(&guard, size, L"abc", {}), 0);
    EXPECT_EQ(guard, L'?');
}

/// What the C runtime makes of the same.
template <class Number>
std::wstring by_the_runtime(const std::string& format, Number number) {
    char text[1024];
    const int count = std::snprintf(text, sizeof text, format.c_str(), number);
    return {text, text + count};
}

TEST(WideFormat, FlagsAreThoseOfTheRuntime) {
    const auto check = [](const std::vector<std::string>& flags, const std::string& letters, auto numbers,
                          auto print) {
        for (const std::string& flag : flags)
            for (const char* const width : {"", "1", "14"})
                for (const char* const precision : {"", ".", ".0", ".1", ".2", ".7", ".30"})
                    for (const char letter : letters) {
                        const std::string format = "%" + flag + width + precision + letter;
                        for (const auto number : numbers)
                            EXPECT_EQ(print(std::wstring(format.begin(), format.end()), number),
                                      by_the_runtime(format, number))
                                << format << " of " << number;
                    }
    };
    const auto print = [](const std::wstring& format, auto number) {
        return formatted(format.c_str(), {number}, 1024);
    };
    const std::vector<std::string> any = {"", "#", "+#", " #", "-#", "#0", "0"};
    check(any, "fFeE", std::vector{999999.5, 9.9999995, 0.5}, print);
    check(any, "fFeEgG",
          std::vector{0.0, -0.0, 12.3, 9.99, 0.96, -0.5, 100.0, 123456.0, 1e-4, 9.9996e-5, 1e-300, 1e22,
                      DBL_MAX, DBL_TRUE_MIN},
          print);
    check(any, "feg", std::vector{HUGE_VAL, -HUGE_VAL}, print);
    check({"", "-", "+", " ", "0", "+0"}, "d", std::vector{0, 42, -42}, print);
    check({"", "-", "0"}, "u", std::vector{0u, 59904u}, print);
#if defined(__MINGW32__)
    const char* const bases = "xX";  // this runtime prints nothing for "%#.0o" of 0
#else
    const char* const bases = "oxX";
#endif
    check(any, bases, std::vector{0u, 1u, 7u, 8u, 0xFEu, 0xFFFFFFFFu}, print);
}

}  // namespace
}  // namespace pgn_vistel::test
