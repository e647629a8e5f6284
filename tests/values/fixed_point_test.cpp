#include <bit>
#include <charconv>
#include <cmath>

#include "support/testing.h"
#include "values/wide_format.h"

namespace pgn_vistel::test {
namespace {

// Numbers go through a quick way where 18 digits hold them and through the library's general one elsewhere:
// neither may be told from exact decimal rounding.
void compare(double value) {
    for (int precision = 0; precision <= 20; ++precision) {
        Conversion conversion;
        conversion.letter = L'f';
        conversion.precision = precision;
        wchar_t text[512];
        WideWriter out(text, 512);
        put_conversion(out, conversion, value);
        out.finish();
        char exact[512];
        const auto* const end =
            std::to_chars(exact, exact + 512, value, std::chars_format::fixed, precision).ptr;
        ASSERT_EQ(text, std::wstring(static_cast<const char*>(exact), end)) << value << " ." << precision;
    }
}

void compare_around(double value) {
    for (const double v : {std::nextafter(value, 0.0), value, std::nextafter(value, INFINITY)}) compare(v);
}

TEST(FixedPoint, PowersTheirNeighboursAndTies) {
    for (int e = -200; e <= 100; ++e) compare_around(std::ldexp(1.0, e));
    for (int e = -30; e <= 25; ++e)
        for (const double digit : {1.0, 5.0, 9.999999999999999}) compare_around(digit * std::pow(10.0, e));
    for (const double v : {0.0, -1.5, 999.5, 5e-324, 2.2250738585072014e-308}) compare(v);
    for (int i = 0; i < 4096; ++i)  // halfway between two texts for some precision
        for (int bits = 1; bits <= 8; ++bits) compare(std::ldexp(2 * i + 1, -bits));
}

TEST(FixedPoint, RandomValues) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 10000; ++i) {
        compare(std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 130) - 110));
        compare(std::bit_cast<float>(static_cast<std::uint32_t>(random()) & 0x5FFFFFFF));
    }
}

}  // namespace
}  // namespace pgn_vistel::test
