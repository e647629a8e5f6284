#pragma once

/// @file
/// The tables, and what is looked up in them. All of it is constant: any thread may look at any time, and
/// what is found holds for the life of the process.
///
/// Rows are known by where they stand: whoever takes a row wants one that was found here, not a copy of it.

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "pgn_vistel/core/ids.h"
#include "pgn_vistel/n2k_msg.h"

namespace pgn_vistel::core {

/// Tells the variants of one PGN apart. Two 16-bit halves; 0x8000 in a half is "no selector".
///   key1: low half the first selector (control byte, group function code or manufacturer code)
///   key2: low half the industry group, high half the proprietary message or command
///   key3: low half 1 where there is a third selector, high half its value
using SelectorKey = std::uint32_t;
constexpr std::uint16_t no_selector = 0x8000;  ///< no selector in this half
/// @{ of a key
constexpr std::uint16_t low_half(SelectorKey key) {
    return static_cast<std::uint16_t>(key);
}
constexpr std::uint16_t high_half(SelectorKey key) {
    return static_cast<std::uint16_t>(key >> 16);
}
/// @}

/// The first payload word of the messages that the catalogue defines field by field in the proprietary PGNs:
/// manufacturer 137, both reserved bits, industry group 4.
constexpr std::uint16_t own_header = 0x9889;

/// What a message is read by.
enum class Definitions : std::uint8_t {
    fixed,      ///< the catalogue of the text interface: one definition a PGN, whatever a device may send
    corrected,  ///< what devices send: variants by manufacturer, function code and length
};

/// One row of the PGN catalogue.
struct PgnDef {
    std::uint32_t pgn;  ///< parameter group number
    /// @{ which variant of the PGN
    SelectorKey key1, key2, key3;
    /// @}
    const char* name;            ///< ASCII; `pgn_name` is what users see
    std::uint32_t flag_pdu1;     ///< 1 for the addressed PDU format, and for 130816..131071
    std::uint32_t flag_listed;   ///< 1 where `listed` is yes in the table
    std::uint32_t priority;      ///< default priority, 2 .. 7
    std::uint32_t single_frame;  ///< 1 for one CAN frame, 0 for fast packet or transport protocol
};

/// One data dictionary entry: how a field is encoded and what it means.
struct DDDef {
    std::uint32_t dd;  ///< number of the entry
    const char* name;  ///< Latin-1
    DF df;             ///< how the bits encode the value
    /// @{ default size: one of them, or both 0 where the format or the value tells
    std::uint16_t bytes, bits;
    /// @}
};

/// One field of a PGN or of one of its variants.
struct FieldDef {
    std::uint32_t pgn;    ///< parameter group number
    std::uint32_t field;  ///< from 1 in payload order; 0 in the end sentinel alone
    const char* name;     ///< ASCII, at most 127 characters
    /// @{ own size: one of them, or neither
    std::uint16_t bytes, bits;
    /// @}
    const DDDef* dd;  ///< what the field means; never null, an entry 0 where the corrected definition says it
    /// @{ which variant of the PGN
    SelectorKey key1, key2, key3;
    /// @}
    std::uint32_t reserved;  ///< 0
};

/// Fields `first` .. `last` of a PGN repeat until the payload ends.
struct RepeatSetDef {
    std::uint32_t pgn;       ///< parameter group number
    std::uint16_t selector;  ///< group function code or manufacturer code, 255 for none
    /// @{ field number
    std::uint16_t first, last;
    /// @}
    std::uint16_t reserved;  ///< 0
};

/// One enumeration text.
struct ValueText {
    std::uint32_t value;  ///< that the text stands for
    const char* text;     ///< ASCII; null ends a terminated list
};

/// What is shown for a value that an enumeration does not list.
enum EnumerationKind : std::uint32_t {
    ENUM_NUMBER = 0,
    ENUM_ENTRY_BELOW = 1,  ///< the text of the largest listed value below
    ENUM_RESERVED = 2,
    ENUM_FLAGS = 3,  ///< entry i is the text of bit i
    ENUM_UNKNOWN = 4,
    ENUM_NUMBER_TOO = 5,  ///< as ENUM_NUMBER
    /// @{ with the number behind the word
    ENUM_RESERVED_TOO = 6,
    ENUM_UNKNOWN_TOO = 7,
    /// @}
};

/// The enumeration of a dictionary entry, or one that the corrected definitions name.
struct DDstrings {
    std::uint32_t dd;    ///< number of the dictionary entry; 0 for a set of the corrected definitions alone
    std::uint32_t kind;  ///< an `EnumerationKind`
    const ValueText* pairs;  ///< in ascending order, unless the list is terminated
    std::uint32_t count;     ///< 0: the list is terminated
};

/// Where the monitor's stream keys of a PGN lie in the payload.
struct StreamKeyDef {
    std::int32_t pgn;          ///< parameter group number
    std::int32_t position[4];  ///< byte, or -1 for no key; the first may name a special rule
    struct {
        std::int32_t shift, width;  ///< width in bits, 0 for a whole byte
    } bits[4];                      ///< the part of the byte that is the key
};

static_assert(sizeof(void*) != 4 ||
              (sizeof(PgnDef) == 36 && sizeof(FieldDef) == 36 && sizeof(DDstrings) == 16));
static_assert(sizeof(RepeatSetDef) == 12);

// ---- PGNs ----

/// The row that the catalogue's binary search meets first, or null. For a PGN with variants it is one of
/// them.
[[nodiscard]] const PgnDef* find_pgn_def(std::uint32_t pgn);

/// The name that users see: one for all variants. "Unknown" for null. ASCII, not terminated.
[[nodiscard]] std::string_view pgn_name(const PgnDef* row);

/// Whether messages of a PGN travel as fast packets, which the bus does not tell. PGNs that the definitions
/// do not have are taken as single frames, but for the proprietary ranges of fast packets: a wrong guess
/// still shows all bytes, while single frames taken as pieces would be lost.
[[nodiscard]] bool is_fast_packet(std::uint32_t pgn, Definitions set = Definitions::fixed);

/// What tells the stream of a message from others of its PGN and source, an instance say.
using StreamKeys = std::array<std::uint8_t, 4>;
inline constexpr std::uint8_t no_stream_key = 255;  ///< the message has none in this place

/// The stream keys of a message. They are read from the record as it is: the message's length is not asked
/// for.
[[nodiscard]] StreamKeys stream_keys(const N2KMsg& msg);

// ---- fields ----

/// First row of a PGN, or the end sentinel (field 0); never null. Of a PGN with variants the rows of all of
/// them follow: `MessageWalk` knows which of them a message has.
[[nodiscard]] const FieldDef* first_field_row(std::uint32_t pgn);

/// The same among the rows whose key1 has this low half.
[[nodiscard]] const FieldDef* first_field_row_keyed(std::uint32_t pgn, std::uint16_t selector);

/// The row of field number `row->field + delta` of the same PGN, the end sentinel, or null below field 1.
[[nodiscard]] const FieldDef* next_field_row(const FieldDef* row, int delta);

/// Size of a field in one unit, either bytes or bits; both 0 where only the value tells. Nothing may be null.
void normalise_field_size(const FieldDef* row, std::uint32_t pgn, int* bytes, int* bits);
/// The same where `bytes` and `bits` come in with the size that a field has of its own: they are kept unless
/// both are 0. Of `dd`, which may be null, the sizes alone are asked for.
void complete_field_size(std::uint32_t pgn, const DDDef* dd, int* bytes, int* bits);

/// The repeating fields of a PGN, or null.
[[nodiscard]] const RepeatSetDef* find_repeat_set(std::uint32_t pgn);

/// Number of the field that starts at a payload position, or -1. By the sizes of the rows alone: fields whose
/// size only their value tells advance nothing.
[[nodiscard]] int field_at(std::uint32_t pgn, int byte_position, int bit_position);

// ---- the dictionary ----

/// The entry of this number, or null.
[[nodiscard]] const DDDef* find_dictionary_entry(std::uint32_t dd);

/// Physical quantity of a dictionary entry: 0 .. 65, -1 for a number outside the dictionary's ranges.
[[nodiscard]] DispDataType quantity_of_dd(int dd);

/// The same where the payload may say it: entries whose format number stands at `raw` (may be null) or in the
/// two bytes before, which must be readable for these entries.
[[nodiscard]] DispDataType quantity_of_dd(int dd, const std::uint8_t* raw);

/// Texts of a dictionary entry's values, or null.
[[nodiscard]] const DDstrings* find_enumeration(std::uint32_t dd);

/// Text that an enumeration has for a value; null where the number itself is to be shown. Not for flags,
/// whose entry i is the text of bit i. `set` is a row of the table; `enumeration_value` (decode.h) gives the
/// number.
[[nodiscard]] const char* enumeration_text(const DDstrings& set, std::uint32_t value);

/// Quantity of a format by the format's own list, or -1.
[[nodiscard]] DispDataType quantity_of_format(DF df);

/// A format for a quantity, or 65535.
[[nodiscard]] DF format_of_quantity(DispDataType quantity);

// ---- whole tables, in stored order ----

/// @{ a whole table
[[nodiscard]] std::span<const PgnDef> all_pgns();
[[nodiscard]] std::span<const PgnDef> all_corrected_pgns();  ///< by PGN; of PGN 0 what is shown of a maker's
[[nodiscard]] std::span<const FieldDef> all_fields();
[[nodiscard]] std::span<const DDDef> all_dictionary_entries();
[[nodiscard]] std::span<const RepeatSetDef> all_repeat_sets();
[[nodiscard]] std::span<const DDstrings> all_enumerations();
[[nodiscard]] std::span<const StreamKeyDef> all_stream_keys();
[[nodiscard]] std::span<const DF> all_formats();
/// @}

}  // namespace pgn_vistel::core
