#include "contract/parsers/scan.h"

#include <cmath>
#include <limits>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

constexpr Scanned number = Scanned::number, nothing = Scanned::nothing, end = Scanned::end;
constexpr double inf = std::numeric_limits<double>::infinity();

const std::string nines(10000, '9'), zeros(10000, '0'), blanks(10000, ' ');

TEST(Scan, Reals) {
    const std::tuple<std::string, Scanned, double> cases[] = {
        // clang-format off
        {"-1.5", number, -1.5}, {"+2", number, 2}, {" \t\n\v\f\r 3", number, 3}, {".5", number, 0.5}, {"5.", number, 5},
        {"1.2.3", number, 1.2}, {"12abc", number, 12}, {"1E+2", number, 100}, {"25e-1", number, 2.5},
        {blanks + "7", number, 7},
        // an exponent without digits is left, and so is what other scanners take for numbers
        {"1e", number, 1}, {"1e-x", number, 1}, {"0x10", number, 0}, {"1p3", number, 1}, {"1f", number, 1},
        // beyond any range
        {"-1e999", number, -inf}, {"-1e-999", number, 0}, {nines, number, inf}, {"0." + zeros + "1", number, 0},
        {"1e" + nines, number, inf}, {"0e999999999999999999999", number, 0}, {"1" + zeros + "e-10000", number, 1},
        {"0." + zeros + "15e10001", number, 1.5},
        // unreadable, and over before anything starts
        {"-", nothing, 0}, {".", nothing, 0}, {"--1", nothing, 0}, {"- 1", nothing, 0}, {".e5", nothing, 0},
        {"nan", nothing, 0}, {"-infinity", nothing, 0}, {"\xA0" "5", nothing, 0}, {"", end, 0}, {blanks, end, 0},
        // clang-format on
    };
    for (const auto& [text, result, value] : cases) {
        SCOPED_TRACE(text.substr(0, 20));
        double wide = 77;
        float narrow = 77;
        EXPECT_EQ(scan_real(text.c_str(), wide), result);
        EXPECT_EQ(scan_real(text.c_str(), narrow), result);
        EXPECT_EQ(wide, result == number ? value : 77);
        EXPECT_EQ(narrow, result == number ? static_cast<float>(value) : 77);
    }
    float narrow = 77;
    EXPECT_EQ(scan_real(nullptr, narrow), nothing);
    EXPECT_EQ(scan_real("1.00000005960464478", narrow),
              number);  // halfway but for the last digit: rounded once, from the text
    EXPECT_EQ(narrow, std::nextafter(1.0f, 2.0f));
}

TEST(Scan, WholeNumbers) {
    constexpr std::uint64_t all32 = UINT32_MAX, all64 = UINT64_MAX;
    const std::tuple<std::string, int, Scanned, std::uint64_t, std::uint64_t> cases[] = {
        // clang-format off
        {" +12.9", 10, number, 12, 12}, {"-1", 10, number, all32, all64}, {"0x10", 10, number, 0, 0},
        {"4294967295", 10, number, all32, all32}, {"4294967296", 10, number, all32, 4294967296},
        {"-4294967296", 10, number, all32, all64 - all32}, {"18446744073709551616", 10, number, all32, all64},
        {"-18446744073709551615", 10, number, all32, 1}, {nines, 10, number, all32, all64}, {zeros, 10, number, 0, 0},
        {"ff", 16, number, 255, 255}, {"0xFFg", 16, number, 255, 255}, {"0x", 16, number, 0, 0},
        {"-0x1", 16, number, all32, all64}, {"1122334455667788", 16, number, all32, 0x1122334455667788},
        {"--1", 10, nothing, 77, 77}, {".5", 10, nothing, 77, 77}, {"g", 16, nothing, 77, 77}, {"  ", 16, end, 77, 77},
        // clang-format on
    };
    for (const auto& [text, base, result, narrow, wide] : cases) {
        SCOPED_TRACE(text.substr(0, 20));
        std::uint32_t in_32 = 77;
        std::uint64_t in_64 = 77;
        EXPECT_EQ(scan_whole(text.c_str(), in_32, base), result);
        EXPECT_EQ(scan_whole(text.c_str(), in_64, base), result);
        EXPECT_EQ(std::pair(in_32 + std::uint64_t{0}, in_64), std::pair(narrow, wide));
    }
    for (const auto& [text, expected] :
         {std::pair{"-5", -5}, {"2147483648", INT32_MAX}, {"-99999999999999999999", INT32_MIN}, {"x", 77}}) {
        std::int32_t scanned = 77;
        EXPECT_EQ(scan_whole(text, scanned), expected == 77 ? nothing : number);
        EXPECT_EQ(scanned, expected) << text;
    }
}

}  // namespace
}  // namespace pgn_vistel::test
