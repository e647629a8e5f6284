#pragma once

/// @file
/// The corrected definitions row by row, for those who show or compare them: what decoding knows as plans is
/// text and numbers here. Constant, and of no use to decoding itself.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

/// What bits of a payload have to be.
struct MessageCondition {
    std::uint16_t bit;    ///< from the start of the payload
    std::uint8_t width;   ///< in bits
    std::uint64_t value;  ///< that they have
};

/// Fields that repeat.
struct FieldGroup {
    std::uint16_t first, last;  ///< field numbers
    std::uint16_t count;        ///< number of the field that counts the rounds; 0: to the end of the payload
};

/// One corrected definition, or the fields that the keys of one set name.
struct ListedMessage {
    const PgnDef* row;         ///< null for the fields of a set of keys
    std::string_view variant;  ///< unique within the PGN
    std::string_view source;   ///< who says so; "base": the tables of the fixed set
    std::string_view packet;   ///< "single", "fast" or "transport"
    std::span<const MessageCondition> conditions;
    int shortest, longest;  ///< bytes of its messages
    std::span<const FieldGroup> groups;
    std::span<const FieldDef> fields;
};

/// How a field of the corrected definitions counts. A text is empty where there is nothing to say.
struct FieldNotes {
    std::string_view coding;      ///< as in the table of the corrections; "DF93" is a format of the base
    std::string_view resolution;  ///< of (number + offset)
    std::string_view offset;
    std::string_view unit;   ///< ASCII name of the unit that the resolution is in
    std::string_view none;   ///< codes that are no value
    std::string_view texts;  ///< name of the enumeration
    DispDataType quantity;   ///< or, above `quantity::count`, that the payload tells it
};

/// @{ The corrected definitions: by PGN, and for each in the order in which they are tried. In front of them
/// the fields of keys, and what is shown of a maker's message that no definition is known of. `index` is
/// below the count.
[[nodiscard]] std::size_t listed_message_count();
[[nodiscard]] ListedMessage listed_message(std::size_t index);
/// @}

/// Of a field of the corrected definitions: a row of `ListedMessage::fields`.
[[nodiscard]] FieldNotes field_notes(const FieldDef& field);

/// The enumerations of the corrected definitions.
[[nodiscard]] std::span<const DDstrings> all_corrected_enumerations();

/// Name of one of them; of those that come from a dictionary entry its number.
[[nodiscard]] std::string_view enumeration_name(const DDstrings& set);

/// Where an entry of any enumeration has its text from: "base" for the tables of the fixed set, "guess" for
/// what no source attests there, else the source of the correction. `entry` is below the number of entries
/// that the set has.
[[nodiscard]] std::string_view text_source(const DDstrings& set, std::size_t entry);

}  // namespace pgn_vistel::core
