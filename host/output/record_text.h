#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vistel {

/// @{ Appends a text as a value of JSON, in quotation marks, or of CSV, in them where it must be, as the
/// core's renderers do: control characters are escaped, or in CSV U+FFFD, and no text begins like a formula.
void append_json(std::string& out, std::string_view text);
void append_csv(std::string& out, std::string_view text);
/// @}

/// @{ A number with so many decimals (0 .. 9), and with at most so many: without zeros at its end.
std::string fixed_text(double number, int decimals);
std::string decimal_text(double number, int decimals);
/// @}

/// A time since 1970 by ISO 8601: "2026-09-10T08:00:00.250000Z".
std::string utc_text(std::int64_t nanoseconds);

}  // namespace vistel
