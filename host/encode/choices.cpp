#include "encode/choices.h"

#include <algorithm>

#include "output/unit_names.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

constexpr std::string_view flag_separator = ", ";

/// What people type of a text, and what is compared: without blanks around, in lower case.
std::string comparable(std::string_view text) {
    return simplified(trimmed(text));
}

/// Whether the text is one of those in `[Yes, On, Enabled, Set, "1"]`.
bool is_one_in_brackets(std::string_view wanted, std::string_view list) {
    if (!list.starts_with('[') || !list.ends_with(']')) return false;
    for (list = list.substr(1, list.size() - 2); !list.empty();) {
        const std::size_t size = std::min(list.find(flag_separator), list.size());
        if (comparable(list.substr(0, size)) == wanted) return true;
        list.remove_prefix(std::min(size + flag_separator.size(), list.size()));
    }
    return false;
}

/// The flag whose text begins the list. Texts may contain the separator, so the longest one counts; several
/// flags may have one text ("Reserved"), and are taken in turn.
const CodedChoice* first_flag(std::string_view list, const std::vector<CodedChoice>& flags,
                              std::uint32_t taken) {
    const CodedChoice* best = nullptr;
    for (const CodedChoice& flag : flags) {
        if (!list.starts_with(flag.text) || (taken & flag.value) != 0) continue;
        const std::string_view rest = list.substr(flag.text.size());
        if (!rest.empty() && !rest.starts_with(flag_separator)) continue;
        const bool longer = best == nullptr || flag.text.size() > best->text.size();
        const bool in_order = best != nullptr && flag.text == best->text && best->value < taken;
        if (longer || in_order) best = &flag;
    }
    return best;
}

bool enter_flags(FieldCell& cell, std::string_view text, std::vector<CodedChoice> flags) {
    for (CodedChoice& flag : flags) flag.text = comparable(flag.text);
    const std::string lower = comparable(text);
    std::uint32_t value = 0;
    for (std::string_view list = lower; !list.empty();) {
        const CodedChoice* const flag = first_flag(list, flags, value);
        if (flag == nullptr) return false;
        value |= flag->value;
        list.remove_prefix(std::min(list.size(), flag->text.size() + flag_separator.size()));
    }
    cell.put(value);
    return true;
}

/// Whether the field can hold the value so that decoding shows its text. Codes that stand for "not available"
/// may have one as well ("Do not change offset"), which decoding does not show.
bool is_choice(FieldCell& cell, const CodedChoice& choice) {
    const int bits = cell.bits();
    if (bits < 32 && choice.value >> bits != 0) return false;
    if (holds_flags(cell)) return true;
    cell.put(choice.value);
    return !cell.is_value(cell.read(unit::raw_count).value) || cell.shown() == choice.text;
}

}  // namespace

bool holds_flags(const FieldCell& cell) {
    const DDstrings* const set = cell.texts();
    return set != nullptr && set->kind == ENUM_FLAGS;
}

std::vector<CodedChoice> choices_of(FieldCell cell) {
    std::vector<CodedChoice> result;
    const DDstrings* const set = cell.texts();
    if (set == nullptr || set->pairs == nullptr) return result;
    const bool flags = set->kind == ENUM_FLAGS;
    const std::uint64_t before = cell.raw();
    for (std::uint32_t i = 0; set->count == 0 ? set->pairs[i].text != nullptr : i < set->count; ++i) {
        if (flags && i >= 32) break;
        const ValueText& entry = set->pairs[i];
        const std::uint32_t value = flags ? std::uint32_t{1} << i : entry.value - cell.coding().high;
        const CodedChoice choice{value, entry.text};
        const bool again =
            !result.empty() && result.back().value == choice.value;  // the first of two is shown
        if (!again && is_choice(cell, choice)) result.push_back(choice);
    }
    cell.put(before);
    return result;
}

bool enter_choice(FieldCell& cell, std::string_view text, Spelling spelling) {
    const std::vector<CodedChoice> choices = choices_of(cell);
    if (holds_flags(cell)) return enter_flags(cell, text, choices);
    const std::string wanted = comparable(text);
    const bool by_code = !cell.is_corrected() || !cell.coding().is_number;
    const auto is_exact = [&](const CodedChoice& choice) {
        return trimmed(choice.text) == text || (by_code && std::to_string(choice.value) == text);
    };
    const auto is_alike = [&wanted](const CodedChoice& choice) { return comparable(choice.text) == wanted; };
    const auto is_word = [&wanted](const CodedChoice& choice) {
        return is_one_in_brackets(wanted, trimmed(choice.text));
    };
    const bool exact = spelling == Spelling::exact;
    auto meant = exact ? std::ranges::find_if(choices, is_exact) : std::ranges::find_if(choices, is_alike);
    if (meant == choices.end() && !exact) meant = std::ranges::find_if(choices, is_word);
    if (meant == choices.end()) return false;
    cell.put(meant->value);
    return true;
}

}  // namespace vistel
