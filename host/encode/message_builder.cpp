#include "encode/message_builder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "can/identifier.h"
#include "encode/number_entry.h"
#include "encode/suggestions.h"
#include "encode/text_entry.h"
#include "encode/value_entry.h"
#include "output/unit_names.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A payload with nothing in it but how it begins.
void begin_message(N2KMsg& msg, const Bytes& beginning) {
    msg.length = N2K_MAX_PAYLOAD;
    std::memset(msg.data, 0xFF, N2K_MAX_PAYLOAD);
    std::ranges::copy(beginning, msg.data);
}

/// The label without the number of its round, and that number; 0 for none.
struct NumberedLabel {
    std::string_view text;
    int round;
};
NumberedLabel numbered(std::string_view label) {
    const std::size_t sign = label.rfind(" #");
    if (sign == label.npos) return {label, 0};
    int round = 0;
    for (const char c : label.substr(sign + 2)) {
        if (!is_digit(c) || round > N2K_MAX_PAYLOAD) return {label, 0};
        round = round * 10 + (c - '0');
    }
    return round > 0 ? NumberedLabel{label.substr(0, sign), round} : NumberedLabel{label, 0};
}

bool same_label(std::string_view a, std::string_view b) {
    return simplified(trimmed(a)) == simplified(trimmed(b));
}

/// Whether the typed label is the one that decoding shows. The number of a round may be left out.
bool means_label(std::string_view typed, std::string_view shown) {
    const NumberedLabel without_number = numbered(shown);
    return same_label(typed, shown) || (without_number.round > 0 && same_label(typed, without_number.text));
}

class Building {
  public:
    Building(ReadingContext& context, const PgnDef& pgn, const std::vector<TypedField>& fields)
        : context_(context), pgn_(pgn), fields_(fields), used_(fields.size(), false) {
        msg_.pgn = pgn.pgn;
    }

    BuiltMessage build(const Bytes& beginning, bool fills_frame);
    const N2KMsg& message() const { return msg_; }

  private:
    const TypedField* take(std::string_view label);
    bool is_wanted(const MessageWalk& group) const;
    bool is_count(const FieldCell& cell, const std::string& label) const;
    void enter(FieldCell& cell);
    void fill_count();
    void verify();
    void report_full(const std::string& label);
    bool is_of_later_round(std::string_view label) const;
    void report_unused(const Bytes& beginning);

    ReadingContext& context_;
    const PgnDef& pgn_;
    const std::vector<TypedField>& fields_;
    std::vector<bool> used_;
    N2KMsg msg_{};
    int given_ = 0;   // bytes of the beginning, which fields that are not given leave alone
    int length_ = 0;  // bytes up to the last field
    int rounds_ = 0;
    std::vector<std::string> repeated_;  // labels of the repeating group
    bool full_ = false;                  // a field had no room
    bool has_count_ = false;             // a field has the number of rounds
    std::optional<FieldCell> count_;     // that field, unless it is given
    std::vector<std::string> labels_;
    std::vector<std::string> shown_;  // of the fields in their order
    std::vector<std::string> errors_;
};

/// The next one that was typed under this label.
const TypedField* Building::take(std::string_view label) {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (!used_[i] && means_label(fields_[i].label, label)) {
            used_[i] = true;
            return &fields_[i];
        }
    return nullptr;
}

/// Whether something is given for the round of a repeating group that begins here, or for a later one.
bool Building::is_wanted(const MessageWalk& group) const {
    const RepeatSetDef* const set = find_repeat_set(pgn_.pgn);
    for (int i = 0; set != nullptr && i <= set->last - set->first; ++i) {
        const FieldDef* const row = next_field_row(&group.field(), i);
        if (row == nullptr || row->field == 0) break;
        const std::string label = label_of(*row, group.repeat());
        const NumberedLabel shown = numbered(label);
        for (std::size_t k = 0; k < fields_.size(); ++k) {
            if (used_[k]) continue;
            const NumberedLabel typed = numbered(trimmed(fields_[k].label));
            const bool later =
                shown.round > 0 && typed.round >= shown.round && same_label(typed.text, shown.text);
            if (later || means_label(fields_[k].label, label)) return true;
        }
    }
    return false;
}

/// Whether the field has the number of rounds to come: "nItems", or else a "Number of ..." before the group.
bool Building::is_count(const FieldCell& cell, const std::string& label) const {
    const RepeatSetDef* const set = find_repeat_set(pgn_.pgn);
    if (set == nullptr || has_count_ || cell.row().field >= set->first) return false;
    return label == "nItems" ||
           (cell.row().field + 1 == set->first && simplified(label).starts_with("number of "));
}

