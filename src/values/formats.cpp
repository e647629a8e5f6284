#include "pgn_vistel/formats.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <span>

#include "values/conversions/numeric.h"
#include "values/conversions/special.h"
#include "values/format_table.h"
#include "values/parsers/numeric.h"
#include "values/parsers/special.h"

namespace pgn_vistel {

namespace {

#define SCALED_FORMAT(df, kind, factor, rule)                                       \
    void convert_df_##df(ConvValue* out, const void* at, UnitId unit, int* count) { \
        convert_scaled<raw::kind, rule>(out, at, unit, count, factor);              \
    }
#define LISTED_FORMAT(df, kind, factor, ...)                                        \
    void convert_df_##df(ConvValue* out, const void* at, UnitId unit, int* count) { \
        convert_listed<raw::kind, __VA_ARGS__>(out, at, unit, count, factor);       \
    }
#define OPEN_FORMAT(df, kind, factor)                                               \
    void convert_df_##df(ConvValue* out, const void* at, UnitId unit, int* count) { \
        convert_open<raw::kind>(out, at, unit, count, factor);                      \
    }
#define INTEGER_FORMAT(df, kind)                                                    \
    void convert_df_##df(ConvValue* out, const void* at, UnitId unit, int* count) { \
        convert_integer<raw::kind>(out, at, unit, count);                           \
    }
#include "format_functions.inc"
#undef SCALED_FORMAT
#undef LISTED_FORMAT
#undef OPEN_FORMAT
#undef INTEGER_FORMAT

struct FormatConversion {
    DF df;
    ConvFunction conv;
};

struct FormatClass {
    DF df;
    DispDataType quantity;
};

// Formats below 118, by number; the two numbers without a format have a conversion that never has a value.
constexpr ConvFunction conv_table[] = {
#include "df_conv_table.inc"
};

// The larger numbers, in the list's own order.
constexpr FormatConversion conv_list[] = {
#include "df_conv_list.inc"
};

constexpr FormatConversion self_conv_list[] = {
#include "df_self_conv_list.inc"
};

// Not sorted: the first row of a quantity is its representative format.
constexpr FormatClass class_table[] = {
#include "format_class_table.inc"
};

static_assert(std::size(conv_table) == 118);

ConvFunction find_in(std::span<const FormatConversion> list, DF df) {
    const auto row = std::ranges::find(list, df, &FormatConversion::df);
    return row != list.end() ? row->conv : nullptr;
}

}  // namespace

constinit const DFDef format_table[] = {
#include "format_table.inc"
};

static_assert(std::size(format_table) == format_count);

ConvFunction find_conversion(DF df) {
    return df < std::size(conv_table) ? conv_table[df] : find_in(conv_list, df);
}

ConvFunction find_self_described(DF df) {
    return find_in(self_conv_list, df);
}

int convert_field(DF df, ConvValue* out, const void* at, UnitId unit) {
    if (out == nullptr || at == nullptr || unit >= unit::count) return -1;
    const ConvFunction conversion = find_conversion(df);
    if (conversion == nullptr) return -2;
    int count = INT_MAX;  // no length to offer: each format takes its own most
    conversion(out, at, unit, &count);
    return out->type >= CV_NOT_AVAILABLE ? -1 : count;
}

DispDataType quantity_of_format(DF df) {
    const auto row = std::ranges::find(class_table, df, &FormatClass::df);
    return row != std::end(class_table) ? row->quantity : -1;
}

DF format_of_quantity(DispDataType quantity) {
    const auto row = std::ranges::find(class_table, quantity, &FormatClass::quantity);
    return row != std::end(class_table) ? row->df : DF{65535};
}

}  // namespace pgn_vistel
