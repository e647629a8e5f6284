#include "packing/analyzer_names.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "pgn_vistel/core/layout.h"
#include "pgn_vistel/core/listing.h"
#include "pgn_vistel/core/render.h"
#include "text/characters.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

struct FieldName {
    std::uint32_t pgn;  // 0 for all messages
    std::string_view variant, name;
    std::string_view key;  // empty where the field of that name has another meaning here
};

struct CodeText {
    std::string_view set, text;
    std::uint32_t code;
};

constexpr FieldName field_names[] = {
#include "analyzer_names.inc"
};

constexpr CodeText code_texts[] = {
#include "analyzer_texts.inc"
};

const FieldName* find_name(std::uint32_t pgn, std::string_view variant, std::string_view name) {
    const auto place = [](const FieldName& row) { return std::tuple(row.pgn, row.variant, row.name); };
    const std::tuple wanted(pgn, variant, name);
    const FieldName* const found = std::ranges::lower_bound(field_names, wanted, {}, place);
    return found != std::end(field_names) && place(*found) == wanted ? found : nullptr;
}

template <class Predicate>
const FieldDef* first_field(const PgnDef& definition, Predicate holds) {
    for (const FieldDef& row : fields_of(definition))
        if (holds(field_key(row))) return &row;
    return nullptr;
}

const FieldDef* of_key(const PgnDef& definition, std::string_view wanted) {
    return first_field(definition, [&](std::string_view key) { return key == wanted; });
}

}  // namespace

std::string compared_name(std::string_view name) {
    std::string result = lower_case(name);
    std::erase_if(result, [](char c) { return !(c >= 'a' && c <= 'z') && !is_digit(c); });
    return result;
}

const FieldDef* find_analyzed(const PgnDef& definition, std::string_view variant, std::string_view name) {
    const std::string wanted = compared_name(name);
    if (const FieldName* const own = find_name(definition.pgn, variant, wanted))
        return own->key.empty() ? nullptr : of_key(definition, own->key);
    const FieldDef* const same =
        first_field(definition, [&](std::string_view key) { return compared_name(key) == wanted; });
    if (same != nullptr) return same;
    const FieldName* const usual = find_name(0, "-", wanted);
    return usual != nullptr ? of_key(definition, usual->key) : nullptr;
}

std::optional<std::uint32_t> find_code(std::string_view set, std::string_view text) {
    const std::string wanted = lower_case(trimmed(text));
    const auto place = [](const CodeText& row) { return std::tuple(row.set, row.text); };
    const std::tuple<std::string_view, std::string_view> searched(set, wanted);
    const CodeText* const found = std::ranges::lower_bound(code_texts, searched, {}, place);
    if (found != std::end(code_texts) && place(*found) == searched) return found->code;
    for (const DDstrings& each : all_corrected_enumerations()) {
        if (enumeration_name(each) != set) continue;
        for (std::uint32_t i = 0; each.count == 0 ? each.pairs[i].text != nullptr : i < each.count; ++i)
            if (lower_case(trimmed(each.pairs[i].text)) == wanted)
                return each.kind == ENUM_FLAGS ? i : each.pairs[i].value;
    }
    return {};
}

}  // namespace vistel
