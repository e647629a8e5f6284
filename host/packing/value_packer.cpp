#include "packing/value_packer.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <optional>

#include "encode/definitions.h"
#include "packing/analyzer_names.h"
#include "pgn_vistel/core/layout.h"
#include "text/quotes.h"
#include "text/words.h"

using namespace pgn_vistel::core;
using nlohmann::json;

namespace vistel {

namespace {

/// Numbers of a field are in another unit than the SI unit of its quantity.
struct Conversion {
    std::string_view unit;  ///< that the definition counts in
    double display_factor, display_offset, si_factor;
};
constexpr double degree = std::numbers::pi / 180, litre = 1e-3, joule = 1 / 3.6e6;
constexpr Conversion conversions[] = {
    {"rad", degree, 0, 1}, {"rad/s", degree, 0, 1}, {"K", 1, 273.15, 1},       {"Pa", 1e5, 0, 1},
    {"C", 3600, 0, 1},     {"m3", litre, 0, litre}, {"m3/h", litre, 0, litre}, {"kWh", 1, 0, joule},
};

/// Of a message: two a byte. Building takes a time that grows with their square.
constexpr std::size_t most_fields = 2 * N2K_MAX_PAYLOAD;

/// Members with the rounds of the repeating groups, in the order of these.
constexpr std::string_view group_members[] = {"list", "list2"};

const std::string& text(const json& value) {
    return value.get_ref<const std::string&>();
}

std::string shown(const json& value) {
    constexpr std::size_t most = 40;
    if (value.is_structured()) return value.is_array() ? "a list" : "an object";
    return quoted(std::string_view(value.is_string() ? text(value) : value.dump()).substr(0, most));
}

std::string in_short(std::string_view name) {
    constexpr std::size_t most = 60;
    return quoted(name.substr(0, most));
}

bool is_in(const FieldGroup& group, const FieldDef& row) {
    return row.field >= group.first && row.field <= group.last;
}

bool is_in(const FieldGroup* group, const ListedMessage& message, const FieldDef& row) {
    if (group != nullptr) return is_in(*group, row);
    return std::ranges::none_of(message.groups, [&](const FieldGroup& each) { return is_in(each, row); });
}

bool holds_text(std::string_view coding) {
    return coding.starts_with("text");
}

/// Whether only another field of the message says what a number counts in.
bool is_told_by_another(std::string_view coding) {
    return coding == "key_value" || coding == "field_value";
}

bool is_number(std::string_view typed) {
    return !typed.empty() && json::parse(typed, nullptr, false).is_number();
}

}  // namespace

/// With the digits that it has wherever it needs no conversion.
std::string ValuePacker::number_text(const Row& row, const json& number) const {
    const std::string_view unit = field_notes(row).unit;
    const auto* const found = std::ranges::find(conversions, unit, &Conversion::unit);
    if (unit == "deg") return number.dump() + " deg";
    if (found == std::end(conversions)) return number.dump();
    const bool is_si = units_ == Units::si;
    const double factor = is_si ? found->si_factor : found->display_factor;
    const double offset = is_si ? 0 : found->display_offset;
    if (factor == 1 && offset == 0) return number.dump();
    return json(number.get<double>() * factor + offset).dump();
}

/// The value as it would be typed.
Result<std::string> ValuePacker::text_of(const Row& row, const json& value) const {
    const FieldNotes notes = field_notes(row);
    const bool is_coded = !notes.texts.empty();
    if (value.is_null()) return std::string(holds_text(notes.coding) ? "" : "-");
    if (value.is_object() && value.contains("value")) {
        const json& inner = value["value"];
        const bool has_name = !is_coded && value.contains("name") && value["name"].is_string();
        if (inner.is_structured()) return failure("is no value");
        return text_of(row, has_name ? value["name"] : inner);
    }
    if (value.is_array() && notes.coding == "flags") {
        std::uint64_t flags = 0;
        for (const json& each : value) {
            const json& name = each.is_object() && each.contains("name") ? each["name"] : each;
            if (!name.is_string()) return failure("has a flag without a name");
            const auto bit = find_code(notes.texts, text(name));
            if (!bit || *bit >= 64) return failure("has no flag ", shown(name));
            flags |= std::uint64_t{1} << *bit;
        }
        return std::to_string(flags);
    }
    if (value.is_number() && !holds_text(notes.coding)) {
        if (is_told_by_another(notes.coding)) return failure("has a number whose unit is not known");
        return number_text(row, value);
    }
    if (!value.is_string()) return failure("cannot be ", shown(value));
    if (is_coded) {
        if (const auto code = find_code(notes.texts, text(value))) return std::to_string(*code);
    } else if (notes.coding == "date") {
        std::string date = text(value);
        std::ranges::replace(date, '.', '-');
        return date;
    } else if (notes.coding != "bytes" && !holds_text(notes.coding) && is_number(text(value))) {
        return text_of(row, json::parse(text(value)));
    }
    return text(value);
}

Status ValuePacker::type_group(const Message& message, const json& values, const FieldGroup* group, int round,
                               Typed& typed) const {
    std::map<const Row*, std::string> texts;
    for (const auto& [name, value] : values.items()) {
        if (group == nullptr && std::ranges::find(group_members, name) != std::end(group_members)) continue;
        const Row* const row = find_analyzed(*message.row, message.variant, name);
        if (row == nullptr || !is_in(group, message, *row))
            return failure("no field ", in_short(name), " in it");
        Result<std::string> found = text_of(*row, value);
        if (!found) return failure(in_short(name), " ", found.error().text);
        if (!texts.emplace(row, std::move(*found)).second) return failure(in_short(name), " is given twice");
    }
    for (const Row& row : message.fields) {
        if (!is_in(group, message, row)) continue;
        const auto found = texts.find(&row);
        std::string label = label_of(row, round);
        // What is not given is told of fields that only their order tells from others of the name.
        const bool is_one_of_several = std::ranges::any_of(texts, [&](const auto& each) {
            return each.first != &row && label_of(*each.first, round) == label;
        });
        const bool is_due = is_one_of_several || (group != nullptr && field_notes(row).coding != "reserved");
        if (found == texts.end() && !is_due) continue;
        std::string value = found != texts.end() ? found->second : *text_of(row, nullptr);
        typed.push_back({std::move(label), std::move(value)});
    }
    return done;
}

Status ValuePacker::type(const Message& message, const json& values, Typed& typed) const {
    if (Status single = type_group(message, values, nullptr, 0, typed); !single) return single;
    for (std::size_t i = 0; i < std::size(group_members); ++i) {
        const auto rounds = values.find(group_members[i]);
        if (rounds == values.end() || rounds->is_null()) continue;
        if (i >= message.groups.size() || !rounds->is_array())
            return failure("no field ", in_short(group_members[i]), " in it");
        int round = 0;
        for (const json& each : *rounds) {
            if (!each.is_object()) return failure(in_short(group_members[i]), " has ", shown(each));
            if (typed.size() > most_fields) return failure(in_short(group_members[i]), " is too long");
            if (Status one = type_group(message, each, &message.groups[i], ++round, typed); !one) return one;
        }
    }
    return done;
}

Result<N2KMsg> ValuePacker::pack(std::uint32_t pgn, const json& values) {
    std::string why = "is not in the catalogue";
    bool has_fields = false;  // that one of the variants has
    std::optional<N2KMsg> found;
    for (const PgnDef* const definition : definitions_of(pgn)) {
        const Message message = listed(*definition);
        if (message.row == nullptr) continue;
        Typed typed;
        const Status named = type(message, values, typed);
        if (!named && has_fields) continue;
        if (!named) {
            why = named.error().text;
            continue;
        }
        has_fields = true;
        BuiltMessage built = build_corrected(context_, pgn, *definition, typed);
        if (!built) {
            why = built.error().texts.front();
            continue;
        }
        if (found) return failure("the fields do not tell which variant it is");
        found = *built;
        if (message.conditions.empty()) break;  // others differ in length alone
    }
    if (found) return *found;
    return failure(why);
}

}  // namespace vistel
