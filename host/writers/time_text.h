#pragma once

#include <string>

#include "can/record.h"

namespace vistel {

/// @{ Appends the time of a record; what is missing in it is 0.

/// Time of day in milliseconds with this between hours, minutes and seconds: "09:30:00.250". Of a time since
/// some start the hours since then, which begin again after a day.
void append_clock(std::string& out, const RecordTime& time, std::string_view between);

/// With date where it is known, and with as many decimals as it takes: 3, 6 or 9.
/// "2026-05-04T09:30:00.250Z", "09:30:00.250".
void append_timestamp(std::string& out, const RecordTime& time);

/// Seconds with 6 decimals, or 9 where it takes them: "1777887000.250000".
void append_seconds(std::string& out, const RecordTime& time);
/// @}

}  // namespace vistel
