#include "encode/choices.h"

#include <algorithm>

#include "encode/number_entry.h"

#include "output/unit_names.h"
#include "output/utf8.h"

using namespace pgn_vistel;

namespace vistel {

namespace {

constexpr std::string_view flag_separator = ", ";

/// The text of one entry. Asked of the printer, which knows the code page of the texts.
std::string text_of(const FieldCell& cell, std::uint32_t value) {
    wchar_t area[512];
    ConvValue whole{CV_U32, {}};
    whole.value.u32 = value;
    const int length = qv_n2k_pgn_db.print_field_data(area, static_cast<int>(std::size(area)),
                                                      static_cast<int>(cell.dd().dd), quantity::no_quantity,
                                                      &whole, unit::raw_count, 0, 0, 0, 0);
    return utf8_of({area, static_cast<std::size_t>(std::max(0, length))});
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

bool enter_flags(FieldCell& cell, std::string_view text, const std::vector<CodedChoice>& flags) {
    std::uint32_t value = 0;
    while (!text.empty()) {
        const CodedChoice* const flag = first_flag(text, flags, value);
        if (flag == nullptr) return false;
        value |= flag->value;
        text.remove_prefix(std::min(text.size(), flag->text.size() + flag_separator.size()));
    }
    cell.put(value);
    return true;
}

}  // namespace

bool holds_flags(const FieldCell& cell) {
    const DDstrings* const set = find_enumeration(cell.dd().dd);
    return set != nullptr && set->kind == ENUM_FLAGS;
}

std::vector<CodedChoice> choices_of(FieldCell cell) {
    std::vector<CodedChoice> result;
    const DDstrings* const set = find_enumeration(cell.dd().dd);
    if (set == nullptr || set->pairs == nullptr) return result;
    const int bits = cell.bits();
    for (std::uint32_t i = 0; set->count == 0 ? set->pairs[i].text != nullptr : i < set->count; ++i) {
        if (set->kind == ENUM_FLAGS && i >= 32) break;
        const std::uint32_t value = set->kind == ENUM_FLAGS ? std::uint32_t{1} << i : set->pairs[i].value;
        const bool again = !result.empty() && result.back().value == value;  // the first of two is shown
        if (!again && (bits >= 32 || value >> bits == 0)) result.push_back({value, text_of(cell, value)});
    }
    return result;
}

bool enter_choice(FieldCell& cell, std::string_view text, Spelling spelling) {
    const std::vector<CodedChoice> choices = choices_of(cell);
    if (holds_flags(cell)) return enter_flags(cell, text, choices);
    const std::string wanted = simplified(text);
    for (const CodedChoice& choice : choices) {
        const bool meant = spelling == Spelling::exact
                               ? trimmed(choice.text) == text || std::to_string(choice.value) == text
                               : simplified(trimmed(choice.text)) == wanted;
        if (!meant) continue;
        cell.put(choice.value);
        if (cell.shown() == choice.text) return true;
    }
    return false;
}

}  // namespace vistel
