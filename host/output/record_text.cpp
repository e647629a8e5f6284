#include "output/record_text.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "text/printable.h"

namespace vistel {

void append_json(std::string& out, std::string_view text) {
    out += '"';
    const auto escape = [&out](unsigned c) {
        std::array<char, 16> escaped;
        std::snprintf(escaped.data(), escaped.size(), "\\u%04x", c);
        out += escaped.data();
    };
    while (!text.empty()) {
        const auto c = static_cast<unsigned char>(text[0]);
        const auto second = static_cast<unsigned char>(text.size() > 1 ? text[1] : 0);
        if (c < 0x20 || c == 0x7F) {
            escape(c);
            text.remove_prefix(1);
        } else if (c == 0xC2 && second >= 0x80 && second < 0xA0) {
            escape(second);
            text.remove_prefix(2);
        } else if (text.starts_with("\u2028") || text.starts_with("\u2029")) {
            escape(text.starts_with("\u2028") ? 0x2028 : 0x2029);
            text.remove_prefix(3);
        } else {
            if (c == '"' || c == '\\') out += '\\';
            out += text[0];
            text.remove_prefix(1);
        }
    }
    out += '"';
}

void append_csv(std::string& out, std::string_view text) {
    constexpr std::string_view of_formulas = "=+-@'";
    std::string cell = harmless(text);
    if (!cell.empty() && of_formulas.find(cell[0]) != std::string_view::npos) cell.insert(0, 1, '\'');
    if (cell.find_first_of("\",") == std::string_view::npos) {
        out += cell;
        return;
    }
    out += '"';
    for (const char c : cell) out.append(c == '"' ? 2 : 1, c);
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
