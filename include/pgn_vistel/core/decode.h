#pragma once

/// @file
/// Fields of a message as values.
///
/// Everything here is reentrant: tables are constant, a selection of units is passed in and only read, texts
/// lie in the payload or in the caller's scratch. Any number of threads decode side by side with a scratch
/// each. Nothing allocates, and nothing throws: what a message says wrongly is a value that is not available.

#include <array>
#include <cstdint>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/units.h"
#include "pgn_vistel/core/value.h"
#include "pgn_vistel/n2k_msg.h"

namespace pgn_vistel::core {

/// Where a reader stands in a payload.
struct PayloadPosition {
    int byte = 0;  ///< from 0
    int bit = 0;   ///< 0 .. 7, the lowest first

    /// The same place.
    friend bool operator==(PayloadPosition, PayloadPosition) = default;
};

/// Payload bytes that count: the record's length, at most 1785.
[[nodiscard]] int payload_length(const N2KMsg& msg);

/// The definition that a message is read by, or null: of the fixed set the PGN's, see `find_pgn_def`; of the
/// corrected one that of the PGN's variant. A proprietary message of an unknown kind has a definition that
/// says whose it is; its `pgn` is 0.
[[nodiscard]] const PgnDef* find_definition(Definitions set, const N2KMsg& msg);

/// A text that tells its own length, as sent: the length of all, low byte first, a `SentEncoding`, the text.
struct SentText {
    int header;      ///< bytes in front of the text: one for the encoding, the others for the length
    int longest;     ///< bytes of all
    int characters;  ///< that are read at the most
};
/// @{ of `format::text_short` and `format::text_medium`
inline constexpr SentText sent_short_text{2, 252, 125};
inline constexpr SentText sent_medium_text{3, N2K_MAX_PAYLOAD, 891};
/// @}

/// Where reading puts the texts that it makes. What a field shows holds until the next field is read with the
/// same scratch.
///
/// A short or medium text whose header cannot be shows the last good one of its format: each is kept here, so
/// one scratch serves the messages of one stream of traffic in their order. It has about three kilobytes and
/// needs no preparation; its members are the reader's own.
struct TextScratch {
    /// The last good text of a format.
    template <std::size_t size>
    struct Kept {
        int count = 0;                             ///< of characters, see `Text`
        Encoding encoding = Encoding::code_page;   ///< of the bytes
        std::array<std::uint8_t, size + 1> bytes;  ///< one more, for half a character
    };
    Kept<sent_short_text.longest> short_text;    ///< of `format::text_short`
    Kept<sent_medium_text.longest> medium_text;  ///< of `format::text_medium`
    std::array<char, 256> made;                  ///< dates, clock times, hexadecimal dumps
    std::array<std::uint8_t, 256> moved;         ///< the bytes of a text that does not start on a byte
};

/// One field cut out of a message and converted, not yet a text.
struct FieldReading {
    DispDataType quantity = quantity::no_quantity;  ///< what the field is a measure of, 0 .. 65
    UnitId unit = unit::raw_count;                  ///< that the value is in
    PayloadPosition next;                           ///< behind the field; may lie beyond the message
    bool cut_off = false;  ///< the message ends inside the number: the value is not available
    Value value;           ///< see there how long its text holds
};

/// Cuts the field at `at` out of the message and converts it. `field` is a row of the tables, `at` lies
/// within `N2KMsg::data`. `unit` above 140 or negative (`unit::selected`): the selected one. In a unit that
/// the field's format does not serve the value is not available.
///
/// A field that starts inside the message ends with it; one beyond the end is read from the record as it is.
/// What other fields say of it does not count here: fields of the corrected definitions are read by a walk.
[[nodiscard]] FieldReading read_field(const N2KMsg& msg, const FieldDef& field, PayloadPosition at,
                                      const UnitSelection& units, UnitId unit, TextScratch& scratch);

/// The number that an enumeration is asked for: the value's low bits, by its type.
[[nodiscard]] std::uint32_t enumeration_value(const Value& value);

enum class Direction : std::uint8_t;

/// Walks the fields of one message in payload order: which row comes next, repeating groups, keyed variants,
/// what is shown of proprietary messages, and where the rest of the payload stays undecoded.
///
///     MessageWalk walk(find_definition(definitions, msg), msg);
///     while (walk.next()) {
///         const FieldReading reading = walk.read(units, unit::selected, scratch);
///         walk.position = reading.next;
///     }
///     if (walk.has_undecoded_rest()) ...  // show the payload as bytes
///
/// Every walk ends, whatever the message says: behind a field that takes no byte it goes on at the same
/// place, but a round of a repeating group that takes none is the last one.
class MessageWalk {
  public:
    /// A walk that is over.
    MessageWalk() = default;
    /// `pgn` is the message's row, see `find_definition`, or null: then all of it is undecoded. The message
    /// must outlive the walk.
    MessageWalk(const PgnDef* pgn, const N2KMsg& msg);

    /// Goes to the next field; false when the walk has ended. What its predecessor takes is known only to who
    /// has read it, so `position` has to stand behind that by now.
    [[nodiscard]] bool next();

    /// @{ The field that `next` has gone to, and the round of its repeating group from 1, 0 outside. Not
    /// before the first `next`, nor after the last.
    [[nodiscard]] const FieldDef& field() const;
    [[nodiscard]] int repeat() const;
    /// @}

    /// Reads the field, as `read_field` does, and by what other fields say of it: its size, what a direction
    /// refers to. `position` is where it begins.
    [[nodiscard]] FieldReading read(const UnitSelection& units, UnitId unit, TextScratch& scratch) const;

    /// Whether the walk ended before the payload was covered.
    [[nodiscard]] bool has_undecoded_rest() const { return state_.rest; }

    /// The byte from which the payload is undecoded, where it is: of the corrected definitions the one behind
    /// the last field, else the first.
    [[nodiscard]] int undecoded_from() const { return state_.rest_from / 8; }

    PayloadPosition position;  ///< of the field; the caller moves it behind that, and never backward

  private:
    friend struct Stepping;

    /// Positions are counted in bits here.
    struct State {
        const std::uint8_t* data = nullptr;
        int end = 0;                      // of the message
        int position = 0;                 // of the reader
        std::uint16_t row = 0xFFFF;       // by which the field handed out is read
        std::uint16_t planned = 0xFFFF;   // of the message: the same, unless the field is one of another
        std::uint16_t upcoming = 0xFFFF;  // the one to look at next
        bool rest = false;                // the walk ended before the payload was covered
        bool ends_round = false;          // the row handed out is the last of a repeating group
        bool is_picky = false;            // rows are judged: `filter` or `limit` say something
        bool is_covering = false;         // bytes behind the last field are a rest, too
        bool is_resolved = false;         // what follows up to `size` says something of the field
        bool is_padded = false;           // the field fills whole bytes
        Direction direction{};            // that the field is one of
        std::uint32_t high = 0;           // added to the number that an enumeration is asked for
        int size = -1;                    // in bits, where the message tells it
        std::uint64_t known_mask = 0;     // bits that are known of the message that a group function is about
        std::uint64_t known = 0;          // what they are
        std::uint8_t filter = 0;          // of a proprietary message: which of a row's verdicts counts
        int limit = 2048;                 // field number that ends the walk
        int round = 1;
        int rounds = 0x7FFFFFFF;  // that the group has
        int group_started = 0;    // where the group's latest round began
        int rest_from = 0;        // where the undecoded rest begins
    };
    State state_;
};

}  // namespace pgn_vistel::core
