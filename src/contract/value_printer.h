#pragma once

#include "contract/wide_format.h"
#include "pgn_vistel/conv_value.h"

namespace pgn_vistel {

constexpr int print_limit = 256;  // characters that one printed value has at the most, terminator included

/// Prints a value in the caller's format, or in its type's default format where that is null or does not fit
/// the type. `buf` holds at least 256 characters. Returns the characters written.
int print_conv_value(wchar_t* buf, const wchar_t* format, ConvValue value);

/// A type's own format; null for a tag without.
const wchar_t* print_format_default(int type);

/// Prints a number with a given count of significant digits: in "%5q" 5, in "%8.2q" 8 of which at most 2 are
/// decimals. Other text and conversions may stand around it; the number is passed once. Returns the
/// characters written, at most 255.
int format_q(wchar_t* buf, const wchar_t* format, float value);

}  // namespace pgn_vistel
