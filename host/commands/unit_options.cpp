#include "commands/unit_options.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "output/utf8.h"
#include "pgn_vistel/units.h"

using namespace pgn_vistel;

namespace vistel {

namespace {

/// What metric users expect; quantities that are not listed keep their default. Mass is in grams because the
/// kilogram form of the one mass format carries no value of its own.
struct Choice {
    DispDataType quantity;
    UnitId unit;
};
constexpr Choice metric[] = {
    {quantity::depth, unit::m},
    {quantity::distance, unit::km},
    {quantity::speed, unit::kph},
    {quantity::wind_speed, unit::m_s},
    {quantity::volume, unit::litre},
    {quantity::temperature, unit::celsius},
    {quantity::atmospheric_pressure, unit::mbar},
    {quantity::pressure, unit::kPa},
    {quantity::flow, unit::litre_hr},
    {quantity::mass, unit::gram},
};

// ASCII lower case without the degree sign: what people type for a unit.
std::string simplified(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i).starts_with("\u00B0")) {
            ++i;
            continue;
        }
        result += static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    }
    return result;
}

std::vector<UnitId> offered(DispDataType q) {
    std::vector<UnitId> units;
    for (const UnitId* u = available_units(q); *u < unit::count; ++u) units.push_back(*u);
    return units;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts) {
        if (!result.empty()) result += ", ";
        result += text;
    }
    return result;
}

std::string concat(std::initializer_list<std::string_view> parts) {
    std::string result;
    for (const std::string_view part : parts) result += part;
    return result;
}

// The unit with this text: letter for letter, else as the only one that it can mean. -1 for none.
UnitId find_unit(const std::vector<UnitId>& units, std::string_view text) {
    const auto exact = std::ranges::find(units, text, unit_text);
    if (exact != units.end()) return *exact;
    const auto means = [wanted = simplified(text)](UnitId u) { return simplified(unit_text(u)) == wanted; };
    return std::ranges::count_if(units, means) == 1 ? *std::ranges::find_if(units, means) : -1;
}

}  // namespace

std::string unit_text(int u) {
    if (u == unit::clock_12) return "12h";
    if (u == unit::clock_24) return "24h";
    const std::wstring_view name = unit_name(u);
    std::string text(name.size() * utf8_most, '\0');
    text.resize(static_cast<std::size_t>(put_utf8(text.data(), name) - text.data()));
    return text;
}

std::string select_unit(QV_N2K_PGN_DB_c& db, std::string_view choice) {
    const std::size_t sign = choice.find('=');
    if (sign == choice.npos) return concat({"'", choice, "' is not of the form QUANTITY=UNIT"});
    const std::string_view name = choice.substr(0, sign);
    const std::string_view text = choice.substr(sign + 1);

    const auto rows = quantity_rows();
    const auto row =
        std::ranges::find(rows, simplified(name), [](const QuantityRow& r) { return simplified(r.label); });
    if (row == rows.end()) {
        std::vector<std::string> labels;
        for (const QuantityRow& r : rows) labels.emplace_back(r.label);
        return concat({"no quantity '", name, "'; there are: ", joined(labels)});
    }
    const auto units = offered(row->quantity);
    const UnitId found = find_unit(units, text);
    if (found < 0) {
        std::vector<std::string> names;
        for (const UnitId u : units) names.push_back(unit_text(u));
        return concat({"no unit '", text, "' for ", row->label, "; there are: ", joined(names)});
    }
    db.SelectUnit(row->quantity, found);
    return {};
}

std::string select_units(QV_N2K_PGN_DB_c& db, std::string_view name) {
    if (name != "default" && name != "metric")
        return concat({"no set of units '", name, "'; there are: default, metric"});
    for (DispDataType q = 0; q < quantity::count; ++q) db.SelectUnit(q, *available_units(q));
    if (name == "metric")
        for (const Choice& c : metric) db.SelectUnit(c.quantity, c.unit);
    return {};
}

}  // namespace vistel
