#include "values/calendar_text.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

std::wstring clock(std::uint32_t seconds, UnitId u, bool brief = false) {
    return printed([&](wchar_t* b, int size) { return print_time_of_day(b, size, seconds, u, brief); });
}

TEST(CalendarText, TimeOfDay) {
    const struct {
        std::uint32_t seconds;
        const wchar_t *h24, *h12;
        // clang-format off
    } cases[] = {
        {0, L"00:00:00", L"12:00:00 AM"}, {3725, L"01:02:05", L" 1:02:05 AM"},
        {43199, L"11:59:59", L"11:59:59 AM"}, {43200, L"12:00:00", L"12:00:00 PM"},
        {45296, L"12:34:56", L"12:34:56 PM"}, {46800, L"13:00:00", L" 1:00:00 PM"},
        {90000, L"25:00:00", L" 1:00:00 PM"}, {0xFFFFFFFC, L"1193046:28:12", L" 6:28:12 PM"},
        {0xFFFFFFFD, L"-", L"-"},
    };
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(clock(c.seconds, unit::clock_24), c.h24);
        EXPECT_EQ(clock(c.seconds, unit::m), c.h24);
        EXPECT_EQ(clock(c.seconds, unit::clock_12), c.h12);
    }
    EXPECT_EQ(clock(3725, unit::clock_24, true), L"01:02");
    EXPECT_EQ(clock(46800, unit::clock_12, true), L" 1:00 PM");
}

std::wstring date(int days, UnitId u, const wchar_t* const* months = nullptr) {
    return printed(
        [&](wchar_t* b, int n) { return print_date(b, n, static_cast<std::uint16_t>(days), u, months); });
}

TEST(CalendarText, DateLayouts) {
    EXPECT_EQ(date(19000, unit::date_mdy), L"01-08-2022");
    EXPECT_EQ(date(19000, unit::date_mon_d_y), L"Jan-08-2022");
    EXPECT_EQ(date(19000, unit::date_dmy), L"08-01-2022");
    EXPECT_EQ(date(19000, unit::date_d_mon_y), L"08-Jan-2022");
    EXPECT_EQ(date(0, unit::date_md), L"01/01");
    EXPECT_EQ(date(0xFFFD, unit::date_ymd), L"-");
    const wchar_t* months[12] = {L"I",   L"II",   L"III", L"IV", L"V",  L"VI",
                                 L"VII", L"VIII", L"IX",  L"X",  L"XI", L"XII"};
    EXPECT_EQ(date(19357, unit::date_d_mon_y, months), L"31-XII-2022");
    wchar_t text[4] = L"abc";
    for (const UnitId u : {int{unit::days}, int{unit::m}, -1, 140})
        EXPECT_EQ(print_date(text, 4, 1, u, nullptr), -1);
    EXPECT_STREQ(text, L"abc");
}

// Counted day by day, independently of cycles: every fourth year is a leap year.
TEST(CalendarText, EveryDay) {
    int year = 1970, month = 1, day = 1;
    for (int days = 0; days <= 65532; ++days) {
        char expected[32];
        std::snprintf(expected, 32, "%04d-%02d-%02d", year, month, day);
        ASSERT_EQ(date(days, unit::date_ymd), std::wstring(expected, expected + 10)) << days;
        const int length = month == 2 ? (year % 4 == 0 ? 29 : 28) : 30 + (month + month / 8) % 2;
        if (++day > length) ++month, day = 1;
        if (month > 12) ++year, month = 1;
    }
    EXPECT_EQ(date(47541, unit::date_ymd), L"2100-02-29") << "a day that the calendar does not have";
    EXPECT_EQ(date(65532, unit::date_ymd), L"2149-06-02") << "one day early";
}

}  // namespace
}  // namespace pgn_vistel::test
