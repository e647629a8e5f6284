#include "contract/parsers/scan.h"

#include <cmath>
#include <limits>

#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

constexpr Scanned number = Scanned::number, nothing = Scanned::nothing, end = Scanned::end;
constexpr double inf = std::numeric_limits<double>::infinity();

const std::string nines(10000, '9'), zeros(10000, '0'), blanks(10000, ' ');

TEST(Scan, Reals) {
    const std::string tiny = "0." + zeros + "1", huge_exponent = "1e" + nines, long_one = "1." + zeros,
                      balanced = "1" + zeros + "e-10000", balanced_tiny = "0." + zeros + "15e10001",
                      behind_blanks = blanks + "7";
    const struct {
        const char* text;
        Scanned result;
        double value;
        // clang-format off
    } cases[] = {
        {"1.5", number, 1.5}, {"-1.5", number, -1.5}, {"+2", number, 2}, {" \t\n\v\f\r 3", number, 3},
        {".5", number, 0.5}, {"5.", number, 5}, {"-.25", number, -0.25}, {"007", number, 7},
        {"1.2.3", number, 1.2}, {"12abc", number, 12}, {"3 4", number, 3}, {"1,5", number, 1},
        {"1e2", number, 100}, {"1E+2", number, 100}, {"25e-1", number, 2.5}, {".5e1x", number, 5},
        // an exponent without digits is left, and so is what other scanners take for numbers
        {"1e", number, 1}, {"1e+", number, 1}, {"1e-x", number, 1}, {"2e 3", number, 2}, {"0x10", number, 0},
        {"0x", number, 0}, {"1p3", number, 1}, {"1f", number, 1},
        // beyond any range
        {"1e999", number, inf}, {"-1e999", number, -inf}, {"1e-999", number, 0}, {"-1e-999", number, 0},
        {nines.c_str(), number, inf}, {tiny.c_str(), number, 0}, {zeros.c_str(), number, 0},
        {huge_exponent.c_str(), number, inf}, {"0e999999999999999999999", number, 0},
        {"0.1e-99999999999999999999", number, 0}, {long_one.c_str(), number, 1},
        {balanced.c_str(), number, 1}, {balanced_tiny.c_str(), number, 1.5},
        {behind_blanks.c_str(), number, 7},
        // unreadable
        {"abc", nothing, 0}, {"-", nothing, 0}, {"+", nothing, 0}, {".", nothing, 0}, {"-.", nothing, 0},
        {"--1", nothing, 0}, {"+-1", nothing, 0}, {"- 1", nothing, 0}, {"e5", nothing, 0},
        {".e5", nothing, 0}, {"nan", nothing, 0}, {"inf", nothing, 0}, {"-infinity", nothing, 0},
        {",5", nothing, 0}, {"\x01\x02", nothing, 0}, {"\xA0" "5", nothing, 0}, {"  x", nothing, 0},
        {nullptr, nothing, 0},
        // over before anything starts
        {"", end, 0}, {" ", end, 0}, {"\t\r\n", end, 0}, {blanks.c_str(), end, 0},
        // clang-format on
    };
    for (const auto& [text, result, value] : cases) {
        SCOPED_TRACE(text == nullptr ? "null" : std::string(text).substr(0, 20));
        double wide = 77;
        float narrow = 77;
        EXPECT_EQ(scan_real(text, wide), result);
        EXPECT_EQ(scan_real(text, narrow), result);
        EXPECT_EQ(wide, result == number ? value : 77);
        EXPECT_EQ(narrow, result == number ? static_cast<float>(value) : 77);
    }
    float narrow = 0;
    double wide = 0;
    scan_real("1e39", narrow);
    scan_real("1e39", wide);
    EXPECT_EQ(narrow, inf);
    EXPECT_EQ(wide, 1e39);
    scan_real("1.00000005960464478", narrow);  // halfway but for the last digit: rounded once, from the text
    EXPECT_EQ(narrow, std::nextafter(1.0f, 2.0f));
}

TEST(Scan, WholeNumbers) {
    constexpr auto all32 = std::numeric_limits<std::uint32_t>::max();
    constexpr auto all64 = std::numeric_limits<std::uint64_t>::max();
    const std::string many = "0x" + std::string(10000, 'F');
    const struct {
        const char* text;
        int base;
        Scanned result;
        std::uint32_t narrow;
        std::uint64_t wide;
        // clang-format off
    } cases[] = {
        {"12", 10, number, 12, 12}, {" +12.9", 10, number, 12, 12}, {"-1", 10, number, all32, all64},
        {"-2", 10, number, all32 - 1, all64 - 1}, {"0x10", 10, number, 0, 0}, {"1e3", 10, number, 1, 1},
        {"4294967295", 10, number, all32, all32}, {"4294967296", 10, number, all32, 4294967296},
        {"-4294967296", 10, number, all32, all64 - all32}, {"18446744073709551616", 10, number, all32, all64},
        {"-4294967295", 10, number, 1, all64 - all32 + 1}, {"-18446744073709551615", 10, number, all32, 1},
        {"18446744073709551615", 10, number, all32, all64}, {"-18446744073709551616", 10, number, all32, all64},
        {nines.c_str(), 10, number, all32, all64}, {zeros.c_str(), 10, number, 0, 0},
        {"ff", 16, number, 255, 255}, {"0xFFg", 16, number, 255, 255}, {"0X1", 16, number, 1, 1},
        {"0x", 16, number, 0, 0}, {"0xg", 16, number, 0, 0}, {"-0x1", 16, number, all32, all64},
        {"1122334455667788", 16, number, all32, 0x1122334455667788}, {many.c_str(), 16, number, all32, all64},
        {"x", 10, nothing, 0, 0}, {"-", 10, nothing, 0, 0}, {"--1", 10, nothing, 0, 0}, {".5", 10, nothing, 0, 0},
        {"g", 16, nothing, 0, 0}, {nullptr, 10, nothing, 0, 0}, {"", 10, end, 0, 0}, {"  ", 16, end, 0, 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text == nullptr ? "null" : std::string(c.text).substr(0, 20));
        std::uint32_t narrow = 77;
        std::uint64_t wide = 77;
        EXPECT_EQ(scan_whole(c.text, narrow, c.base), c.result);
        EXPECT_EQ(scan_whole(c.text, wide, c.base), c.result);
        EXPECT_EQ(narrow, c.result == number ? c.narrow : 77);
        EXPECT_EQ(wide, c.result == number ? c.wide : 77);
    }
    const std::pair<const char*, std::int32_t> with_sign[] = {{"-5", -5},
                                                              {"2147483647", INT32_MAX},
                                                              {"2147483648", INT32_MAX},
                                                              {"-2147483648", INT32_MIN},
                                                              {"-2147483649", INT32_MIN},
                                                              {"99999999999999999999", INT32_MAX},
                                                              {"-99999999999999999999", INT32_MIN},
                                                              {"", 77},
                                                              {"x", 77}};
    for (const auto& [text, expected] : with_sign) {
        std::int32_t scanned = 77;
        scan_whole(text, scanned);
        EXPECT_EQ(scanned, expected) << text;
    }
}

}  // namespace
}  // namespace pgn_vistel::test
