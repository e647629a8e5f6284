#pragma once

/// @file
/// How messages of the corrected definitions are laid out, for those who write them.

#include <cstdint>
#include <span>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// The fields of a row of `all_corrected_pgns`, in payload order.
[[nodiscard]] std::span<const FieldDef> fields_of(const PgnDef& definition);

/// The fields of its own message that a field hangs together with; null for none.
struct FieldLinks {
    /// @{ the repeating group that it is in
    const FieldDef *first, *last;
    /// @}
    const FieldDef* count;    ///< has the rounds of that group; without it they go on to the end
    const FieldDef* size;     ///< has this field's size, in units of `size_unit` bits
    std::uint8_t size_unit;   ///< 1 or 8; 0 without `size`
    std::uint8_t size_extra;  ///< bytes that the size counts beside the field
};
/// `field` is one of `fields_of(definition)`.
[[nodiscard]] FieldLinks links_of(const PgnDef& definition, const FieldDef& field);

/// How the bytes of a text lie in a field.
enum class TextLayout : std::uint8_t {
    none,      ///< the field holds a number or a code
    sent,      ///< length of all and encoding in front
    counted,   ///< length of the characters in front, a zero behind
    padded,    ///< characters, 0xFF behind them
    bytes,     ///< shown in hexadecimal
    decimals,  ///< two decimal digits a byte
};

/// How the field is coded that a walk has come to.
struct FieldCoding {
    const FieldDef* row;     ///< of the definition, also where the field is read by one of another message
    const DDstrings* texts;  ///< of its codes, or null
    std::uint32_t high;      ///< is added to a code when its text is looked for
    bool is_number;          ///< `texts` names only some codes, all others are numbers with a unit
    bool is_last;            ///< nothing follows in the definition, and it does not repeat
    bool names_pgn;          ///< the number is a PGN
    TextLayout text;         ///< `none` where the field holds no text
    std::uint8_t header;     ///< bytes in front of a text that is `sent`
    bool has_none;           ///< `none` is the code for "not available"; else the highest one is, if any
    std::int64_t none;
    int bits;      ///< size in the message; 0 where only the value tells
    int own_bits;  ///< the same, whatever another field says of it
};
/// The walk is one over a corrected definition, has come to a field, and its `position` is where that begins.
/// The message is read for what depends on other fields, so it holds as long as these stay as they are.
[[nodiscard]] FieldCoding coding_of(const MessageWalk& walk);

}  // namespace pgn_vistel::core
