#pragma once

/// @file
/// The value of a field.

#include <cstdint>

/// What a `ConvValue` holds. The order is part of the interface.
enum ConvType : std::int32_t {
    CV_FLOAT = 0,        ///< single precision; NaN prints as "-"
    CV_FLOAT_PLAIN = 1,  ///< single precision
    CV_DOUBLE = 2,
    CV_U8 = 3,  ///< tags 3 to 10: integers, of which the top three codes mean "not available"
    CV_I8 = 4,
    CV_U16 = 5,
    CV_I16 = 6,
    CV_U32 = 7,
    CV_I32 = 8,
    CV_U64 = 9,
    CV_I64 = 10,
    CV_TIME_OF_DAY = 11,    ///< unsigned seconds, shown as h:mm:ss; the codes of CV_U32 mean "not available"
    CV_CHAR = 12,           ///< 8-bit character
    CV_WCHAR = 13,          ///< 16-bit character
    CV_WCHAR_PLAIN = 14,    ///< 16-bit character
    CV_TEXT_NARROW = 15,    ///< pointer to terminated 8-bit text
    CV_TEXT_WIDE = 16,      ///< pointer to terminated wide text
    CV_TEXT = 17,           ///< pointer to terminated wide text
    CV_RAW_FIELD_TOO = 18,  ///< as CV_RAW_FIELD; the library makes none
    CV_RAW_FIELD = 19,      ///< pointer to a short-text field as sent (length, encoding, text), or null
    CV_NOT_AVAILABLE = 20,  ///< this tag and every higher one: no value
};

/// A field's value in some unit: what a conversion delivers and a printer shows.
///
/// A text pointer refers to a static area of the conversion that made the record; it holds until that
/// conversion runs again. The record owns nothing.
struct ConvValue {
    std::int32_t type;  ///< a `ConvType`; says which member of `value` is valid
    /// One member for each kind.
    union Value {
        /// @{ valid where `type` says so
        float f32;
        double f64;
        std::uint8_t u8;
        std::int8_t i8;
        std::uint16_t u16;
        std::int16_t i16;
        std::uint32_t u32;
        std::int32_t i32;
        std::uint64_t u64;
        std::int64_t i64;
        const char* narrow;
        const wchar_t* wide;
        const std::uint8_t* raw;
        /// @}
    } value;  ///< see `type`
};

static_assert(sizeof(ConvValue::Value) == 8);
#if defined(_WIN32) || defined(_MSC_VER)
static_assert(sizeof(ConvValue) == 16);  // the compilers there agree on it
#endif

namespace pgn_vistel {

/// Neither a reserved code of an integer type, nor a NaN, nor a tag of 20 and more.
bool is_available(const ConvValue& value);

}  // namespace pgn_vistel