void Building::enter(FieldCell& cell) {
    const std::string label = cell.label();
    labels_.push_back(label);
    const TypedField* const typed = take(label);
    const bool counts = is_count(cell, label);
    has_count_ = has_count_ || counts;
    const bool begun = cell.start().byte < given_;
    if (typed != nullptr && begun && trimmed(cell.shown(true)) == trimmed(typed->value)) {
        // Several codes may be shown alike ("Unknown"): the bytes that were given say which.
    } else if (typed != nullptr && !cell.holds_text() && cell.end() > N2K_MAX_PAYLOAD) {
        report_full(label);
    } else if (typed != nullptr) {
        if (const Status entered = enter_value(cell, typed->value); !entered) {
            constexpr std::size_t longest_text = 256;
            full_ = cell.holds_text() && cell.bytes().size() < longest_text;
            errors_.push_back(concat(label, " ", entered.error().text));
        }
    } else if (!begun) {
        cell.clear();
        if (counts) count_.emplace(cell);
    }
    if (cell.repeat() == 1) repeated_.push_back(label);
    shown_.push_back(typed != nullptr ? cell.shown() : "");
    // What can have no value and was not given ("Fields 4 thru 12 repeat as needed") is not sent.
    if (typed != nullptr || cell.holds_text() || !served_units(cell).empty())
        length_ = std::max(length_, cell.end());
}

void Building::fill_count() {
    if (!count_ || rounds_ == 0) return;
    const Status entered = enter_value(*count_, std::to_string(rounds_));
    if (!entered) errors_.push_back(concat(count_->label(), " ", entered.error().text));
}

/// Says so of the first field without room.
void Building::report_full(const std::string& label) {
    if (!full_)
        errors_.push_back(label + " does not fit into the " + std::to_string(N2K_MAX_PAYLOAD) +
                          " bytes of a message");
    full_ = true;
}

/// Whether the label is one of the repeating group, for which the message had no further round.
bool Building::is_of_later_round(std::string_view label) const {
    const NumberedLabel typed = numbered(trimmed(label));
    return std::ranges::any_of(repeated_, [&](const std::string& repeated) {
        const NumberedLabel shown = numbered(repeated);
        const bool is_later = shown.round == 0 || typed.round == 0 || typed.round > rounds_;
        return is_later && same_label(typed.text, shown.text);
    });
}

void Building::report_unused(const Bytes& beginning) {
    const std::string number = std::to_string(pgn_.pgn);
    std::vector<std::string> choices;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (used_[i]) continue;
        const std::string& label = fields_[i].label;
        if (is_of_later_round(label)) {
            report_full(label);
            continue;
        }
        const auto count =
            std::ranges::count_if(labels_, [&](const std::string& l) { return means_label(label, l); });
        if (count > 0) {
            const std::string times = count == 1 ? "once" : std::to_string(count) + " times";
            errors_.push_back(in_quotes(label) + " is given more than " + times +
                              ", as often as it is in PGN " + number);
            continue;
        }
        if (choices.empty())
            visit_fields(context_, pgn_, beginning, [&choices](FieldCell& cell) {
                std::string l = cell.label();
                if (std::ranges::find(choices, l) == choices.end()) choices.push_back(std::move(l));
            });
        errors_.push_back(
            "no field " + in_quotes(label) + " in PGN " + number + "; " +
            suggestion(label, choices, "'vistel encode --list " + number + "' shows its fields"));
    }
}

BuiltMessage Building::build(const Bytes& beginning, bool fills_frame) {
    given_ = static_cast<int>(beginning.size());
    length_ = given_;
    begin_message(msg_, beginning);
    MessageWalk walk(&pgn_, msg_);
    while (!full_ && walk.next()) {
        const RepeatSetDef* const set = find_repeat_set(pgn_.pgn);
        if (walk.repeat() > 0 && walk.field().field == set->first) {
            if (walk.position.byte >= given_ && !is_wanted(walk)) break;
            rounds_ = walk.repeat();
        }
        FieldCell cell(context_, msg_, walk);
        enter(cell);
        walk.position = cell.next();
    }
    fill_count();
    report_unused(beginning);
    msg_.length = static_cast<std::uint16_t>(std::min(length_, N2K_MAX_PAYLOAD));
    if (length_ > N2K_MAX_PAYLOAD && !full_)
        errors_.push_back("the message is longer than " + std::to_string(N2K_MAX_PAYLOAD) + " bytes");
    // A payload that was given keeps its length.
    if (fills_frame) msg_.length = std::max<std::uint16_t>(msg_.length, max_frame_bytes);
    if (errors_.empty()) verify();
    if (errors_.empty()) return msg_;
    return Failures{errors_};
}

