#include "encode/value_entry.h"

#include "encode/calendar_entry.h"
#include "encode/choices.h"
#include "encode/number_entry.h"
#include "encode/suggestions.h"
#include "encode/text_entry.h"
#include "output/unit_names.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

/// "-", alone or with the unit that decoding shows behind it.
bool means_not_available(const FieldCell& cell, std::string_view text) {
    if (!text.starts_with('-')) return false;
    text = trimmed(text.substr(1));
    return text.empty() || text == unit_text(cell.read().unit);
}

/// Whether decoding may show the text in a form of its own: codes by a word that has no entry, a few
/// quantities by what begins as a number.
bool has_own_form(const FieldCell& cell, std::string_view text) {
    const DDstrings* const set = cell.texts();
    switch (set != nullptr ? set->kind : ENUM_NUMBER) {
        case ENUM_NUMBER:
        case ENUM_NUMBER_TOO: break;
        case ENUM_RESERVED:
        case ENUM_RESERVED_TOO: return text.starts_with("Reserved");
        case ENUM_UNKNOWN:
        case ENUM_UNKNOWN_TOO: return text.starts_with("Unknown");
        default: return true;
    }
    if (text.empty() || (!is_digit(text[0]) && text[0] != '-')) return false;
    switch (cell.read().quantity) {
        case quantity::message_id:
        case quantity::time_of_day:
        case quantity::duration: return true;
        default: return false;
    }
}

/// Displays with rules of their own: the number that is shown so is found by trying all of them.
bool enter_as_shown(FieldCell& cell, std::string_view text) {
    constexpr int most_bits = 16;
    const int bits = cell.bits();
    cell.clear();
    if (shows(cell, text)) return true;
    if (bits > most_bits || !has_own_form(cell, text)) return false;
    for (std::uint64_t raw = 0; raw >> bits == 0; ++raw) {
        cell.put(raw);
        if (shows(cell, text)) return true;
    }
    return false;
}

Failure no_such_choice(const FieldCell& cell, std::string_view text) {
    std::vector<std::string> texts;
    for (const CodedChoice& choice : choices_of(cell)) texts.push_back(choice.text);
    return failure("has no ", in_quotes(text), "; ",
                   suggestion(text, texts, concat("there are ", texts.size(), ", see --list")));
}

}  // namespace

Status enter_value(FieldCell& cell, std::string_view typed) {
    const std::string_view text = trimmed(typed);
    if (cell.holds_text()) {
        const bool is_digits = cell.is_corrected() && cell.coding().text == TextLayout::decimals;
        if (text != "-" || !(cell.holds_bytes() || is_digits)) return enter_text(cell, typed);
        cell.clear();
        return done;
    }
    if (means_not_available(cell, text)) {
        cell.clear();
        return done;
    }
    const bool coded = cell.texts() != nullptr;
    if (coded && enter_choice(cell, text, Spelling::exact)) return done;
    if (coded && enter_choice(cell, text, Spelling::alike)) {
        // A code without a text may be shown as "Reserved" where another one is "reserved".
        if (enter_as_shown(cell, text) || enter_choice(cell, text, Spelling::alike)) return done;
        return no_such_choice(cell, text);
    }
    if (text.empty() && enter_as_shown(cell, text)) return done;
    if (text.empty()) return failure("has no value behind the '='; '-' stands for not available");
    for (const auto enter : {enter_date, enter_clock, enter_number})
        if (Outcome outcome = enter(cell, text)) {
            if (*outcome || !enter_as_shown(cell, text)) return *outcome;
            return done;
        }
    if (enter_as_shown(cell, text)) return done;
    return coded ? no_such_choice(cell, text) : failure(in_quotes(text), " does not begin with a number");
}

}  // namespace vistel
