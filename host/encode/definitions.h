#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "encode/field_cell.h"
#include "pgn_vistel/core/listing.h"

namespace vistel {

/// The corrected definitions of a PGN, in the order in which they are tried; of a proprietary one, also that
/// of messages of which nothing but the maker is known.
std::vector<const pgn_vistel::core::PgnDef*> definitions_of(std::uint32_t pgn);

/// What is listed of a definition: nothing where only the maker is known.
pgn_vistel::core::ListedMessage listed(const pgn_vistel::core::PgnDef& definition);

/// What a corrected definition is called in the catalogue, unlike others of its PGN; empty where only the
/// maker is known.
std::string_view variant_of(const pgn_vistel::core::PgnDef& definition);

/// Gives the message the bits that tell its variant.
void apply(std::span<const pgn_vistel::core::MessageCondition> conditions, N2KMsg& msg);
/// Whether it has them.
bool hold(std::span<const pgn_vistel::core::MessageCondition> conditions, const N2KMsg& msg);

/// Whether the field of a definition has the same bits in every message of the variant.
bool is_fixed(const pgn_vistel::core::PgnDef& definition, const FieldCell& cell);

/// Whether the field has the number of rounds of a repeating group of its message.
bool counts_rounds(const pgn_vistel::core::PgnDef& definition, const pgn_vistel::core::FieldDef& field);

}  // namespace vistel