/// Reads the message again. Which fields it has depends on how it begins, which has been written meanwhile;
/// and one format looks at what is behind its field.
void Building::verify() {
    MessageWalk walk(&pgn_, msg_);
    for (std::size_t i = 0; i < labels_.size() && walk.position.byte < msg_.length; ++i) {
        if (!walk.next()) {
            errors_.push_back(labels_[0] + " has a value for which decoding shows other fields, or none");
            return;
        }
        const FieldCell cell(context_, msg_, walk);
        if (cell.label() != labels_[i] || (!shown_[i].empty() && cell.shown() != shown_[i])) {
            errors_.push_back(labels_[i] + " would be decoded as " +
                              in_quotes(cell.label() + ": " + cell.shown()));
            return;
        }
        walk.position = cell.next();
    }
}

/// How a payload begins that has this selector.
Bytes beginning_of(const FieldDef& first, std::uint16_t selector) {
    if (first.dd->dd != dd::manufacturer_code) return {static_cast<std::uint8_t>(selector)};
    constexpr std::uint16_t code_bits = 0x7FF;
    const int header = (own_header & ~code_bits) | selector;
    return {static_cast<std::uint8_t>(header), static_cast<std::uint8_t>(header >> 8)};
}

}  // namespace

std::vector<Bytes> variants_of(const PgnDef& pgn) {
    std::vector<Bytes> result;
    ReadingContext context;
    N2KMsg msg{};
    msg.pgn = pgn.pgn;
    // Fields that everybody's message has, where those of the maker have more.
    begin_message(msg, {});
    MessageWalk anybody(&pgn, msg);
    bool any = false;
    while (anybody.next()) {
        FieldCell cell(context, msg, anybody);
        cell.clear();
        anybody.position = cell.next();
        any = true;
    }
    if (any && anybody.has_undecoded_rest()) result.emplace_back();

    for (const FieldDef& row : all_fields()) {
        if (row.pgn != pgn.pgn || row.field != 1) continue;
        const std::uint16_t selector = low_half(row.key1);
        if (selector == no_selector) continue;
        const Bytes beginning = beginning_of(row, selector);
        begin_message(msg, beginning);
        MessageWalk walk(&pgn, msg);
        if (!walk.next() || low_half(walk.field().key1) != selector) continue;
        if (std::ranges::find(result, beginning) == result.end()) result.push_back(beginning);
    }
    if (result.empty()) result.emplace_back();
    return result;
}

void visit_fields(ReadingContext& context, const PgnDef& pgn, const Bytes& variant,
                  const std::function<void(FieldCell&)>& visit) {
    N2KMsg msg{};
    msg.pgn = pgn.pgn;
    begin_message(msg, variant);
    MessageWalk walk(&pgn, msg);
    while (walk.next() && walk.repeat() <= 1) {
        FieldCell cell(context, msg, walk);
        if (cell.start().byte >= static_cast<int>(variant.size())) cell.clear();
        FieldCell shown = cell;
        const N2KMsg before = msg;
        visit(shown);
        msg = before;
        walk.position = cell.next();
    }
}

BuiltMessage build_message(ReadingContext& context, std::uint32_t number, const PgnDef* pgn,
                           const std::vector<TypedField>& fields) {
    std::vector<TypedField> rest;
    std::optional<Bytes> payload;
    for (const TypedField& field : fields) {
        if (!same_label(field.label, payload_label)) {
            rest.push_back(field);
            continue;
        }
        const auto bytes = bytes_of(field.value);
        if (!bytes || bytes->size() > N2K_MAX_PAYLOAD || payload)
            return Failures{{concat(payload_label, " takes the bytes of the payload once, at most ",
                                    unsigned{N2K_MAX_PAYLOAD}, ", as in 01 02 FF")}};
        payload = bytes;
    }
    if (pgn == nullptr && (!rest.empty() || !payload))
        return Failures{
            {concat("PGN ", number, " is not in the catalogue; only its bytes can be given, as in ",
                    "\"Data=01 02 FF\"")}};
    if (payload && rest.empty()) {  // as it is, however short
        N2KMsg msg{};
        msg.pgn = number;
        begin_message(msg, *payload);
        msg.length = static_cast<std::uint16_t>(payload->size());
        return msg;
    }
    // An ISO Request has three bytes, by ISO 11783-3.
    const bool fills_frame = !is_fast_packet(number) && !payload && number != pgn::iso_request;
    std::optional<BuiltMessage> best;
    const auto errors_of = [](const BuiltMessage& built) { return built ? 0 : built.error().texts.size(); };
    const auto build_from = [&](const Bytes& beginning) {
        Building building(context, *pgn, rest);
        BuiltMessage built = building.build(beginning, fills_frame);
        if (!best || errors_of(built) < errors_of(*best)) best = std::move(built);
        return building.message();
    };
    if (!payload) {
        for (const Bytes& variant : variants_of(*pgn)) build_from(variant);
        return *best;
    }
    const N2KMsg built = build_from(*payload);
    // Fields may have changed what tells the variant.
    Bytes changed = *payload;
    std::copy_n(built.data, std::min(sizeof own_header, changed.size()), changed.begin());
    if (changed != *payload) build_from(changed);
    return *best;
}

}  // namespace vistel
