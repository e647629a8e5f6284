#pragma once

#include <functional>
#include <string>
#include <vector>

#include "encode/field_cell.h"
#include "text/result.h"

namespace vistel {

/// A field as somebody typed it.
struct TypedField {
    std::string label;
    std::string value;
};

/// Label of the payload as bytes, which decoding shows where no field covers it.
constexpr std::string_view payload_label = "Data";

/// Why a message could not be built: all that is wrong with it.
struct Failures {
    std::vector<std::string> texts;
};
using BuiltMessage = Result<N2KMsg, Failures>;

/// Builds the payload of a message by the walk that decoding does over it, and by the fixed definitions.
///
/// Labels are those that decoding shows; where it shows one several times, the n-th of them is the n-th
/// field. Fields that are not given are left not available. A round of a repeating group is written when a
/// field of it, or of a later one, is given; its count ("nItems", or a "Number of ..." right before the
/// group) is filled in unless given. `pgn` may be null: only the bytes can be given then.
BuiltMessage build_message(ReadingContext& context, std::uint32_t number, const pgn_vistel::core::PgnDef* pgn,
                           const std::vector<TypedField>& fields);

/// The same by a corrected definition; the bits that tell it from other variants are filled in, and so are
/// counts of repeating groups and sizes of fields unless they are given. The payload label stands for the
/// bytes behind the fields. Where `pgn` is a row of PGN 0, the message is a proprietary one of `number`.
BuiltMessage build_corrected(ReadingContext& context, std::uint32_t number,
                             const pgn_vistel::core::PgnDef& pgn, const std::vector<TypedField>& fields);

/// The same by the one of several definitions that the fields fit; an error that names them where several do.
/// The payload label alone gives the whole payload.
BuiltMessage build_by_any(ReadingContext& context, std::uint32_t number,
                          const std::vector<const pgn_vistel::core::PgnDef*>& definitions,
                          const std::vector<TypedField>& fields);

/// Visits the fields of an empty message, of a repeating group the first round. Of several variants of a PGN,
/// those of the one that begins with `variant`.
void visit_fields(ReadingContext& context, const pgn_vistel::core::PgnDef& pgn,
                  const std::vector<std::uint8_t>& variant, const std::function<void(FieldCell&)>& visit);

/// The payload beginnings that tell the variants of a PGN apart, as far as decoding does.
std::vector<std::vector<std::uint8_t>> variants_of(const pgn_vistel::core::PgnDef& pgn);

}  // namespace vistel
