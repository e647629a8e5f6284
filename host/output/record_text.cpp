#include "output/record_text.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

namespace vistel {

void append_json(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) < 0x20) {
            std::array<char, 8> escaped;
            std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(c));
            out += escaped.data();
        } else {
            out += c;
        }
    }
    out += '"';
}

void append_csv(std::string& out, std::string_view text) {
    if (text.find_first_of("\",\r\n") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    for (const char c : text) out.append(c == '"' ? 2 : 1, c);
    out += '"';
}

std::string fixed_text(double number, int decimals) {
    std::array<char, 400> area;  // the longest double has 309 digits
    const auto [end, error] =
        std::to_chars(area.data(), area.data() + area.size(), number, std::chars_format::fixed, decimals);
    return {area.data(), end};
}

std::string decimal_text(double number, int decimals) {
    std::string text = fixed_text(number, decimals);
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string utc_text(std::int64_t nanoseconds) {
    using namespace std::chrono;
    const sys_time<microseconds> time{floor<microseconds>(std::chrono::nanoseconds(nanoseconds))};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    std::array<char, 64> area;
    std::snprintf(area.data(), area.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return area.data();
}

}  // namespace vistel
