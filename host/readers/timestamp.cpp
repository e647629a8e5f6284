#include "readers/timestamp.h"

#include <chrono>
#include <cstring>

#include "text/characters.h"
#include "text/fixed_digits.h"

namespace vistel {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t minute = 60 * second;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t day = 24 * hour;

constexpr std::int64_t last_second = 9'214'646'399;  // end of 2261, as for dates

constexpr unsigned not_a_number = 1000;

/// Two decimal digits, or `not_a_number`.
unsigned two_digits(const char* p) {
    return is_digit(p[0]) && is_digit(p[1]) ? static_cast<unsigned>((p[0] - '0') * 10 + (p[1] - '0'))
                                            : not_a_number;
}

/// Cuts the decimals, without their point, off `text`.
bool take_fraction(std::string_view& text, std::int64_t& nanoseconds) {
    constexpr std::size_t most = 9;
    constexpr std::int64_t weight[most + 1] = {0,      100'000'000, 10'000'000, 1'000'000, 100'000,
                                               10'000, 1'000,       100,        10,        1};
    std::size_t size = 0;
    std::int64_t value = 0;
    while (size < text.size() && size < most && is_digit(text[size])) {
        value = value * 10 + (text[size++] - '0');
    }
    nanoseconds = value * weight[size];
    text.remove_prefix(size);
    return size > 0;
}

/// Z, +hh, +hhmm or +hh:mm.
bool parse_zone(std::string_view text, std::int64_t& offset) {
    offset = 0;
    if (text == "Z" || text == "z") return true;
    if (text.size() < 3 || (text[0] != '+' && text[0] != '-')) return false;
    const unsigned hours = two_digits(text.data() + 1);
    unsigned minutes = 0;
    if (text.size() == 5) {
        minutes = two_digits(text.data() + 3);
    } else if (text.size() == 6 && text[3] == ':') {
        minutes = two_digits(text.data() + 4);
    } else if (text.size() != 3) {
        return false;
    }
    if (hours > 23 || minutes > 59) return false;
    offset = hours * hour + minutes * minute;
    if (text[0] == '-') offset = -offset;
    return true;
}

/// `hh:mm:ss`, decimals and zone, as nanoseconds since the midnight that they are counted from, in UTC.
/// Second 60 is a leap second, which counts as the next one.
Result<std::int64_t, const char*> parse_time_of_day(std::string_view text) {
    constexpr const char* no_time = "it is not hh:mm:ss";
    if (text.size() < 8 || text[2] != ':' || text[5] != ':') return no_time;
    const unsigned hours = two_digits(text.data());
    const unsigned minutes = two_digits(text.data() + 3);
    const unsigned seconds = two_digits(text.data() + 6);
    if (hours == not_a_number || minutes == not_a_number || seconds == not_a_number) return no_time;
    if (hours > 23 || minutes > 59 || seconds > 60) return "there is no such time of day";
    std::int64_t nanoseconds = hours * hour + minutes * minute + seconds * second;
    text.remove_prefix(8);
    if (!text.empty() && (text[0] == '.' || text[0] == ',')) {
        text.remove_prefix(1);
        std::int64_t fraction = 0;
        if (!take_fraction(text, fraction)) return "the decimals are missing";
        if (!text.empty() && is_digit(text[0])) return "it has more than 9 decimals";
        nanoseconds += fraction;
    }
    if (text.empty()) return nanoseconds;
    std::int64_t offset = 0;
    if (!parse_zone(text, offset)) return "its end is neither Z nor an offset such as +02:00";
    return nanoseconds - offset;
}

}  // namespace

Result<Done, const char*> TimestampParser::parse_date(std::string_view date) {
    const unsigned century = two_digits(date.data()), year_of_century = two_digits(date.data() + 2);
    const unsigned month = two_digits(date.data() + 5), day_of_month = two_digits(date.data() + 8);
    if (century > 99 || year_of_century > 99 || month > 99 || day_of_month > 99)
        return "it is not yyyy-mm-dd";
    const int year = static_cast<int>(century * 100 + year_of_century);
    const auto calendar_day =
        std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day_of_month);
    if (!calendar_day.ok()) return "there is no such date";
    is_dated_ = year >= 1970 && year <= 2261;
    midnight_ = !is_dated_ ? 0 : std::chrono::sys_days(calendar_day).time_since_epoch().count() * day;
    std::memcpy(date_, date.data(), date_size);
    return done;
}

Result<RecordTime, const char*> TimestampParser::parse(std::string_view text) {
    if (text.size() > 2 && text[2] == ':') {
        auto time = parse_time_of_day(text);
        if (!time) return time.error();
        return RecordTime{(*time + day) % day, RecordTime::Origin::day};
    }
    constexpr const char* neither = "it is neither date and time nor time of day";
    if (text.size() < date_size + 1 || text[4] != '-' || text[7] != '-') return neither;
    const char separator = text[date_size];
    if (separator != 'T' && separator != '-' && separator != 'Z' && separator != ' ') return neither;
    if (std::memcmp(text.data(), date_, date_size) != 0) {
        if (const auto date = parse_date(text); !date) return date.error();
    }
    auto time = parse_time_of_day(text.substr(date_size + 1));
    if (!time) return time.error();
    if (!is_dated_ || midnight_ + *time < 0) return RecordTime{};
    const unsigned hours = two_digits(text.data() + 11), minutes = two_digits(text.data() + 14);
    minute_start_ = midnight_ + hours * hour + minutes * minute;
    std::memcpy(minute_, text.data(), minute_size);
    return RecordTime{midnight_ + *time, RecordTime::Origin::epoch};
}

