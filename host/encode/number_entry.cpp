#include "encode/number_entry.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "output/unit_names.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

constexpr double most_exact = 0x1p53;  // whole numbers below are doubles of their own

/// An integer, with its sign in all bits.
std::optional<std::uint64_t> integer_in(const FieldCell& cell, UnitId unit) {
    using Integer = std::optional<std::uint64_t>;
    const Value v = cell.read(unit).value;
    if (!cell.is_value(v)) return {};
    return visit_number(v, Integer(), [](auto number) {
        return std::is_integral_v<decltype(number)> ? Integer(static_cast<std::uint64_t>(number)) : Integer();
    });
}

std::optional<double> number_in(const FieldCell& cell, UnitId unit) {
    using Number = std::optional<double>;
    const Value v = cell.read(unit).value;
    if (!cell.is_value(v)) return {};
    return visit_number(v, Number(), [](auto number) { return Number(static_cast<double>(number)); });
}

bool has_values(FieldCell& cell, UnitId unit) {
    for (const std::uint64_t raw : {0u, 1u}) {
        cell.put(raw);
        if (cell.is_value(cell.read(unit).value)) return true;
    }
    return false;
}

/// Formats that do not look at the unit would take any: nobody could type a wrong one.
bool looks_at_unit(FieldCell& cell) {
    int served = 0;
    for (UnitId u = 0; u < unit::count; ++u) served += has_values(cell, u);
    return served < unit::count / 2;
}

std::string number_text(double value) {
    char area[64];
    if (value == std::floor(value) && std::fabs(value) < most_exact)
        return std::to_string(static_cast<std::int64_t>(value));
    const auto single = static_cast<float>(value);
    const double magnitude = std::fabs(value);
    const bool plain = magnitude < 1e15 && (magnitude == 0 || magnitude > 1e-4);
    constexpr int digits = 9;
    const auto end = static_cast<double>(single) == value
                         ? std::to_chars(area, area + sizeof area, single,
                                         plain ? std::chars_format::fixed : std::chars_format::scientific)
                         : std::to_chars(area, area + sizeof area, value, std::chars_format::general, digits);
    return {area, end.ptr};
}

/// The number as an integer where it is typed as one. Doubles have 53 bits only.
std::optional<std::uint64_t> integer_of(std::string_view digits) {
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits.remove_prefix(1);
    const int base = digits.starts_with("0x") || digits.starts_with("0X") ? 16 : 10;
    if (base == 16) digits.remove_prefix(2);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    if (error != std::errc{} || end != digits.data() + digits.size()) return {};
    return negative ? 0 - value : value;
}

/// The digits of a number without point, exponent and zeros at the end, as an integer; 0 where there are too
/// many.
std::uint64_t significant(std::string_view typed) {
    std::string digits(typed.substr(0, typed.find_first_of("eE")));
    std::erase_if(digits, [](char c) { return !is_digit(c); });
    std::uint64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    while (value != 0 && value % 10 == 0) value /= 10;
    return value;
}

/// Integers that decoding shows as they are sent, in all their bits.
bool enter_integer(FieldCell& cell, std::uint64_t number, UnitId unit) {
    cell.put(number);
    return integer_in(cell, unit) == number;
}

/// Whether `raw`, the nearest to the number, stands for it but for rounding. `whole` numbers are typed digit
/// by digit, and integers that can be had so have been tried.
bool is_meant(FieldCell& cell, const RawScale& scale, std::uint64_t raw, double number, bool whole,
              UnitId unit) {
    cell.put(raw);
    if (!integer_in(cell, unit)) return scale.meets(raw, number);
    return (!whole || std::fabs(number) < most_exact) && scale.meets(raw, number, 0);
}

/// What decoding shows is rounded, so a text as it is shown may be nearer to a number that shows another one:
/// doubles go through single precision, "1000.0" and "999.99" have different decimals, "-0.00000" is any
/// small negative value, and the ends of the range may be rounded up.
bool enter_as_rounded(FieldCell& cell, std::string_view text, double number, std::uint64_t nearest,
                      UnitId unit) {
    const RawScale exact = scale_of(cell, unit);
    const auto rounded = [&exact](std::uint64_t raw) -> std::optional<double> {
        const std::optional<double> value = exact.value_of(raw);
        if (!value) return {};
        return static_cast<double>(static_cast<float>(*value));
    };
    const RawScale shown(rounded, cell.bits());
    const double next_single = std::fabs(number) * 0x1p-23;
    const std::uint64_t sign = std::uint64_t{1} << (cell.bits() - 1);
    for (const std::uint64_t raw :
         {shown.nearest(number), nearest - 1, nearest + 1, shown.nearest(number - next_single),
          shown.nearest(number + next_single), sign, sign | (sign - 1)}) {
        cell.put(raw);
        if (shows(cell, text)) return true;
    }
    return false;
}

