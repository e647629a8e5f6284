#pragma once

#include <bit>
#include <cfloat>
#include <cstdint>

#include "pgn_vistel/conv_value.h"

// Otherwise a result would depend on what the compiler keeps in registers.
static_assert(FLT_EVAL_METHOD == 0, "single precision must be computed as such");

namespace pgn_vistel {

inline void store_not_available(ConvValue* out) {
    out->type = CV_NOT_AVAILABLE;
    out->value.u64 = 0x7FFFFFFF;  // a single precision NaN in the low half
}

inline void store_float(ConvValue* out, double value) {
    out->type = CV_FLOAT;
    out->value.f32 = static_cast<float>(value);
}

/// All 8 bytes are written, so that the low bits of any width read the same number.
template <class Integer>
void store_integer(ConvValue* out, ConvType type, Integer value) {
    out->type = type;
    out->value.i64 = static_cast<std::int64_t>(value);
}

/// The bits of a record's number, whichever member they were stored as.
inline std::uint64_t bits_of(const ConvValue& record) {
    return std::bit_cast<std::uint64_t>(record.value);
}

inline void store_text(ConvValue* out, const char* text) {
    out->type = CV_TEXT_NARROW;
    out->value.narrow = text;
}

}  // namespace pgn_vistel
