#pragma once

#include <array>
#include <string>
#include <string_view>

#include "pgn_vistel/core/decode.h"
#include "pgn_vistel/core/render.h"

namespace vistel {

/// The fields of one message as a person reads them, one after the other:
///
///     MessageView view(msg, units, definitions);
///     while (view.next()) ... view.label(), view.value()
class MessageView {
  public:
    /// Message and units must outlive the object.
    MessageView(const N2KMsg& msg, const pgn_vistel::core::UnitSelection& units,
                pgn_vistel::core::Definitions definitions);

    /// What the PGN is called; "Unknown PGN" where it is not known.
    std::string_view name() const;

    [[nodiscard]] bool next();

    std::string label() const;
    /// With its unit; U+FFFD stands for control characters.
    std::string value() const;
    /// The value in another unit.
    std::string value_in(pgn_vistel::core::UnitId unit) const;
    /// Whether there is a value, and one that tells something: no filler between fields, no counter.
    bool is_telling() const;

    /// The unit of the value and the quantity that it is one of.
    const pgn_vistel::core::FieldReading& reading() const { return reading_; }
    const pgn_vistel::core::FieldDef& field() const { return walk_.field(); }
    /// @{ in bits of the payload
    int first_bit() const { return from_.byte * 8 + from_.bit; }
    int behind_bit() const { return reading_.next.byte * 8 + reading_.next.bit; }
    /// @}
    /// The bits of the field as bytes, the low one first: "1A 07".
    std::string raw() const;

    /// Bytes that no field covers, behind the last field; empty where there are none.
    std::string undecoded() const;

  private:
    const N2KMsg& msg_;
    const pgn_vistel::core::UnitSelection& units_;
    const pgn_vistel::core::PgnDef* row_;
    pgn_vistel::core::MessageWalk walk_;
    mutable pgn_vistel::core::TextScratch scratch_;
    pgn_vistel::core::FieldReading reading_;
    pgn_vistel::core::PayloadPosition from_;
    bool is_first_ = true;
};

/// The fields that tell something, in one line: "Heading 123.4 °M, Deviation 1.5 °E".
std::string summary_of(const N2KMsg& msg, const pgn_vistel::core::UnitSelection& units,
                       pgn_vistel::core::Definitions definitions);

/// "1A 07 FF"
std::string spaced_bytes(const std::uint8_t* bytes, int count);

}  // namespace vistel
