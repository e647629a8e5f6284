#include "pgn_vistel/core/listing.h"

#include <cassert>
#include <iterator>

#include "core/tables.h"

namespace pgn_vistel::core {

namespace {

// Texts end with a zero and are named by their offset, so that the tables hold no pointers.
constexpr char texts[] =
#include "listing_texts.inc"
    ;

std::string_view text_at(std::uint16_t offset) {
    return texts + offset;
}

struct Message {
    std::uint16_t row;  ///< or `end_row`
    std::uint16_t variant, source, packet;
    std::uint16_t first_condition, conditions;
    std::uint16_t shortest, longest;
    std::uint16_t first_group, groups;
    std::uint16_t first_field, fields;
};

constexpr Message messages[] = {
#include "listed_messages.inc"
};

constexpr MessageCondition conditions[] = {
#include "listed_conditions.inc"
};

constexpr FieldGroup groups[] = {
#include "listed_groups.inc"
};

struct Notes {
    std::uint16_t coding, resolution, offset, unit, none, texts;
    std::uint8_t quantity;
};

constexpr Notes notes[] = {
#include "field_notes.inc"
};

constexpr std::uint16_t note_index[] = {
#include "field_note_index.inc"
};

constexpr std::uint16_t enumeration_names[] = {
#include "enum_names.inc"
};

constexpr std::uint16_t sources[] = {
#include "text_sources.inc"
};

constexpr std::uint8_t entry_sources[] = {
#include "entry_sources.inc"
};

}  // namespace

std::size_t listed_message_count() {
    return std::size(messages);
}

ListedMessage listed_message(std::size_t index) {
    assert(index < std::size(messages));
    const Message& m = messages[index];
    return {m.row != end_row ? &pgn_row(m.row) : nullptr,
            text_at(m.variant),
            text_at(m.source),
            text_at(m.packet),
            std::span(conditions).subspan(m.first_condition, m.conditions),
            m.shortest,
            m.longest,
            std::span(groups).subspan(m.first_group, m.groups),
            {&field_row(m.first_field), m.fields}};
}

FieldNotes field_notes(const FieldDef& field) {
    const std::ptrdiff_t place = &field - &field_row(base_fields);
    assert(place >= 0 && place < std::ssize(note_index));
    const Notes& n = notes[note_index[place]];
    return {text_at(n.coding), text_at(n.resolution), text_at(n.offset), text_at(n.unit),
            text_at(n.none),   text_at(n.texts),      n.quantity};
}

std::span<const DDstrings> all_corrected_enumerations() {
    return {enum_sets + base_sets, std::size(enumeration_names)};
}

std::string_view enumeration_name(const DDstrings& set) {
    const std::ptrdiff_t place = &set - (enum_sets + base_sets);
    assert(place >= 0 && place < std::ssize(enumeration_names));
    return text_at(enumeration_names[place]);
}

std::string_view text_source(const DDstrings& set, std::size_t entry) {
    return text_at(sources[entry_sources[set_plans[&set - enum_sets].first_entry + entry]]);
}

}  // namespace pgn_vistel::core
