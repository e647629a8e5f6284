#include "values/wide_format.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

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
