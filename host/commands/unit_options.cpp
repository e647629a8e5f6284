#include "commands/unit_options.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

#include "output/unit_names.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

/// A set has the default of quantities that it does not name.
struct Choice {
    DispDataType quantity;
    UnitId unit;
};
struct NamedSet {
    std::string_view name;
    std::span<const Choice> choices;
};
#include "unit_sets.inc"
static_assert(std::size(quantity_ids) == quantity::count);

/// Without regard to case; blanks and underscores are the same.
std::string comparable(std::string_view name) {
    std::string text = simplified(name);
    std::ranges::replace(text, '_', ' ');
    return text;
}

/// quantity::count for none. What is offered to users goes before the names in the tables.
DispDataType find_quantity(std::string_view name) {
    const std::string wanted = comparable(name);
    const auto rows = quantity_rows();
    const auto row =
        std::ranges::find(rows, wanted, [](const QuantityRow& r) { return comparable(r.label); });
    if (row != rows.end()) return row->quantity;
    const auto* const id = std::ranges::find(quantity_ids, wanted, comparable);
    return static_cast<DispDataType>(id - std::begin(quantity_ids));
}

}  // namespace

Status select_unit(UnitSelection& selection, std::string_view choice) {
    const std::size_t sign = choice.find('=');
    if (sign == choice.npos) return failure("'", choice, "' is not of the form QUANTITY=UNIT");
    const std::string_view name = choice.substr(0, sign);
    const std::string_view text = choice.substr(sign + 1);

    const DispDataType q = find_quantity(name);
    if (q == quantity::count) {
        std::vector<std::string> names;
        names.reserve(quantity::count);
        for (DispDataType each = 0; each < quantity::count; ++each) names.push_back(quantity_name(each));
        return failure("no quantity '", name, "'; there are: ", joined(names));
    }
    auto units = offered_units(q);
    const UnitId si = si_unit(q);
    if (std::ranges::find(units, si) == units.end()) units.push_back(si);
    std::erase_if(units, [](UnitId u) { return unit_text(u).empty(); });
    if (units.empty()) return failure(quantity_name(q), " has no units to choose from");
    const UnitId found = find_unit(units, text);
    if (found < 0) {
        std::vector<std::string> names;
        names.reserve(units.size());
        for (const UnitId u : units) names.push_back(unit_text(u));
        return failure("no unit '", text, "' for ", quantity_name(q), "; there are: ", joined(names));
    }
    selection.select(q, found);
    return done;
}

std::string quantity_name(DispDataType q) {
    const auto rows = quantity_rows();
    const auto row = std::ranges::find(rows, q, &QuantityRow::quantity);
    if (row != rows.end()) return row->label;
    std::string name(quantity_ids[static_cast<std::size_t>(q)]);
    std::ranges::replace(name, '_', ' ');
    return name;
}

std::vector<std::string> unit_set_names() {
    std::vector<std::string> names = {"default"};
    for (const NamedSet& set : unit_sets) names.emplace_back(set.name);
    names.emplace_back("si");
    return names;
}

Status select_units(UnitSelection& selection, std::string_view name) {
    const auto* const set = std::ranges::find(unit_sets, name, &NamedSet::name);
    if (set == std::end(unit_sets) && name != "default" && name != "si")
        return failure("no set of units '", name, "'; there are: ", joined(unit_set_names()));
    selection = name == "si" ? UnitSelection::si() : UnitSelection();
    if (set != std::end(unit_sets))
        for (const Choice& choice : set->choices) selection.select(choice.quantity, choice.unit);
    return done;
}

Status select_units(UnitSelection& selection, const UnitOptions& options) {
    Status status = done;
    if (!options.usual_set.empty()) status = select_units(selection, options.usual_set);
    for (const std::string& unit : options.usual_units)
        if (status) status = select_unit(selection, unit);
    if (status && !options.set.empty()) status = select_units(selection, options.set);
    for (const std::string& unit : options.units)
        if (status) status = select_unit(selection, unit);
    return status;
}

}  // namespace vistel