const char* TimestampParser::read_usual(const char* p, RecordTime& time) const {
    constexpr DigitShape shape("0:00.000");  // from the last digit of the minute on
    std::uint64_t digits = 0;
    if (std::memcmp(p, minute_, minute_size) != 0 || !shape.read(p + minute_size - 2, digits)) return nullptr;
    const std::uint64_t pairs = pairs_of(digits);
    const std::int64_t seconds = pairs >> 16 & 0xFF;
    const std::int64_t tenths = digits >> 40 & 0xFF, rest = pairs >> 48 & 0xFF;
    if (seconds > 60) return nullptr;
    time.nanoseconds = minute_start_ + seconds * second + (tenths * 100 + rest) * (second / 1000);
    time.origin = RecordTime::Origin::epoch;
    p += sizeof "2016-02-28T19:57:02.364" - 1;
    if (is_digit(*p)) {
        constexpr unsigned most = 6;
        const LeadingDigits<std::uint64_t> decimals(p);
        if (decimals.size() > most) return nullptr;
        const std::uint64_t others_off = (std::uint64_t{1} << decimals.size_in_bits) - 1;
        time.nanoseconds += number_of_digits(decimals.digits & others_off) / 100;  // eight, the last two 0
        p += decimals.size();
    }
    return p + (*p == 'Z' ? 1 : 0);
}

bool parse_duration(std::string_view text, std::int64_t unit, std::int64_t& nanoseconds) {
    const std::int64_t longest = 3650 * day;
    std::int64_t whole = 0, fraction = 0;
    std::size_t size = 0;
    for (; size < text.size() && is_digit(text[size]); ++size) {
        whole = whole * 10 + (text[size] - '0');
        if (whole > longest / unit) return false;
    }
    if (size == 0) return false;
    text.remove_prefix(size);
    if (!text.empty()) {
        if (text[0] != '.') return false;
        text.remove_prefix(1);
        if (!take_fraction(text, fraction) || !text.empty()) return false;
    }
    nanoseconds = whole * unit + fraction * unit / second;
    return true;
}

RecordTime later(const RecordTime& start, std::int64_t nanoseconds) {
    RecordTime time{0, start.origin == RecordTime::Origin::none ? RecordTime::Origin::start : start.origin};
    if (__builtin_add_overflow(start.nanoseconds, nanoseconds, &time.nanoseconds))
        time.nanoseconds = start.nanoseconds;
    return time;
}

bool make_time(std::uint32_t year, std::uint32_t month, std::uint32_t day_of_month,
               std::int64_t since_midnight, RecordTime& time) {
    if (year > 9999 || month > 12 || day_of_month > 31) return false;
    const auto calendar_day = std::chrono::year(static_cast<int>(year)) / std::chrono::month(month) /
                              std::chrono::day(day_of_month);
    if (!calendar_day.ok()) return false;
    if (year < 1970 || year > 2261) {
        time = {};
    } else {
        const std::int64_t days = std::chrono::sys_days(calendar_day).time_since_epoch().count();
        time = {days * day + since_midnight, RecordTime::Origin::epoch};
    }
    return true;
}

bool read_usual_seconds(const char* p, RecordTime& time) {
    constexpr DigitShape first("00000000"), end(".000000)");
    std::uint64_t digits = 0, decimals = 0;
    if (!first.read(p, digits) || !end.read(p + 10, decimals) || !is_digit(p[8]) || !is_digit(p[9]))
        return false;
    const std::int64_t seconds =
        std::int64_t{number_of_digits(digits)} * 100 + (p[8] - '0') * 10 + (p[9] - '0');
    if (seconds > last_second) return false;
    const std::uint32_t tens_of_nanoseconds = number_of_digits(decimals >> 8);
    time.nanoseconds = seconds * second + tens_of_nanoseconds * std::int64_t{10};
    time.origin = origin_of_seconds(seconds);
    return true;
}

bool parse_seconds(std::string_view text, RecordTime& time) {
    std::int64_t seconds = 0;
    std::size_t size = 0;
    for (; size < text.size() && is_digit(text[size]); ++size) {
        seconds = seconds * 10 + (text[size] - '0');
        if (seconds > last_second) return false;
    }
    if (size == 0) return false;
    text.remove_prefix(size);
    std::int64_t fraction = 0;
    if (!text.empty()) {
        if (text[0] != '.') return false;
        text.remove_prefix(1);
        if (!take_fraction(text, fraction) || !text.empty()) return false;
    }
    time.nanoseconds = seconds * second + fraction;
    time.origin = origin_of_seconds(seconds);
    return true;
}

}  // namespace vistel
