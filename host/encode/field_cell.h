#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "pgn_vistel/decode.h"

namespace vistel {

/// One field of a message under construction, at the place where the walk stands. Everything about it is
/// asked of the decoder, so that what is written is what will be read. As long as the message has its longest
/// length it is under construction, and fields are read as if it ended behind them.
class FieldCell {
  public:
    FieldCell(QV_N2K_PGN_DB_c& db, N2KMsg& msg, const pgn_vistel::MessageWalk::Field& field,
              pgn_vistel::PayloadPosition at)
        : db_(db), msg_(msg), field_(field), at_(at) {}

    const pgn_vistel::DDDef& dd() const { return *field_.row->dd; }
    const pgn_vistel::FieldDef& row() const { return *field_.row; }
    int repeat() const { return field_.repeat; }
    pgn_vistel::PayloadPosition start() const { return at_; }

    /// As decoding shows them, in UTF-8. The value comes with its unit, or alone.
    std::string label() const;
    std::string shown(bool with_unit = false) const;

    /// The value in a unit (the selected one by default). Where the conversion has none, the value is not
    /// available.
    pgn_vistel::FieldReading read(ConvValue& value,
                                  pgn_vistel::UnitId unit = pgn_vistel::unit::selected) const;
    pgn_vistel::PayloadPosition next() const;

    /// Whether the format is one of texts, whatever is in it.
    bool holds_text() const;

    /// Bits that carry a number: at most 64.
    int bits() const;
    std::uint64_t raw() const;
    void put(std::uint64_t raw);

    /// The payload from the field to the end of the longest message.
    std::span<std::uint8_t> bytes();
    /// Says that the message may end behind this many bytes of the field, less than it has.
    void end_behind(int bytes) { written_ = bytes; }
    /// First byte of the payload behind what the field has been given.
    int end() const;

    /// Writes the code for "not available" or an empty text.
    void clear();

  private:
    int length_for_reading() const;

    QV_N2K_PGN_DB_c& db_;
    N2KMsg& msg_;
    const pgn_vistel::MessageWalk::Field field_;
    const pgn_vistel::PayloadPosition at_;
    int written_ = -1;
};

/// The formats whose fields are texts.
enum TextFormat : std::uint32_t {
    short_text = 50,   ///< length in a byte, encoding, text
    medium_text = 51,  ///< length in two bytes, encoding, text
    fixed_text = 63,
    hex_dump = 3002,
};

}  // namespace vistel
