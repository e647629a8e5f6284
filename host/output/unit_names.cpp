#include "output/unit_names.h"

#include <algorithm>

#include "output/utf8.h"

using namespace pgn_vistel;

namespace vistel {

std::string simplified(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i).starts_with("\u00B0")) {
            ++i;
            continue;
        }
        const char c = text[i];
        result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

std::string unit_text(UnitId u) {
    if (u == unit::clock_12) return "12h";
    if (u == unit::clock_24) return "24h";
    return utf8_of(unit_name(u));
}

std::vector<UnitId> offered_units(DispDataType q) {
    std::vector<UnitId> units;
    for (const UnitId* u = available_units(q); *u < unit::count; ++u) units.push_back(*u);
    return units;
}

UnitId find_unit(const std::vector<UnitId>& units, std::string_view text) {
    const auto exact = std::ranges::find(units, text, unit_text);
    if (exact != units.end()) return *exact;
    const auto means = [wanted = simplified(text)](UnitId u) { return simplified(unit_text(u)) == wanted; };
    return std::ranges::count_if(units, means) == 1 ? *std::ranges::find_if(units, means) : -1;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts) {
        if (!result.empty()) result += ", ";
        result += text;
    }
    return result;
}

}  // namespace vistel
