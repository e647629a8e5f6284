#include "encode/message_builder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "can/identifier.h"
#include "encode/definitions.h"
#include "encode/labels.h"
#include "encode/number_entry.h"
#include "encode/suggestions.h"
#include "encode/text_entry.h"
#include "encode/value_entry.h"
#include "output/unit_names.h"
#include "text/quotes.h"
#include "text/utf8.h"
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

class Building {
  public:
    Building(ReadingContext& context, std::uint32_t number, const PgnDef& pgn,
             const std::vector<TypedField>& fields)
        : context_(context), pgn_(pgn), fields_(fields), used_(fields.size(), false) {
        msg_.pgn = number;
    }

    BuiltMessage build(const Bytes& beginning, bool fills_frame);
    /// By a corrected definition; `rest` are the bytes behind its fields.
    BuiltMessage build_corrected(const std::optional<Bytes>& rest, bool fills_frame);
    const N2KMsg& message() const { return msg_; }

  private:
    /// A field of a corrected definition that has been written.
    struct Entered {
        const FieldDef* row;
        FieldCell cell;
        bool typed;
    };

    /// A field at a place of the payload.
    struct Place {
        const FieldDef* row;
        PayloadPosition position;
        friend bool operator==(const Place&, const Place&) = default;
    };

    const TypedField* find(std::string_view label) const;
    const TypedField* take(std::string_view label);
    bool is_corrected() const { return context_.definitions == Definitions::corrected; }
    std::vector<const FieldDef*> rows_of_group(const MessageWalk& walk) const;
    bool is_wanted(const MessageWalk& group) const;
    int wanted_rounds(const MessageWalk& group) const;
    Entered* entered(const FieldDef* row);
    bool settle(const MessageWalk& walk, const FieldCoding& coding, const FieldLinks& links);
    std::uint64_t size_wanted(const MessageWalk& walk, const FieldCoding& coding) const;
    bool enter_typed(FieldCell& cell, const std::string& label, const std::string& value);
    void enter_corrected(FieldCell& cell);
    bool is_count(const FieldCell& cell, const std::string& label) const;
    void enter(FieldCell& cell);
    void fill_count();
    BuiltMessage finish(bool fills_frame, int most);
    void verify();
    bool is_read_by_definition();
    void report_full(const std::string& label);
    bool is_of_later_round(std::string_view label) const;
    bool has_typed_count() const;
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
    std::span<const MessageCondition> conditions_;
    bool is_again_ = false;          // the message has been built once
    bool depends_on_later_ = false;  // a field
    std::vector<Entered> entered_;
    std::vector<Place> settled_;  // fields for which the ones that they depend on have been written
    std::vector<std::string> labels_;
    std::vector<std::string> shown_;  // of the fields in their order
    std::vector<std::string> errors_;
};

/// The next one that was typed under this label.
const TypedField* Building::find(std::string_view label) const {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (!used_[i] && means_label(fields_[i].label, label)) return &fields_[i];
    return nullptr;
}

const TypedField* Building::take(std::string_view label) {
    const TypedField* const found = find(label);
    if (found != nullptr) used_[static_cast<std::size_t>(found - fields_.data())] = true;
    return found;
}

/// The rows of the repeating group whose first field the walk has come to.
std::vector<const FieldDef*> Building::rows_of_group(const MessageWalk& walk) const {
    std::vector<const FieldDef*> rows;
    if (is_corrected()) {
        const FieldLinks links = links_of(pgn_, *coding_of(walk).row);
        for (const FieldDef* row = links.first; row != nullptr && row <= links.last; ++row)
            rows.push_back(row);
        return rows;
    }
    const RepeatSetDef* const set = find_repeat_set(pgn_.pgn);
    for (int i = 0; set != nullptr && i <= set->last - set->first; ++i) {
        const FieldDef* const row = next_field_row(&walk.field(), i);
        if (row == nullptr || row->field == 0) break;
        rows.push_back(row);
    }
    return rows;
}

