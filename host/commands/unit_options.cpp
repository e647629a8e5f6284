#include "commands/unit_options.h"

#include <algorithm>
#include <vector>

#include "output/unit_names.h"
#include "text/words.h"

using namespace pgn_vistel::core;

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

}  // namespace

Status select_unit(UnitSelection& selection, std::string_view choice) {
    const std::size_t sign = choice.find('=');
    if (sign == choice.npos) return failure("'", choice, "' is not of the form QUANTITY=UNIT");
    const std::string_view name = choice.substr(0, sign);
    const std::string_view text = choice.substr(sign + 1);

    const auto rows = quantity_rows();
    const auto row =
        std::ranges::find(rows, simplified(name), [](const QuantityRow& r) { return simplified(r.label); });
    if (row == rows.end()) {
        std::vector<std::string> labels;
        for (const QuantityRow& r : rows) labels.emplace_back(r.label);
        return failure("no quantity '", name, "'; there are: ", joined(labels));
    }
    auto units = offered_units(row->quantity);
    const UnitId si = si_unit(row->quantity);
    if (std::ranges::find(units, si) == units.end() && !unit_text(si).empty()) units.push_back(si);
    const UnitId found = find_unit(units, text);
    if (found < 0) {
        std::vector<std::string> names;
        names.reserve(units.size());
        for (const UnitId u : units) names.push_back(unit_text(u));
        return failure("no unit '", text, "' for ", row->label, "; there are: ", joined(names));
    }
    selection.select(row->quantity, found);
    return done;
}

Status select_units(UnitSelection& selection, std::string_view name) {
    if (name != "default" && name != "metric" && name != "si")
        return failure("no set of units '", name, "'; there are: default, metric, si");
    selection = name == "si" ? UnitSelection::si() : UnitSelection();
    if (name == "metric")
        for (const Choice& c : metric) selection.select(c.quantity, c.unit);
    return done;
}

Status select_units(UnitSelection& selection, const UnitOptions& options) {
    Status status = done;
    if (!options.set.empty()) status = select_units(selection, options.set);
    for (const std::string& unit : options.units)
        if (status) status = select_unit(selection, unit);
    return status;
}

}  // namespace vistel
