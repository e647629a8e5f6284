#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pgn_vistel/core/decode.h"

namespace vistel {

/// The fields of a message by the corrected definitions, one after the other:
///
///     for (MessageFields fields(msg); fields.next();)
///         if (fields.key() == "model") model = fields.text();
class MessageFields {
  public:
    /// The message must outlive the object.
    explicit MessageFields(const N2KMsg& msg);

    [[nodiscard]] bool next();

    /// `pgn_vistel::core::field_key` of the field.
    std::string_view key() const;
    /// The number of the field, in SI units; nothing where there is none or it is not available.
    [[nodiscard]] std::optional<double> number() const;
    /// What the field shows: the meaning of a code, or a text without what fills it up; UTF-8 in which
    /// U+FFFD stands for control characters. Empty for other fields, and where nothing is known.
    std::string text() const;
    /// Whether the number is a PGN.
    bool names_pgn() const;

  private:
    pgn_vistel::core::MessageWalk walk_;
    pgn_vistel::core::TextScratch scratch_;
    pgn_vistel::core::FieldReading reading_;
    bool is_first_ = true;
};

}  // namespace vistel
