#pragma once

#include <cstdint>

#include "pgn_vistel/units.h"

namespace pgn_vistel {

/// Seconds since midnight as a clock text: `unit::clock_12` with AM or PM, every other unit in 24 hours
/// (which are not reduced modulo 24). "-" for the three reserved codes. Returns the characters written.
int print_time_of_day(wchar_t* buf, int size, std::uint32_t seconds, UnitId unit,
                      bool hours_and_minutes_only);

/// Days since 1 January 1970 in one of the date layouts, or -1 for another unit. "-" for the reserved codes.
/// `month_names`: 12 texts, or null for the library's own. Every fourth year counts as a leap year, so dates
/// from 1 March 2100 on are one day early.
int print_date(wchar_t* buf, int size, std::uint16_t days, UnitId unit, const wchar_t* const* month_names);

}  // namespace pgn_vistel
