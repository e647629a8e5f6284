#pragma once

#include <cstdint>
#include <string_view>

#include "can/record.h"

namespace vistel {

/// Reads the timestamps of recordings:
///   2016-02-28T19:57:02.364Z   T, `-`, Z or a blank between date and time
///   2016-02-28-21:57:02+02:00  offsets also as +0200 and +02; without one the time is UTC
///   19:57:02.364               time of day alone
/// with up to nine decimals, for the years 1970 to 2261 (nanoseconds in 64 bits end in 2262).
class TimestampParser {
  public:
    /// False when `text` is something else; `why` then tells what, as in "month 13 is above 12".
    bool parse(std::string_view text, RecordTime& time, const char*& why);

  private:
    bool parse_date(std::string_view date, const char*& why);

    // Neighbouring records share their date, so the calendar is consulted once a day.
    static constexpr std::size_t date_size = 10;
    char date_[date_size] = {};
    std::int64_t midnight_ = 0;  // of date_, in nanoseconds
};

/// Seconds with up to nine decimals: `1502979132.106111`. From 1973 on taken as seconds since 1970, below as
/// seconds since an unknown start.
bool parse_seconds(std::string_view text, RecordTime& time);

}  // namespace vistel
