#include "output/times.h"

#include <chrono>

namespace vistel {

namespace {

void put_digits(Sink& out, std::uint64_t number, int digits) {
    char text[20];
    for (int i = digits; i-- > 0; number /= 10) text[i] = static_cast<char>('0' + number % 10);
    out.put(std::string_view(text, static_cast<std::size_t>(digits)));
}

constexpr std::int64_t nanoseconds_per_second = 1'000'000'000;

}  // namespace

void put_seconds(Sink& out, std::int64_t nanoseconds) {
    if (nanoseconds < 0) out.put('-');
    const auto magnitude = nanoseconds < 0 ? 0 - static_cast<std::uint64_t>(nanoseconds)
                                           : static_cast<std::uint64_t>(nanoseconds);
    out.put_number(magnitude / nanoseconds_per_second);
    out.put('.');
    put_digits(out, magnitude % nanoseconds_per_second / 1000, 6);
}

void put_utc(Sink& out, std::int64_t nanoseconds) {
    using namespace std::chrono;
    const sys_time<std::chrono::nanoseconds> time{std::chrono::nanoseconds(nanoseconds)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<microseconds>(time - day));
    put_digits(out, static_cast<std::uint64_t>(static_cast<int>(date.year())), 4);
    out.put('-');
    put_digits(out, static_cast<unsigned>(date.month()), 2);
    out.put('-');
    put_digits(out, static_cast<unsigned>(date.day()), 2);
    out.put('T');
    put_digits(out, static_cast<std::uint64_t>(clock.hours().count()), 2);
    out.put(':');
    put_digits(out, static_cast<std::uint64_t>(clock.minutes().count()), 2);
    out.put(':');
    put_digits(out, static_cast<std::uint64_t>(clock.seconds().count()), 2);
    out.put('.');
    put_digits(out, static_cast<std::uint64_t>(clock.subseconds().count()), 6);
    out.put('Z');
}

}  // namespace vistel
