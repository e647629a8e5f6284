#pragma once

#include "core/out.h"
#include "pgn_vistel/conv_value.h"

namespace pgn_vistel {

constexpr int print_limit = 256;  // characters that one printed value has at the most, terminator included

/// Whether records with a tag can be shown.
bool has_form(int type);

/// Puts the value of a record as its type is shown, a whole number without its hexadecimal form; nothing for
/// a tag without a form.
void put_conv_value(core::WideOut& out, const ConvValue& value);

}  // namespace pgn_vistel
