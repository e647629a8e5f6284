#pragma once

#include <cstdint>

#include "pgn_vistel/core/ids.h"

namespace pgn_vistel::core {

constexpr int clock_text_size = 40;  ///< characters that either of the two writes at the most

/// Year, month 1 .. 12 and day of a count of days since 1 January 1970. Every fourth year counts as a leap
/// year, so dates from 1 March 2100 on are one day early.
struct Date {
    int year, month, day;
};
Date date_of(std::uint16_t days);

/// A date in one of the date layouts, not terminated. "-" for the reserved codes. Returns the characters
/// written; 0 for a unit that is no layout.
///
///     put_date(area, 19000, unit::date_ymd) -> "2022-01-08"
int put_date(char* out, std::uint16_t days, UnitId unit);

/// Seconds since midnight as a clock text, not terminated: `unit::clock_12` with AM or PM, every other unit
/// in 24 hours (which are not reduced modulo 24). "-" for the three reserved codes.
///
///     put_time_of_day(area, 45296, unit::clock_12) -> "12:34:56 PM"
int put_time_of_day(char* out, std::uint32_t seconds, UnitId unit);

/// "08:00:00" of a count of seconds below 100 hours, not terminated. Returns the end.
char* write_clock(char* at, std::uint32_t seconds);

/// @{ For programs, by ISO 8601 and by the calendar, not terminated: the date of a count of days since 1970,
/// "2026-09-10"; a time of day of a count of seconds' parts, "08:00:00.1234" with so many decimals (at most
/// 9). Return the end. A time that no day has (from 24:00:01 on) is null, the second behind the last one
/// 23:59:60.
///
///     write_iso_time(area, 288'001'234, 4) -> "08:00:00.1234"
char* write_iso_date(char* at, std::int64_t days);
char* write_iso_time(char* at, std::uint64_t parts, int decimals);
/// @}

}  // namespace pgn_vistel::core
