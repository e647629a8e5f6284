#include "core/numbers.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

/// What a function writes. It may write beyond the end of the number, but not beyond the size of the largest.
template <class Write>
std::string_view written(Write write) {
    static char area[most_number_size + 8];
    std::memset(area, '~', sizeof area);
    const char* const end = write(area);
    EXPECT_EQ(std::string_view(area + most_number_size, 8), "~~~~~~~~");
    return {area, static_cast<std::size_t>(end - area)};
}

char reference[512];
template <class... What>
std::string_view printf_form(const char* format, What... what) {
    return {reference, static_cast<std::size_t>(std::snprintf(reference, sizeof reference, format, what...))};
}

/// As many decimals as digits are left behind those before the point.
std::string_view significant(float value, int digits) {
    int decimals = digits;
    for (double limit = 1; decimals > 0 && std::fabs(value) >= limit; limit *= 10) --decimals;
    if (std::isinf(value)) return printf_form("%*f", digits, static_cast<double>(value));
    return printf_form("%.*f", decimals, static_cast<double>(value));
}

template <class Float>
std::string_view shortest(Float value) {
    return {reference,
            static_cast<std::size_t>(std::to_chars(reference, reference + 64, value).ptr - reference)};
}

template <class Write>
void expect(std::string_view expected, Write write) {
    ASSERT_EQ(written(write), expected);
}

void compare(float value) {
    expect(significant(value, 5), [=](char* at) { return write_significant<5>(at, value); });
    expect(significant(value, 8), [=](char* at) { return write_significant<8>(at, value); });
    if (std::isfinite(value)) expect(shortest(value), [=](char* at) { return write_shortest(at, value); });
}

void compare(double value) {
    expect(shortest(value), [=](char* at) { return write_shortest(at, value); });
}

void compare_fixed(double value) {
    for (const int decimals : {0, 3, 6, 18})
        if (std::fabs(value) < 1e18)
            expect(printf_form("%.*f", decimals, value),
                   [=](char* at) { return write_fixed(at, value, decimals); });
}

/// A value and those next to it, with both signs.
template <class Float>
void compare_around(Float value) {
    constexpr Float infinity = std::numeric_limits<Float>::infinity();
    for (const Float v : {std::nextafter(value, -infinity), value, std::nextafter(value, infinity)})
        for (const Float either : {v, -v})
            if (std::isfinite(either)) compare(either), compare_fixed(either);
}

TEST(Numbers, PowersTheirNeighboursAndTies) {
    for (int e = -1074; e <= 1023; ++e) {
        compare_around(std::ldexp(1.0, e));
        if (e >= -149 && e <= 127) compare_around(std::ldexp(1.0f, e));
    }
    for (int e = -323; e <= 308; ++e)
        for (const char* const digits : {"1", "5", "9.9999999", "9.999999999999999"}) {
            const double power = std::strtod((digits + ("e" + std::to_string(e))).c_str(), nullptr);
            compare_around(power);
            if (e >= -45 && e <= 38 && power < 3.4e38) compare_around(static_cast<float>(power));
        }
    for (int i = 0; i < trials(8000); ++i)  // halfway between two texts for some precision
        for (int bits = 0; bits <= 8; ++bits)
            compare_around(std::ldexp(static_cast<float>(2 * i + 1), -bits));
    compare_around(0.0f);
    compare_around(0.0);
    compare_around(std::numeric_limits<float>::max());
    compare_around(std::numeric_limits<double>::max());
    for (const float infinite : {INFINITY, -INFINITY}) compare(infinite);
}

TEST(Numbers, RandomValues) {
    std::mt19937_64 random(20240229);
    for (std::uint32_t exponent = 0; exponent < 255; ++exponent)
        for (int i = 0; i < trials(2000); ++i)
            compare(std::bit_cast<float>(static_cast<std::uint32_t>(random() & 0x807FFFFF) | exponent << 23));
    for (std::uint64_t exponent = 0; exponent < 2047; ++exponent)
        for (int i = 0; i < trials(300); ++i)
            compare(std::bit_cast<double>((random() & 0x800FFFFFFFFFFFFF) | exponent << 52));
    for (int i = 0; i < trials(500000); ++i) {  // as fields have them: few digits, or a number times a factor
        const auto number = static_cast<double>(random() >> (63 - random() % 33));
        const double power = std::pow(10.0, static_cast<double>(random() % 10));
        compare(static_cast<float>(number / power));
        compare(number / power);
        compare_fixed(static_cast<double>(static_cast<float>(number)) * 1e-4);
    }
}

TEST(Numbers, DecimalsAreWrittenAsTheNumberNearestToThem) {
    const auto compare_decimal = [](std::int64_t digits, int decimals, auto nearest) {
        const std::string_view expected = shortest(nearest);
        if (expected.find('e') == std::string_view::npos) {
            expect(expected, [=](char* at) { return write_shortest(at, Decimal{digits, decimals}); });
        } else {
            char area[most_number_size];
            ASSERT_EQ(write_shortest(area, Decimal{digits, decimals}), nullptr) << expected;
        }
    };
    std::mt19937_64 random(15);
    double power = 1;
    for (int decimals = 0; decimals <= 9; ++decimals, power *= 10) {
        for (int i = 0; i < trials(100000); ++i) {
            const auto few = static_cast<std::int64_t>(random() % 1'999'999) - 999'999;
            compare_decimal(few, decimals, static_cast<float>(static_cast<double>(few) / power));
            const auto digits = static_cast<std::int64_t>(random() % 1'000'000'000'000'000 >> random() % 50);
            compare_decimal(digits, decimals, static_cast<double>(digits) / power);
        }
    }
}

TEST(Numbers, Integers) {
    std::mt19937_64 random(7);
    std::vector<std::uint64_t> numbers = {0x8000000000000000};
    for (int i = 0; i < trials(200000); ++i) numbers.push_back(random() >> random() % 64);
    for (std::uint64_t power = 1, i = 0; i < 20; ++i, power *= 10)
        numbers.insert(numbers.end(), {power - 1, power, power + 1});
    for (const std::uint64_t n : numbers) {
        const auto with_sign = static_cast<std::int64_t>(n % 2 == 0 ? n : 0 - n);
        const auto low = static_cast<std::uint32_t>(n);
        expect(shortest(n), [=](char* at) { return write_unsigned(at, n); });
        expect(shortest(with_sign), [=](char* at) { return write_signed(at, with_sign); });
        for (const int least : {1, 8, 16})
            expect(printf_form("%0*X", least, low), [=](char* at) { return write_hex(at, low, least); });
    }
}

}  // namespace
}  // namespace pgn_vistel::test