Result<UnitId> unit_for(FieldCell& cell, std::string_view text) {
    const FieldReading reading = cell.read();
    const std::vector<UnitId> served = served_units(cell);
    const std::string name = simplified(unit_text(reading.unit));
    if (text.empty() || (!name.empty() && name == simplified(text))) {
        if (has_values(cell, reading.unit)) return reading.unit;
        if (text.empty() && served.size() == 1) return served[0];
    }
    UnitId found = find_unit(served, text);
    if (found < 0 && !text.empty() && looks_at_unit(cell)) {
        std::vector<UnitId> all;  // what the quantity does not offer but the format knows
        for (UnitId u = 0; u < unit::count; ++u)
            if (!unit_text(u).empty() && has_values(cell, u)) all.push_back(u);
        found = find_unit(all, text);
    }
    if (found >= 0) return found;
    std::vector<std::string> names;
    for (const UnitId u : served)
        if (!unit_text(u).empty()) names.push_back(unit_text(u));
    if (served.empty())
        return failure(
            "has no values that could be encoded; a field before it may have to say how it is coded");
    if (names.empty()) return failure("takes no unit, but has ", in_quotes(text));
    return failure(text.empty() ? "needs one of its units" : concat("has no unit ", in_quotes(text)),
                   "; there are: ", joined(names));
}

}  // namespace

bool shows(const FieldCell& cell, std::string_view text) {
    const std::string with_unit = cell.shown(true);
    const std::string_view whole = trimmed(with_unit);
    return whole.starts_with(text) && (whole == text || trimmed(cell.shown()) == text);
}

std::optional<double> take_number(std::string_view& text) {
    std::string_view digits = text;
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (hexadecimal) digits.remove_prefix(2);
    const bool fraction = digits.size() > 1 && digits[0] == '.' && is_digit(digits[1]);
    if (!hexadecimal && !fraction && (digits.empty() || !is_digit(digits[0]))) return {};
    double value = 0;
    std::uint64_t whole = 0;
    const char* const last = digits.data() + digits.size();
    const std::from_chars_result end = hexadecimal ? std::from_chars(digits.data(), last, whole, 16)
                                                   : std::from_chars(digits.data(), last, value);
    if (end.ptr == digits.data()) return {};
    if (hexadecimal) value = static_cast<double>(whole);
    if (end.ec == std::errc::result_out_of_range) {
        const std::string_view typed(digits.data(), static_cast<std::size_t>(end.ptr - digits.data()));
        constexpr std::size_t most_digits = 300;  // fewer than a double can have before its point
        const bool tiny =
            typed.size() < most_digits && (typed.find("e-") != typed.npos || typed.find("E-") != typed.npos);
        value = tiny ? 0 : std::numeric_limits<double>::infinity();
    }
    text = {end.ptr, static_cast<std::size_t>(last - end.ptr)};
    return negative ? -value : value;
}

std::vector<UnitId> served_units(FieldCell cell) {
    const FieldReading reading = cell.read();
    std::vector<UnitId> units;
    if (reading.quantity == quantity::no_quantity)
        units.push_back(reading.unit);
    else
        units = offered_units(reading.quantity);
    const std::uint64_t before = cell.raw();
    std::erase_if(units, [&cell](UnitId u) { return !has_values(cell, u); });
    cell.put(before);
    return units;
}

RawScale scale_of(FieldCell& cell, UnitId unit) {
    return RawScale(
        [cell, unit](std::uint64_t raw) mutable {
            cell.put(raw);
            return number_in(cell, unit);
        },
        cell.bits());
}

std::string range_text(const RawScale& scale, UnitId unit) {
    const std::string name = unit_text(unit);
    return "from " + number_text(scale.lowest()) + " to " + number_text(scale.highest()) +
           (name.empty() ? "" : " ") + name;
}

Outcome enter_number(FieldCell& cell, std::string_view text) {
    std::string_view rest = text;
    const std::optional<double> number = take_number(rest);
    if (!number) return {};
    const std::string_view digits = text.substr(0, text.size() - rest.size());
    if (rest.size() > 1 && rest[0] == ',' && is_digit(rest[1]))
        return failure(in_quotes(text), " has a comma: a fraction is typed with a point, as in 1.5");
    rest = trimmed(rest);
    std::string_view in_parentheses;
    const bool names_pgn = cell.names_pgn() && rest.starts_with('(');
    if (names_pgn) {
        rest = {};  // the name follows from the number
    } else if (const std::size_t close = rest.find(')'); rest.starts_with("(0x") && close != rest.npos) {
        in_parentheses = rest.substr(0, close + 1);
        rest = trimmed(rest.substr(close + 1));
    }

    Result<UnitId> found = unit_for(cell, rest);
    if (!found) return found.error();
    const UnitId unit = *found;
    const std::optional<std::uint64_t> integer = integer_of(digits);
    if (!integer || !enter_integer(cell, *integer, unit)) {
        const RawScale scale = scale_of(cell, unit);
        if (scale.empty()) return failure("has no values that could be encoded");
        const std::uint64_t raw = scale.nearest(*number, significant(digits));
        const bool whole = digits.find_first_not_of("+-0123456789") == digits.npos;
        const bool meant = is_meant(cell, scale, raw, *number, whole, unit);
        if (!shows(cell, text) && !enter_as_rounded(cell, text, *number, raw, unit)) {
            cell.put(raw);
            if (!meant) return failure(in_quotes(text), " is out of range: ", range_text(scale, unit));
        }
    }
    if (!in_parentheses.empty() && cell.shown().find(in_parentheses) == std::string::npos)
        return failure(digits, " and ", in_parentheses, " are different numbers");
    return done;
}

}  // namespace vistel
