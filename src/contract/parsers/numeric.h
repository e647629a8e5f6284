#pragma once

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

/// The parser of every format with a row of rules in data/parsers.tsv.
ConvValue* parse_numeric(DF df, ConvValue* out, const char* text, UnitId unit);

/// Bytes of the raw number that `parse_numeric` stores.
int parsed_bytes(DF df);

template <DF df>
ConvValue* parse_numeric(ConvValue* out, const char* text, UnitId unit) {
    return parse_numeric(df, out, text, unit);
}

}  // namespace pgn_vistel
