#include "output/unit_names.h"

#include <algorithm>

#include "output/unit_spellings.h"
#include "text/words.h"

namespace core = pgn_vistel::core;
using core::DispDataType, core::UnitId;
namespace unit = core::unit;

namespace vistel {

std::string simplified(std::string_view text) {
    constexpr std::string_view degree_sign = "\u00B0";
    std::string result = lower_case(text);
    for (std::size_t at = 0; (at = result.find(degree_sign, at)) != result.npos;)
        result.erase(at, degree_sign.size());
    return result;
}

std::string unit_text(UnitId u) {
    if (u == unit::clock_12) return "12h";
    if (u == unit::clock_24) return "24h";
    return std::string(core::unit_text(u));
}

std::vector<UnitId> offered_units(DispDataType q) {
    std::vector<UnitId> units;
    for (const UnitId* u = core::available_units(q); *u < unit::count; ++u) units.push_back(*u);
    return units;
}

UnitId find_unit(const std::vector<UnitId>& units, std::string_view text) {
    const auto exact = std::ranges::find(units, text, unit_text);
    if (exact != units.end()) return *exact;
    const auto only = [&units](auto means) {
        return std::ranges::count_if(units, means) == 1 ? *std::ranges::find_if(units, means) : -1;
    };
    const auto is_alike = [wanted = simplified(text)](UnitId u) {
        return !wanted.empty() && simplified(unit_text(u)) == wanted;
    };
    UnitId found = only(is_alike);
    if (found < 0) found = only([text](UnitId u) { return !text.empty() && core::unit_ascii(u) == text; });
    return found >= 0 ? found : only([text](UnitId u) { return is_spelling_of(text, unit_text(u)); });
}

}  // namespace vistel
