#include "values/calendar_text.h"

#include "values/text_copy.h"
#include "values/wide_format.h"

namespace pgn_vistel {

namespace {

constexpr const wchar_t* own_month_names[] = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                                              L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};

struct Date {
    int year;
    int month;  // 1 .. 12
    int day;
};

// Four-year cycles that begin with a leap year, counted from 1 January 1968 (731 days before 1970).
Date date_of(int days_since_1970) {
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

}  // namespace

int print_time_of_day(wchar_t* buf, int size, std::uint32_t seconds, UnitId unit,
                      bool hours_and_minutes_only) {
    if (seconds >= 0xFFFFFFFD) return copy_wide(buf, L"-", size);
    const auto hours = static_cast<std::int64_t>(seconds / 3600);
    const auto minutes = static_cast<std::int64_t>(seconds % 3600 / 60);
    const auto rest = static_cast<std::int64_t>(seconds % 60);
    WideWriter out(buf, size);
    if (unit == unit::clock_12) {
        static constexpr CompiledFormat full(L"%#2ld:%02ld:%02ld %ls");
        static constexpr CompiledFormat brief(L"%#2ld:%02ld %ls");
        const wchar_t* const half = hours >= 12 ? L"PM" : L"AM";
        const std::int64_t clock_hour = hours == 0 ? 12 : (hours - 1) % 12 + 1;
        if (hours_and_minutes_only)
            brief(out, clock_hour, minutes, half);
        else
            full(out, clock_hour, minutes, rest, half);
    } else {
        static constexpr CompiledFormat full(L"%02ld:%02ld:%02ld");
        static constexpr CompiledFormat brief(L"%02ld:%02ld");
        if (hours_and_minutes_only)
            brief(out, hours, minutes);
        else
            full(out, hours, minutes, rest);
    }
    return out.finish();
}

int print_date(wchar_t* buf, int size, std::uint16_t days, UnitId unit, const wchar_t* const* month_names) {
    if (days >= 0xFFFD) return copy_wide(buf, L"-", size);
    const Date date = date_of(days);
    const wchar_t* const name = (month_names != nullptr ? month_names : own_month_names)[date.month - 1];
    WideWriter out(buf, size);
    static constexpr CompiledFormat two_two_four(L"%02ld-%02ld-%04ld");
    switch (unit) {
        // The names of the two all-figure layouts have no dashes; the texts do.
        case unit::date_mdy: two_two_four(out, date.month, date.day, date.year); break;
        case unit::date_dmy: two_two_four(out, date.day, date.month, date.year); break;
        case unit::date_mon_d_y: {
            static constexpr CompiledFormat format(L"%ls-%02ld-%04ld");
            format(out, name, date.day, date.year);
            break;
        }
        case unit::date_d_mon_y: {
            static constexpr CompiledFormat format(L"%02ld-%ls-%04ld");
            format(out, date.day, name, date.year);
            break;
        }
        case unit::date_ymd: {
            static constexpr CompiledFormat format(L"%04ld-%02ld-%02ld");
            format(out, date.year, date.month, date.day);
            break;
        }
        case unit::date_md: {
            static constexpr CompiledFormat format(L"%02ld/%02ld");
            format(out, date.month, date.day);
            break;
        }
        default: return -1;
    }
    return out.finish();
}

}  // namespace pgn_vistel
