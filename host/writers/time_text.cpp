#include "writers/time_text.h"

#include <algorithm>
#include <chrono>

namespace vistel {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t day = 86400 * second;

std::int64_t nanoseconds_of(const RecordTime& time) {
    return std::max<std::int64_t>(0, time.nanoseconds);
}

/// The digits of a number, with zeros in front.
void append_digits(std::string& out, std::int64_t number, unsigned digits) {
    const std::size_t start = out.size();
    out.append(digits, '0');
    for (std::size_t at = out.size(); at > start; number /= 10)
        out[--at] = static_cast<char>('0' + number % 10);
}

void append_clock(std::string& out, std::int64_t nanoseconds, std::string_view between, unsigned decimals) {
    const std::int64_t seconds = nanoseconds % day / second;
    append_digits(out, seconds / 3600, 2);
    append_digits(out.append(between), seconds / 60 % 60, 2);
    append_digits(out.append(between), seconds % 60, 2);
    std::int64_t fraction = nanoseconds % second;
    for (unsigned i = decimals; i < 9; ++i) fraction /= 10;
    append_digits(out.append("."), fraction, decimals);
}

unsigned decimals_of(std::int64_t nanoseconds, unsigned least) {
    unsigned decimals = 9;
    while (decimals > least && nanoseconds % 1000 == 0) nanoseconds /= 1000, decimals -= 3;
    return decimals;
}

}  // namespace

void append_clock(std::string& out, const RecordTime& time, std::string_view between) {
    append_clock(out, nanoseconds_of(time), between, 3);
}

void append_timestamp(std::string& out, const RecordTime& time) {
    const std::int64_t nanoseconds = nanoseconds_of(time);
    const bool dated = time.origin == RecordTime::Origin::epoch;
    if (dated) {
        using namespace std::chrono;
        const year_month_day date{sys_days(days(nanoseconds / day))};
        append_digits(out, static_cast<int>(date.year()), 4);
        append_digits(out.append("-"), static_cast<unsigned>(date.month()), 2);
        append_digits(out.append("-"), static_cast<unsigned>(date.day()), 2);
        out += 'T';
    }
    append_clock(out, nanoseconds, ":", decimals_of(nanoseconds, 3));
    if (dated) out += 'Z';
}

void append_seconds(std::string& out, const RecordTime& time) {
    const std::int64_t nanoseconds = nanoseconds_of(time);
    const std::int64_t seconds = nanoseconds / second;
    const unsigned decimals = decimals_of(nanoseconds, 6);
    unsigned digits = 1;
    for (std::int64_t rest = seconds; rest >= 10; rest /= 10) ++digits;
    append_digits(out, seconds, digits);
    append_digits(out.append("."), nanoseconds % second / (decimals == 9 ? 1 : 1000), decimals);
}

}  // namespace vistel
