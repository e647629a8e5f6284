#pragma once

#include "pgn_vistel/formats.h"
#include "support/testing.h"

namespace pgn_vistel::test {

constexpr int untouched = -77;                           // a count that no conversion reports
constexpr std::uint64_t came_with = 0xA5A5A5A5A5A5A5A5;  // of a record whose number is left as it was

struct Converted {
    ConvValue value{CV_NOT_AVAILABLE, {}};
    int count = untouched;
};

inline Converted convert(DF df, const void* raw, UnitId unit, int count = untouched) {
    Converted result;
    result.value.value.u64 = came_with;
    result.count = count;
    find_conversion(df)(&result.value, raw, unit, &result.count);
    return result;
}

inline Converted convert_bits(DF df, std::uint64_t bits, UnitId unit) {
    std::uint8_t raw[16] = {};  // a value's format may stand in the two bytes before it
    std::memcpy(raw + 2, &bits, sizeof bits);
    return convert(df, raw + 2, unit);
}

/// What a format's parser makes of a text.
inline ConvValue parse(DF df, const char* text, UnitId unit) {
    ConvValue out{-1, {}};
    out.value.u64 = 0xA5A5A5A5A5A5A5A5;
    for (const DFDef& format : all_format_rows())
        if (format.df == df) return *format.parse(&out, text, unit);
    ADD_FAILURE() << "no format " << df;
    return out;
}

// Records: of an integer type or any other tag (`value` sign-extended in its 8 bytes), of a number, of a
// text.
inline ConvValue whole(int type, std::int64_t value) {
    ConvValue v{type, {}};
    v.value.i64 = value;
    return v;
}
inline ConvValue single(float value, int type = CV_FLOAT) {
    ConvValue v = whole(type, 0);
    v.value.f32 = value;
    return v;
}
inline ConvValue real(double value) {
    ConvValue v = whole(CV_DOUBLE, 0);
    v.value.f64 = value;
    return v;
}
inline ConvValue wide(const wchar_t* text, int type = CV_TEXT) {
    ConvValue v = whole(type, 0);
    v.value.wide = text;
    return v;
}
inline ConvValue narrow(const char* text) {
    ConvValue v = whole(CV_TEXT_NARROW, 0);
    v.value.narrow = text;
    return v;
}

}  // namespace pgn_vistel::test
