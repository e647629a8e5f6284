#pragma once

#include <cstdint>
#include <string_view>

#include "can/record.h"
#include "text/result.h"

namespace vistel {

/// Reads the timestamps of recordings:
///   2016-02-28T19:57:02.364Z   T, `-`, Z or a blank between date and time
///   2016-02-28-21:57:02+02:00  offsets also as +0200 and +02; without one the time is UTC
///   19:57:02.364               time of day alone
/// with up to nine decimals. A date outside the years 1970 to 2261 (nanoseconds in 64 bits end in 2262) is
/// one of a clock that was never set or has failed, and no time: its time of day cannot be compared with the
/// dates around it.
class TimestampParser {
  public:
    /// Of a text that is something else the result says so, as in "there is no such date".
    Result<RecordTime, const char*> parse(std::string_view text);

    /// The same for the usual shape, `2016-02-28T19:57:02.364` with three to nine decimals and with or
    /// without a Z behind them, and for the minute that parse() read last. `p` has `usual_room` characters.
    /// Where what it read ends, or null for anything else.
    static constexpr std::size_t usual_room = sizeof "2016-02-28T19:57:02.364123456Z" - 1 + 1;
    const char* read_usual(const char* p, RecordTime& time) const;

  private:
    Result<Done, const char*> parse_date(std::string_view date);

    // Neighbouring records share their date, so the calendar is consulted once a day, and nearly always their
    // minute.
    static constexpr std::size_t date_size = 10, minute_size = sizeof "2016-02-28T19:57:" - 1;
    char date_[date_size] = {};
    bool is_dated_ = false;              // whether date_ is within the years that can be told
    std::int64_t midnight_ = 0;          // of date_, in nanoseconds
    char minute_[minute_size] = {'\n'};  // which no time stamp begins with
    std::int64_t minute_start_ = 0;
};

/// Seconds of such a clock with up to nine decimals: `1502979132.106111`.
[[nodiscard]] bool parse_seconds(std::string_view text, RecordTime& time);

/// A number with up to nine decimals of a unit of so many nanoseconds, a second at most: `12.5` milliseconds.
/// False above ten years.
[[nodiscard]] bool parse_duration(std::string_view text, std::int64_t unit, std::int64_t& nanoseconds);

/// `start` and a time that runs since then. Where no start is known, neither is it of the sum.
RecordTime later(const RecordTime& start, std::int64_t nanoseconds);

/// A day and the nanoseconds since its midnight; false where there is no such day. As for dates that are
/// text, one of years that cannot be told is no time.
[[nodiscard]] bool make_time(std::uint32_t year, std::uint32_t month, std::uint32_t day,
                             std::int64_t since_midnight, RecordTime& time);

/// The same for the usual shape and the parenthesis behind it, the 18 characters `1502979132.106111)`. False
/// for anything else.
[[nodiscard]] bool read_usual_seconds(const char* p, RecordTime& time);

}  // namespace vistel
