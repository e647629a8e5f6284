#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "pgn_vistel/core/render.h"

namespace vistel {

/// What fields are read with: the units that somebody picked, and memory for texts.
struct ReadingContext {
    pgn_vistel::core::UnitSelection units;
    pgn_vistel::core::TextScratch scratch;
};

/// The label of a field in a round of its repeating group, as decoding shows it.
std::string label_of(const pgn_vistel::core::FieldDef& field, int repeat);

/// One field of a message under construction, at the place where the walk stands. Everything about it is
/// asked of the decoder, so that what is written is what will be read. As long as the message has its longest
/// length it is under construction, and fields are read as if it ended behind them.
class FieldCell {
  public:
    FieldCell(ReadingContext& context, N2KMsg& msg, const pgn_vistel::core::MessageWalk& walk);

    const pgn_vistel::core::DDDef& dd() const { return *row_.dd; }
    const pgn_vistel::core::FieldDef& row() const { return row_; }
    int repeat() const { return repeat_; }
    pgn_vistel::core::PayloadPosition start() const { return at_; }

    /// As decoding shows them, in UTF-8. The value comes with its unit, or alone.
    std::string label() const { return label_of(row_, repeat_); }
    std::string shown(bool with_unit = false,
                      pgn_vistel::core::UnitId unit = pgn_vistel::core::unit::selected) const;

    /// The value in a unit (the selected one by default). Where the conversion has none, the value is not
    /// available.
    pgn_vistel::core::FieldReading read(
        pgn_vistel::core::UnitId unit = pgn_vistel::core::unit::selected) const;
    pgn_vistel::core::PayloadPosition next() const;

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
    ReadingContext& context_;
    N2KMsg& msg_;
    const pgn_vistel::core::FieldDef& row_;
    const int repeat_;
    const pgn_vistel::core::PayloadPosition at_;
    int bytes_;  // size; 0 where it is one in bits, or only the value tells it
    int written_ = -1;
};

}  // namespace vistel
