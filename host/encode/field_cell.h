#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "pgn_vistel/core/layout.h"
#include "pgn_vistel/core/render.h"

namespace vistel {

/// What fields are read with: a set of definitions, the units that somebody picked, and memory for texts.
struct ReadingContext {
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
    pgn_vistel::core::UnitSelection units;
    pgn_vistel::core::TextScratch scratch;
};

/// The label of a field in a round of its repeating group, as decoding shows it.
std::string label_of(const pgn_vistel::core::FieldDef& field, int repeat);

/// Writes bits of a payload, as far as there is one. `first` is counted from its start.
void put_bits(N2KMsg& msg, int first, int count, std::uint64_t raw);

/// One field of a message under construction, at the place where the walk stands. Everything about it is
/// asked of the decoder, so that what is written is what will be read. As long as the message has its longest
/// length it is under construction, and fields are read as if it ended behind them.
class FieldCell {
  public:
    FieldCell(ReadingContext& context, N2KMsg& msg, const pgn_vistel::core::MessageWalk& walk);

    const pgn_vistel::core::DDDef& dd() const { return *row().dd; }
    const pgn_vistel::core::FieldDef& row() const { return walk_.field(); }
    int repeat() const { return walk_.repeat(); }
    pgn_vistel::core::PayloadPosition start() const { return walk_.position; }
    const pgn_vistel::core::FieldCoding& coding() const { return coding_; }
    bool is_corrected() const { return context_.definitions == pgn_vistel::core::Definitions::corrected; }

    /// As decoding shows them, in UTF-8. The value comes with its unit, or alone.
    std::string label() const { return label_of(row(), repeat()); }
    std::string shown(bool with_unit = false,
                      pgn_vistel::core::UnitId unit = pgn_vistel::core::unit::selected) const;

    /// The value in a unit (the selected one by default). Where the conversion has none, the value is not
    /// available.
    pgn_vistel::core::FieldReading read(
        pgn_vistel::core::UnitId unit = pgn_vistel::core::unit::selected) const;
    pgn_vistel::core::PayloadPosition next() const;
    /// Whether the value is one: corrected definitions reserve no code beside those that they name.
    bool is_value(const pgn_vistel::core::Value& value) const;

    /// Whether the format is one of texts, whatever is in it; or of bytes in hexadecimal.
    bool holds_text() const;
    bool holds_bytes() const;
    /// Of a text, whether its size is part of it.
    bool holds_sized_text() const;
    /// Whether a message may end in the middle of the field.
    bool may_end_message() const;
    /// Texts of the field's codes, or null.
    const pgn_vistel::core::DDstrings* texts() const { return coding_.texts; }
    bool names_pgn() const { return coding_.names_pgn; }

    /// Bits that carry a number: at most 64.
    int bits() const;
    std::uint64_t raw() const;
    void put(std::uint64_t raw);

    /// Bytes that a text may have: those of the field, or up to the end of the longest message.
    std::size_t room() const;
    /// Writes bytes from the start of the field on, as far as there is room.
    void write(std::span<const std::uint8_t> bytes);
    /// Says that the message may end behind this many bytes of the field, less than it has.
    void end_behind(int bytes) { written_ = bytes; }
    /// First byte of the payload behind what the field has been given.
    int end() const;

    /// Writes the code for "not available" or an empty text.
    void clear();

  private:
    ReadingContext& context_;
    N2KMsg& msg_;
    pgn_vistel::core::MessageWalk walk_;
    pgn_vistel::core::FieldCoding coding_;
    int bytes_;  // size; 0 where it is one in bits, or only the value tells it
    int written_ = -1;
};

}  // namespace vistel