/// Whether something is given for the round of a repeating group that begins here, or for a later one.
bool Building::is_wanted(const MessageWalk& group) const {
    for (const FieldDef* const row : rows_of_group(group)) {
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

/// Rounds of the group that begins here for which something is given: up to the highest number, or as many as
/// one of its labels stands there without. A label stands for one field of the message.
int Building::wanted_rounds(const MessageWalk& group) const {
    int rounds = 0;
    for (const FieldDef* const row : rows_of_group(group)) {
        const std::string label = label_of(*row, 1);
        const std::string_view name = numbered(label).text;
        int without_number = 0;
        for (std::size_t k = 0; k < fields_.size(); ++k) {
            const NumberedLabel typed = numbered(trimmed(fields_[k].label));
            if (used_[k] || !same_label(typed.text, name)) continue;
            rounds = std::max(rounds, typed.round);
            without_number += typed.round == 0;
        }
        rounds = std::max(rounds, without_number);
    }
    return rounds;
}

/// Whether the field has the number of rounds to come: "nItems", or else a "Number of ..." before the group.
bool Building::is_count(const FieldCell& cell, const std::string& label) const {
    const RepeatSetDef* const set = find_repeat_set(pgn_.pgn);
    if (set == nullptr || has_count_ || cell.row().field >= set->first) return false;
    return label == "nItems" ||
           (cell.row().field + 1 == set->first && simplified(label).starts_with("number of "));
}

/// Writes what was typed. False where that cannot be, which is told.
bool Building::enter_typed(FieldCell& cell, const std::string& label, const std::string& value) {
    if (!cell.holds_text() && cell.end() > N2K_MAX_PAYLOAD) {
        report_full(label);
        return false;
    }
    const Status entered = enter_value(cell, value);
    if (entered) return true;
    constexpr std::size_t longest_text = 256;
    full_ = cell.holds_text() && cell.room() < longest_text;
    errors_.push_back(concat(label, " ", entered.error().text));
    return false;
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
    } else if (typed != nullptr) {
        enter_typed(cell, label, typed->value);
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

Building::Entered* Building::entered(const FieldDef* row) {
    const auto found = std::find_if(entered_.rbegin(), entered_.rend(),
                                    [row](const Entered& each) { return each.row == row; });
    return found != entered_.rend() ? &*found : nullptr;
}

/// Bits of a field whose size another one tells: as many as its key has, else as what was typed takes.
std::uint64_t Building::size_wanted(const MessageWalk& walk, const FieldCoding& coding) const {
    if (coding.own_bits > 0) return static_cast<std::uint64_t>(coding.own_bits);
    const TypedField* const typed = find(label_of(walk.field(), walk.repeat()));
    if (typed == nullptr || coding.text == TextLayout::none) return 0;
    const auto bytes = bytes_of(typed->value);
    if (coding.text == TextLayout::bytes) return bytes ? 8 * bytes->size() : 0;
    return 8 * utf16_of(typed->value).value_or(u"").size();
}

/// Writes what this field depends on, unless it is given: the rounds of the group that begins here, the size.
/// True where the walk has to come here again.
bool Building::settle(const MessageWalk& walk, const FieldCoding& coding, const FieldLinks& links) {
    const Place place{coding.row, walk.position};
    if (std::ranges::find(settled_, place) != settled_.end()) return false;
    const bool begins_group = coding.row == links.first && walk.repeat() == 1;
    Entered* const count = begins_group ? entered(links.count) : nullptr;
    Entered* const size = entered(links.size);
    const bool has_count = count != nullptr && !count->typed, has_size = size != nullptr && !size->typed;
    if (!has_count && !has_size) return false;
    settled_.push_back(place);
    if (has_count) count->cell.put(static_cast<std::uint64_t>(wanted_rounds(walk)));
    if (has_size) {
        const std::uint64_t bits = size_wanted(walk, coding) + 8u * links.size_extra;
        size->cell.put((bits + links.size_unit - 1) / links.size_unit);
    }
    return true;
}

void Building::enter_corrected(FieldCell& cell) {
    const std::string label = cell.label();
    labels_.push_back(label);
    const TypedField* const typed = take(label);
    if (typed != nullptr) {
        if (enter_typed(cell, label, typed->value) && !hold(conditions_, msg_)) {
            // Several codes may be shown alike: that of the variant is meant.
            const std::string entered = cell.shown();
            apply(conditions_, msg_);
            if (cell.shown() != entered)
                errors_.push_back(concat(label, " is ", in_quotes(cell.shown()), " in ",
                                         in_quotes(std::string(pgn_name(&pgn_)))));
        }
    } else {
        cell.clear();
        // A group is only come to where there is a round of it.
        if (counts_rounds(pgn_, *cell.coding().row)) cell.put(1);
        apply(conditions_, msg_);
    }
    if (cell.repeat() == 1) repeated_.push_back(label);
    shown_.push_back(typed != nullptr ? cell.shown() : "");
    entered_.push_back({cell.coding().row, cell, typed != nullptr});
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

bool Building::has_typed_count() const {
    return std::ranges::any_of(
        entered_, [this](const Entered& each) { return each.typed && counts_rounds(pgn_, *each.row); });
}

void Building::report_unused(const Bytes& beginning) {
    const std::string number = std::to_string(pgn_.pgn);
    std::vector<std::string> choices;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (used_[i]) continue;
        const std::string& label = fields_[i].label;
        if (is_of_later_round(label)) {
            if (has_typed_count() && length_ < N2K_MAX_PAYLOAD)
                errors_.push_back(concat(in_quotes(label), " has a round more than the count says"));
            else
                report_full(label);
            continue;
        }
        const auto count =
            std::ranges::count_if(labels_, [&](const std::string& l) { return means_label(label, l); });
        if (count > 0) {
            const auto typed = std::ranges::count_if(fields_, [&](const TypedField& field) {
                return means_label(field.label, label) || means_label(label, field.label);
            });
            std::string error = concat(
                in_quotes(label), " is typed ", typed == 2 ? "twice" : std::to_string(typed) + " times",
                ", but PGN ", number, " has it ", count == 1 ? "once" : std::to_string(count) + " times");
            if (std::ranges::find(errors_, error) == errors_.end()) errors_.push_back(std::move(error));
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
    return finish(fills_frame, N2K_MAX_PAYLOAD);
}

BuiltMessage Building::build_corrected(const std::optional<Bytes>& rest, bool fills_frame) {
    const ListedMessage message = listed(pgn_);
    const int most = message.longest > 0 ? message.longest : N2K_MAX_PAYLOAD;
    conditions_ = message.conditions;
    if (!is_again_) begin_message(msg_, {});
    apply(conditions_, msg_);
    MessageWalk walk(&pgn_, msg_);
    while (!full_) {
        const MessageWalk before = walk;
        if (!walk.next()) break;
        const FieldCoding coding = coding_of(walk);
        const FieldLinks links = links_of(pgn_, *coding.row);
        depends_on_later_ |= coding.high != 0;
        if (settle(walk, coding, links)) {
            walk = before;
            continue;
        }
        if (walk.repeat() > 0 && coding.row == links.first) {
            const Entered* const count = entered(links.count);
            if (count == nullptr && !is_wanted(walk)) break;
            // A count that is given stays, but rounds are sent as far as something is given.
            const bool all_used = std::ranges::find(used_, false) == used_.end();
            if (count != nullptr && count->typed && all_used) break;
            rounds_ = walk.repeat();
        }
        FieldCell cell(context_, msg_, walk);
        enter_corrected(cell);
        // How the next one is read may depend on this one.
        walk = before;
        if (!walk.next()) break;
        walk.position = cell.next();
    }
    if (depends_on_later_ && !is_again_) {
        // Texts of a code may depend on a field behind it, which is there now.
        Building again(context_, msg_.pgn, pgn_, fields_);
        again.msg_ = msg_;
        again.is_again_ = true;
        return again.build_corrected(rest, fills_frame);
    }
    std::fill(msg_.data + std::min(length_, N2K_MAX_PAYLOAD), msg_.data + N2K_MAX_PAYLOAD,
              std::uint8_t{0xFF});
    if (rest) {
        const int at = walk.has_undecoded_rest() ? walk.undecoded_from() : length_;
        const auto room = static_cast<std::size_t>(std::max(0, N2K_MAX_PAYLOAD - at));
        std::copy_n(rest->begin(), std::min(rest->size(), room), msg_.data + at);
        length_ = std::max(length_, at + static_cast<int>(rest->size()));
    }
    report_unused({});
    length_ = std::max(length_, message.shortest);
    return finish(fills_frame && most >= int{max_frame_bytes}, most);
}

BuiltMessage Building::finish(bool fills_frame, int most) {
    msg_.length = static_cast<std::uint16_t>(std::min(length_, N2K_MAX_PAYLOAD));
    if (length_ > most && !full_)
        errors_.push_back("the message is longer than " + std::to_string(most) + " bytes");
    // A payload that was given keeps its length.
    if (fills_frame) msg_.length = std::max<std::uint16_t>(msg_.length, max_frame_bytes);
    if (errors_.empty() && (!is_corrected() || is_read_by_definition())) verify();
    if (errors_.empty()) return msg_;
    return Failures{errors_};
}

/// Other conditions may hold as well.
bool Building::is_read_by_definition() {
    const PgnDef* const found = find_definition(Definitions::corrected, msg_);
    const bool is_of_maker = found != nullptr && found->pgn == 0 && pgn_.pgn == 0;
    if (found != &pgn_ && !is_of_maker)
        errors_.push_back(
            concat("the message would be decoded as ", in_quotes(std::string(pgn_name(found)))));
    return errors_.empty();
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
    ReadingContext context{Definitions::fixed, {}, {}};
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
    const bool is_corrected = context.definitions == Definitions::corrected;
    const std::span<const MessageCondition> conditions =
        is_corrected ? listed(pgn).conditions : std::span<const MessageCondition>();
    begin_message(msg, variant);
    apply(conditions, msg);
    MessageWalk walk(&pgn, msg);
    while (walk.next() && walk.repeat() <= 1) {
        FieldCell cell(context, msg, walk);
        if (cell.start().byte >= static_cast<int>(variant.size())) cell.clear();
        if (is_corrected && counts_rounds(pgn, *cell.coding().row)) cell.put(1);
        apply(conditions, msg);
        FieldCell shown = cell;
        const N2KMsg before = msg;
        visit(shown);
        msg = before;
        walk.position = cell.next();
    }
}

namespace {

/// Whether a field of the definition has the label of the payload; then that is meant.
bool has_payload_field(const PgnDef& definition) {
    return std::ranges::any_of(fields_of(definition), [](const FieldDef& row) {
        return same_label(label_of(row, 0), payload_label);
    });
}

/// The fields that were typed, less the payload as bytes.
struct TypedParts {
    std::vector<TypedField> fields;
    std::optional<Bytes> payload;
};
Result<TypedParts, Failures> parts_of(const std::vector<TypedField>& fields, bool has_field = false) {
    TypedParts parts;
    for (const TypedField& field : fields) {
        if (has_field || !same_label(field.label, payload_label)) {
            parts.fields.push_back(field);
            continue;
        }
        const auto bytes = bytes_of(field.value);
        if (!bytes || bytes->size() > N2K_MAX_PAYLOAD || parts.payload)
            return Failures{{concat(payload_label, " takes the bytes of the payload once, at most ",
                                    unsigned{N2K_MAX_PAYLOAD}, ", as in 01 02 FF")}};
        parts.payload = bytes;
    }
    return parts;
}

/// A message of these bytes, however short.
N2KMsg message_of(std::uint32_t number, const Bytes& payload) {
    N2KMsg msg{};
    msg.pgn = number;
    begin_message(msg, payload);
    msg.length = static_cast<std::uint16_t>(payload.size());
    return msg;
}

Failures not_in_catalogue(std::uint32_t number) {
    return {{concat("PGN ", number, " is not in the catalogue; only its bytes can be given, as in ",
                    "\"Data=01 02 FF\"")}};
}

/// An ISO Request has three bytes, by ISO 11783-3.
bool has_whole_frame(std::uint32_t number, Definitions definitions) {
    return !is_fast_packet(number, definitions) && number != pgn::iso_request;
}

}  // namespace

BuiltMessage build_message(ReadingContext& context, std::uint32_t number, const PgnDef* pgn,
                           const std::vector<TypedField>& fields) {
    Result<TypedParts, Failures> parts = parts_of(fields);
    if (!parts) return parts.error();
    const auto& [rest, payload] = *parts;
    if (pgn == nullptr && (!rest.empty() || !payload)) return not_in_catalogue(number);
    if (payload && rest.empty()) return message_of(number, *payload);
    const bool fills_frame = has_whole_frame(number, Definitions::fixed) && !payload;
    std::optional<BuiltMessage> best;
    const auto errors_of = [](const BuiltMessage& built) { return built ? 0 : built.error().texts.size(); };
    const auto build_from = [&](const Bytes& beginning) {
        Building building(context, number, *pgn, (*parts).fields);
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

BuiltMessage build_corrected(ReadingContext& context, std::uint32_t number, const PgnDef& pgn,
                             const std::vector<TypedField>& fields) {
    Result<TypedParts, Failures> parts = parts_of(fields, has_payload_field(pgn));
    if (!parts) return parts.error();
    Building building(context, number, pgn, parts->fields);
    return building.build_corrected(parts->payload,
                                    has_whole_frame(number, Definitions::corrected) && !parts->payload);
}

BuiltMessage build_by_any(ReadingContext& context, std::uint32_t number,
                          const std::vector<const PgnDef*>& definitions,
                          const std::vector<TypedField>& fields) {
    const bool has_field = definitions.size() == 1 && has_payload_field(*definitions[0]);
    Result<TypedParts, Failures> parts = parts_of(fields, has_field);
    if (!parts) return parts.error();
    if (parts->payload && parts->fields.empty()) return message_of(number, *parts->payload);
    if (definitions.empty()) return not_in_catalogue(number);
    std::optional<BuiltMessage> best;
    const PgnDef* nearest = nullptr;
    std::vector<std::string> fitting;
    for (const PgnDef* const definition : definitions) {
        if (definitions.size() > 1 && fields_of(*definition).empty()) continue;
        const bool is_of_maker = definition->pgn == 0;  // of whom nothing else is known
        if (is_of_maker && !parts->payload) continue;
        BuiltMessage built = build_corrected(context, number, *definition, fields);
        if (built && parts->payload && (has_payload_field(*definition) || is_of_maker)) return built;
        if (built) fitting.emplace_back(pgn_name(definition));
        if (built || !best || (!*best && built.error().texts.size() < best->error().texts.size())) {
            best = std::move(built);
            nearest = definition;
        }
    }
    if (!best)
        return Failures{{concat("PGN ", number,
                                " is not in the catalogue; only its maker and its bytes can be given, as in ",
                                "\"Manufacturer Code=Furuno\" \"Data=01 02 FF\"")}};
    // Of one name, the last is the most general.
    if (std::ranges::any_of(fitting, [&](const std::string& name) { return name != fitting[0]; })) {
        std::string names;
        for (const std::string& name : fitting) names += (names.empty() ? "" : ", ") + in_quotes(name);
        return Failures{{concat("PGN ", number, " has several variants that fit: ", names,
                                "; give a name in place of the number, or a field that tells them apart")}};
    }
    if (*best || definitions.size() == 1) return *best;
    Failures failures = best->error();
    failures.texts.push_back(concat("of the variants of PGN ", number, " ",
                                    in_quotes(std::string(pgn_name(nearest))), " comes nearest; ",
                                    "'vistel encode --list ", number, "' names them"));
    return failures;
}

}  // namespace vistel
