#include "core/clock_text.h"

#include <chrono>
#include <string_view>

#include "core/numbers.h"

namespace pgn_vistel::core {

namespace {

constexpr std::uint32_t first_reserved_seconds = 0xFFFFFFFD;
constexpr std::uint16_t first_reserved_days = 0xFFFD;

char* write_text(char* at, std::string_view text) {
    return at + text.copy(at, text.size());
}

/// At least two digits.
char* write_two(char* at, std::uint32_t number) {
    return number < 100 ? write_pair(at, number) : write_unsigned(at, number);
}

char* write_year(char* at, int year) {
    return write_pair(write_pair(at, static_cast<std::uint32_t>(year / 100)),
                      static_cast<std::uint32_t>(year % 100));
}

}  // namespace

// Four-year cycles that begin with a leap year, counted from 1 January 1968 (731 days before 1970).
Date date_of(std::uint16_t days_since_1970) {
    constexpr int days_before_month[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    const int days = days_since_1970 + 731;
    const int cycle = days / 1461;
    const int in_cycle = days % 1461;
    const int year_of_cycle = in_cycle < 366 ? 0 : (in_cycle - 1) / 365;
    const bool leap = year_of_cycle == 0;
    const int in_year = leap ? in_cycle : (in_cycle - 1) % 365;
    const auto start_of = [&](int month) {
        return days_before_month[month - 1] + (leap && month >= 3 ? 1 : 0);
    };
    int month = 1;
    while (month < 12 && in_year >= start_of(month + 1)) ++month;
    return {1968 + cycle * 4 + year_of_cycle, month, in_year - start_of(month) + 1};
}

int put_date(char* out, std::uint16_t days, UnitId unit) {
    constexpr std::string_view names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (days >= first_reserved_days) {
        *out = '-';
        return 1;
    }
    const Date date = date_of(days);
    const std::string_view name = names[date.month - 1];
    const auto day = static_cast<std::uint32_t>(date.day);
    const auto month = static_cast<std::uint32_t>(date.month);
    char* at = out;
    const auto dash = [&at] { *at++ = '-'; };
    switch (unit) {
        // The names of the two all-figure layouts have no dashes; the texts do.
        case unit::date_mdy: at = write_two(at, month), dash(), at = write_two(at, day), dash(); break;
        case unit::date_dmy: at = write_two(at, day), dash(), at = write_two(at, month), dash(); break;
        case unit::date_mon_d_y: at = write_text(at, name), dash(), at = write_two(at, day), dash(); break;
        case unit::date_d_mon_y: at = write_two(at, day), dash(), at = write_text(at, name), dash(); break;
        case unit::date_ymd:
            at = write_year(at, date.year), dash();
            at = write_two(at, month), dash();
            return static_cast<int>(write_two(at, day) - out);
        case unit::date_md:
            at = write_two(at, month);
            *at++ = '/';
            return static_cast<int>(write_two(at, day) - out);
        default: return 0;
    }
    return static_cast<int>(write_year(at, date.year) - out);
}

int put_time_of_day(char* out, std::uint32_t seconds, UnitId unit) {
    if (seconds >= first_reserved_seconds) {
        *out = '-';
        return 1;
    }
    const std::uint32_t hours = seconds / 3600;
    const bool half_days = unit == unit::clock_12;
    const std::uint32_t shown = !half_days ? hours : hours == 0 ? 12 : (hours - 1) % 12 + 1;
    char* at = out;
    if (half_days && shown < 10) *at++ = ' ';
    at = half_days ? write_unsigned(at, shown) : write_two(at, shown);
    *at++ = ':';
    at = write_pair(at, seconds % 3600 / 60);
    *at++ = ':';
    at = write_pair(at, seconds % 60);
    if (half_days) at = write_text(at, hours >= 12 ? " PM" : " AM");
    return static_cast<int>(at - out);
}

char* write_clock(char* at, std::uint32_t seconds) {
    at = write_pair(at, seconds / 3600);
    *at++ = ':';
    at = write_pair(at, seconds / 60 % 60);
    *at++ = ':';
    return write_pair(at, seconds % 60);
}

char* write_iso_date(char* at, std::int64_t days_since_1970) {
    using namespace std::chrono;
    const year_month_day date{sys_days{days{days_since_1970}}};
    at = write_year(at, static_cast<int>(date.year()));
    *at++ = '-';
    at = write_pair(at, static_cast<unsigned>(date.month()));
    *at++ = '-';
    return write_pair(at, static_cast<unsigned>(date.day()));
}

char* write_iso_time(char* at, std::uint64_t parts, int decimals) {
    constexpr std::uint64_t day = 86'400;
    std::uint64_t second = 1;
    for (int i = 0; i < decimals; ++i) second *= 10;
    if (parts >= (day + 1) * second) return nullptr;
    const bool leaps = parts >= day * second;
    const auto seconds = static_cast<std::uint32_t>(leaps ? day - 1 : parts / second);
    at = write_clock(at, seconds);
    if (leaps) write_pair(at - 2, 60);
    if (decimals == 0) return at;
    *at++ = '.';
    std::uint64_t rest = parts % second;
    for (int i = decimals; i-- > 0; rest /= 10) at[i] = static_cast<char>('0' + rest % 10);
    return at + decimals;
}

}  // namespace pgn_vistel::core
