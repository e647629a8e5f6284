#include "core/clock_text.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

std::string clock(std::uint32_t seconds, UnitId u) {
    char area[clock_text_size];
    return {area, static_cast<std::size_t>(put_time_of_day(area, seconds, u))};
}

std::string date(int days, UnitId u) {
    char area[clock_text_size];
    return {area, static_cast<std::size_t>(put_date(area, static_cast<std::uint16_t>(days), u))};
}

TEST(ClockText, TimeOfDay) {
    const std::tuple<std::uint32_t, const char*, const char*> cases[] = {
        // clang-format off
        {0, "00:00:00", "12:00:00 AM"}, {3725, "01:02:05", " 1:02:05 AM"}, {43199, "11:59:59", "11:59:59 AM"},
        {43200, "12:00:00", "12:00:00 PM"}, {46800, "13:00:00", " 1:00:00 PM"}, {90000, "25:00:00", " 1:00:00 PM"},
        {0xFFFFFFFC, "1193046:28:12", " 6:28:12 PM"}, {0xFFFFFFFD, "-", "-"},
        // clang-format on
    };
    for (const auto& [seconds, h24, h12] : cases) {
        EXPECT_EQ(clock(seconds, unit::clock_24), h24);
        EXPECT_EQ(clock(seconds, unit::m), h24);
        EXPECT_EQ(clock(seconds, unit::clock_12), h12);
    }
}

TEST(ClockText, DateLayouts) {
    // clang-format off
    const std::pair<UnitId, const char*> layouts[] = {
        {unit::date_mdy, "01-08-2022"}, {unit::date_mon_d_y, "Jan-08-2022"}, {unit::date_dmy, "08-01-2022"},
        {unit::date_d_mon_y, "08-Jan-2022"}, {unit::date_md, "01/08"}, {unit::days, ""}, {-1, ""},
    };
    // clang-format on
    for (const auto& [u, expected] : layouts) EXPECT_EQ(date(19000, u), expected);
    for (const int reserved : {0xFFFD, 0xFFFF}) EXPECT_EQ(date(reserved, unit::date_ymd), "-");
}

// Counted day by day, independently of cycles: every fourth year is a leap year.
TEST(ClockText, EveryDay) {
    int year = 1970, month = 1, day = 1;
    for (int days = 0; days <= 65532; ++days) {
        char expected[32];
        std::snprintf(expected, 32, "%04d-%02d-%02d", year, month, day);
        ASSERT_EQ(date(days, unit::date_ymd), expected) << days;
        const int length = month == 2 ? (year % 4 == 0 ? 29 : 28) : 30 + (month + month / 8) % 2;
        if (++day > length) ++month, day = 1;
        if (month > 12) ++year, month = 1;
    }
    EXPECT_EQ(date(47541, unit::date_ymd), "2100-02-29") << "a day that the calendar does not have";
}

TEST(ClockText, ForPrograms) {
    const auto iso_time = [](std::uint64_t parts, int decimals) {
        char area[clock_text_size];
        char* const end = write_iso_time(area, parts, decimals);
        return end == nullptr ? "none" : std::string(area, end);
    };
    const struct {
        std::uint64_t parts;
        int decimals;
        const char* expected;
        // clang-format off
    } cases[] = {
        {0, 4, "00:00:00.0000"}, {288'001'234, 4, "08:00:00.1234"}, {86399, 0, "23:59:59"},
        {863'999'999, 4, "23:59:59.9999"}, {864'000'500, 4, "23:59:60.0500"}, {864'010'000, 4, "none"},
        {~std::uint64_t{0}, 9, "none"},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(iso_time(c.parts, c.decimals), c.expected);
    for (const auto& [days, expected] : {std::pair{0, "1970-01-01"},
                                         {11016, "2000-02-29"},
                                         {20706, "2026-09-10"},
                                         {47540, "2100-02-28"},
                                         {47541, "2100-03-01"},
                                         {65532, "2149-06-03"}}) {
        char area[clock_text_size];
        EXPECT_EQ(std::string(area, write_iso_date(area, days)), expected);
    }
}

}  // namespace
}  // namespace pgn_vistel::test
