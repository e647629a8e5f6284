#pragma once

/// @file
/// Fields of a message as values.

#include <cstdint>

#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/n2k_msg.h"
#include "pgn_vistel/pgn_db.h"

namespace pgn_vistel {

/// Where a reader stands in a payload.
struct PayloadPosition {
    int byte = 0;  ///< from 0
    int bit = 0;   ///< 0 .. 7, the lowest first
};

/// Payload bytes that count: the record's length, at most 1785.
int payload_length(const N2KMsg& msg);

/// One field cut out of a message and converted, not yet a text.
struct FieldReading {
    DispDataType quantity = quantity::no_quantity;  ///< what the field is a measure of
    UnitId unit = unit::raw_count;                  ///< that the value is in
    PayloadPosition next;                           ///< behind the field
    bool cut_off = false;  ///< the message ends inside the number: the value is not available
};

/// Whether `read_field` can work: a real PGN, a field number, and an entry whose format has a conversion.
bool is_decodable(const N2KMsg& msg, int field, const DDDef* dd);

/// Cuts the field at `at` out of the message and converts it. `bytes` and `bits` are its normalised size.
/// `unit` above 139 or negative: the database's selection. Only what the conversion sets in `value` changes.
FieldReading read_field(QV_N2K_PGN_DB_c& db, const N2KMsg& msg, const DDDef& dd, int bytes, int bits,
                        PayloadPosition at, UnitId unit, ConvValue* value);

/// Text that an enumeration has for a value; null where the number itself is to be shown. Not for flags.
const char* enumeration_text(const DDstrings& set, std::uint32_t value);

/// The number that an enumeration is asked for: the value's low bits, by its type.
std::uint32_t enumeration_value(const ConvValue& value);

/// Walks the fields of one message in payload order: which row comes next, repeating groups, keyed variants,
/// what is shown of proprietary messages, and where the rest of the payload stays undecoded.
///
///     MessageWalk walk(find_pgn_def(msg.pgn), msg);
///     while (walk.next()) { ... decode walk.field(), then walk.position = behind it ... }
///     if (walk.has_undecoded_rest()) { ... show the payload as bytes ... }
class MessageWalk {
  public:
    /// The field that a walk has come to.
    struct Field {
        const FieldDef* row;  ///< of the catalogue
        /// @{ normalised size; both 0 where the value tells
        int bytes, bits;
        /// @}
        int repeat;  ///< round of the repeating group from 1, 0 outside
    };

    /// `pgn` is the message's catalogue row, or null. The message must outlive the walk.
    MessageWalk(const PgnDef* pgn, const N2KMsg& msg);

    /// Goes to the next field; false when the walk has ended.
    bool next();
    /// The field that `next` has gone to.
    const Field& field() const { return field_; }
    /// Whether the walk ended before the payload was covered.
    bool has_undecoded_rest() const { return rest_; }

    PayloadPosition position;  ///< the caller moves it behind the field that it has decoded

  private:
    enum class Verdict { accept, skip, reject };
    Verdict judge_proprietary(const FieldDef& row) const;
    void step();
    bool end(bool rest);

    const N2KMsg& msg_;
    const int length_;
    const FieldDef* row_ = nullptr;  // the row that comes next; null when the walk has ended
    bool fresh_ = true;              // no field has been handed out yet
    bool rest_ = false;
    bool proprietary_ = false;
    int first_ = 0, last_ = 0;  // repeating group, 0 for none
    int limit_ = 2048;          // field number that ends the walk
    int counter_ = 1;
    int round_ = 1;
    PayloadPosition started_;        // where the handed-out field began
    PayloadPosition group_started_;  // where the group's latest round began
    Field field_{};
};

}  // namespace pgn_vistel
