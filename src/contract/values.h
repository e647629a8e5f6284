#pragma once

#include "core/plan.h"
#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel {

// Between the core's values and the records of the exported interface.

/// The scratch of every exported entry. A text that was good stays here for the next that is not.
core::TextScratch& shared_scratch();

/// Stores a value as a record. A text goes to the static area that its reading has, where it holds until a
/// text of that reading is stored again.
void store_value(ConvValue* out, const core::Value& value, core::Reading reading);

/// The value of a record, whose texts are read where they are. Of a type that only hosts' own records have,
/// see `is_hosts_own`, the number: as a single or as all its bits.
core::Value value_of(const ConvValue& record);

/// Types that no conversion makes, but hosts may.
bool is_hosts_own(const ConvValue& record);

}  // namespace pgn_vistel
