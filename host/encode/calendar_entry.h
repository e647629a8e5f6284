#pragma once

#include "encode/value_entry.h"

namespace vistel {

/// 2026-09-10 as sent, to show what dates look like.
constexpr std::uint64_t example_day = 20706;

/// Enters times of day ("8:00", "08:00:00.25", "8:00:00 PM") and durations ("1:30.5 Min" as decoding shows
/// hours and minutes, "1:30:00").
Outcome enter_clock(FieldCell& cell, std::string_view text);

/// Enters a date in any layout of dates; without the name of the layout the selected one comes first.
Outcome enter_date(FieldCell& cell, std::string_view text);

}  // namespace vistel
