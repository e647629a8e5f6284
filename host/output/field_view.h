#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "pgn_vistel/decode.h"

namespace vistel {

/// One decoded field, ready for an output that wants its parts instead of a line. Texts hold until the next
/// field; nearly all refer to the view itself.
struct FieldView {
    int number;
    std::wstring_view label;
    ConvValue value;
    bool available;
    bool is_text;                       // the value is a text: `text` has it
    std::wstring_view text;             // enumeration text, PGN name or the value's own text; empty for none
    std::wstring_view unit;             // empty for none
    std::span<const std::uint8_t> raw;  // the field's bits, low byte first

    std::array<wchar_t, 160> label_area;
    std::array<wchar_t, 1024> text_area;
    std::array<std::uint8_t, 8> raw_area;
};

/// Reads the fields of one message one after the other.
class FieldViewer {
  public:
    FieldViewer(QV_N2K_PGN_DB_c& db, const pgn_vistel::PgnDef* pgn, const N2KMsg& msg)
        : db_(db), msg_(msg), walk_(pgn, msg) {}

    bool next(FieldView& view);
    /// After the last field: whether a part of the payload is covered by no field.
    bool has_undecoded_rest() const { return walk_.has_undecoded_rest(); }

  private:
    void read_raw(FieldView& view, pgn_vistel::PayloadPosition from, pgn_vistel::PayloadPosition to) const;
    void read_text(FieldView& view, const pgn_vistel::MessageWalk::Field& field,
                   const pgn_vistel::FieldReading& reading);

    QV_N2K_PGN_DB_c& db_;
    const N2KMsg& msg_;
    pgn_vistel::MessageWalk walk_;
};

}  // namespace vistel
