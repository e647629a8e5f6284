#include "encode/calendar_entry.h"

#include <algorithm>
#include <cmath>

#include "encode/number_entry.h"
#include "output/unit_names.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

struct Clock {
    double parts[3];  // as typed
    int count;
    std::string_view rest;  // AM, PM, a unit
};

std::optional<Clock> take_clock(std::string_view text) {
    Clock clock{{0, 0, 0}, 0, {}};
    while (clock.count < 3) {
        const std::optional<double> part = take_number(text);
        if (!part || !std::isfinite(*part)) return {};
        clock.parts[clock.count++] = *part;
        if (!text.starts_with(':')) break;
        text.remove_prefix(1);
    }
    clock.rest = trimmed(text);
    if (clock.count < 2) return {};
    return clock;
}

/// Times of day are sent in steps of which single precision gives many one value: the step that was typed.
std::optional<std::uint64_t> step_of_day(const RawScale& scale, double seconds) {
    constexpr double steps = 1e4, most = 0xFFFFFFFC, rounding = 0x1p-22;
    if (!(seconds >= 0 && seconds * steps <= most)) return {};
    const auto raw = static_cast<std::uint64_t>(std::llround(seconds * steps));
    const std::optional<double> value = scale.value_of(raw);
    const bool is_it = value && std::fabs(*value - seconds) <= seconds * rounding;
    return is_it ? std::optional(raw) : std::nullopt;
}

Status enter_in(FieldCell& cell, std::string_view text, double value, UnitId unit) {
    const RawScale scale = scale_of(cell, unit);
    if (scale.empty()) return failure("has no values that could be encoded");
    const std::uint64_t raw = step_of_day(scale, value).value_or(scale.nearest(value));
    cell.put(raw);
    if (scale.meets(raw, value)) return done;
    return failure(in_quotes(text), " is out of range: ", range_text(scale, unit));
}

bool is_counted_as_clock(FieldCell& cell, UnitId unit) {
    cell.put(0);
    return cell.read(unit).value.type == ValueType::seconds;
}

Failure not_of_day(std::string_view text) {
    return failure(in_quotes(text), " is not a time of day, as in 13:05:30 or 1:05:30 PM");
}

constexpr std::uint64_t days = 0xFFFD;  // codes above are reserved

/// One date in the unit's layout, without its name.
std::string date_in(FieldCell& cell, std::uint64_t raw, UnitId unit) {
    cell.put(raw);
    return cell.read(unit).value.type == ValueType::text ? cell.shown(false, unit) : "";
}

/// Whether a day is shown so in the unit's layout. Only those of the year that the text has are tried; a
/// layout without one means the first years.
bool enter_day(FieldCell& cell, std::string_view text, UnitId unit) {
    constexpr std::size_t year_size = 4;
    constexpr std::uint64_t days_of_years = 4 * 365 + 1;  // with a leap year
    if (text.size() <= year_size) return false;
    std::string_view year = text.substr(unit == unit::date_ymd ? 0 : text.size() - year_size, year_size);
    if (unit == unit::date_md) year = "1970";
    if (!std::ranges::all_of(year, is_digit)) return false;
    std::uint64_t first = 0;
    for (std::uint64_t end = days; first < end;) {
        const std::uint64_t middle = (first + end) / 2;
        if (date_in(cell, middle, unit::date_ymd) < year)
            first = middle + 1;
        else
            end = middle;
    }
    for (std::uint64_t raw = first; raw < std::min(first + days_of_years, days); ++raw)
        if (date_in(cell, raw, unit) == text) return true;
    return false;
}

}  // namespace

Outcome enter_clock(FieldCell& cell, std::string_view text) {
    const FieldReading reading = cell.read();
    const bool of_day = reading.quantity == quantity::time_of_day;
    // Seconds that a format shows as a clock, whatever they are said to be.
    const bool counted = !of_day && is_counted_as_clock(cell, reading.unit);
    if (!of_day && !counted && reading.quantity != quantity::duration) return {};
    const std::optional<Clock> clock = take_clock(text);
    if (!clock) {
        std::string_view rest = text;
        if (of_day && (!take_number(rest) || trimmed(rest).empty())) return not_of_day(text);
        return {};
    }
    const auto& [a, b, c] = clock->parts;
    if (!of_day) {
        if (counted && clock->count == 3 && clock->rest == unit_text(reading.unit))
            return enter_in(cell, text, a * 3600 + b * 60 + c, reading.unit);
        const std::string minutes = simplified(unit_text(unit::minutes));
        if (!clock->rest.empty() && simplified(clock->rest) != minutes)
            return failure("has no unit ", in_quotes(clock->rest), " behind a time with colons");
        if (clock->count == 3) {
            if (b < 0 || b >= 60 || c < 0 || c >= 60) return failure(in_quotes(text), " is not h:mm:ss");
            return enter_in(cell, text, a * 3600 + std::copysign(b * 60 + c, a), unit::seconds);
        }
        if (b >= 0 && b < 60) return enter_in(cell, text, a * 60 + std::copysign(b, a), unit::minutes);
        // Decoding takes the remainder from an unsigned product, which makes that of negative ones large.
        const double whole = std::clamp(a, -2147483648.0, 2147483647.0);
        const auto product = static_cast<std::uint32_t>(static_cast<std::int64_t>(whole)) * 60u;
        return enter_in(cell, text, b + static_cast<double>(product), unit::minutes);
    }
    const std::string half = simplified(clock->rest);
    if (!half.empty() && half != "am" && half != "pm")
        return failure(in_quotes(text), " has ", in_quotes(clock->rest), " where AM or PM could stand");
    if (b < 0 || b >= 60 || c < 0 || c >= 60 || a < 0 || (!half.empty() && (a < 1 || a >= 13)))
        return not_of_day(text);
    double hours = a;
    if (!half.empty()) hours = std::fmod(a, 12) + (half == "pm" ? 12 : 0);
    return enter_in(cell, text, hours * 3600 + b * 60 + c, unit::seconds);
}

Outcome enter_date(FieldCell& cell, std::string_view text) {
    const FieldReading reading = cell.read();
    if (reading.quantity != quantity::date) return {};
    std::vector<UnitId> layouts = {reading.unit};
    for (const UnitId u :
         {unit::date_mdy, unit::date_mon_d_y, unit::date_dmy, unit::date_d_mon_y, unit::date_ymd})
        if (u != reading.unit) layouts.push_back(u);
    for (const UnitId u : layouts) {
        std::string_view typed = text;
        const std::string name = unit_text(u);
        if (!name.empty() && typed.ends_with(name))
            typed = trimmed(typed.substr(0, typed.size() - name.size()));
        if (enter_day(cell, typed, u)) return done;
    }
    return failure(in_quotes(text), " is not a date from ", date_in(cell, 0, reading.unit), " to ",
                   date_in(cell, days - 1, reading.unit), ", as in ",
                   date_in(cell, example_day, reading.unit), " ", unit_text(reading.unit), " or ",
                   date_in(cell, example_day, unit::date_ymd));
}

}  // namespace vistel
