#include "decode/field_text.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <iterator>
#include <string_view>

#include "values/calendar_text.h"
#include "values/conversions/special.h"
#include "values/text_copy.h"
#include "values/units.h"
#include "values/value_printer.h"

namespace pgn_vistel {

namespace {

bool is_text(const ConvValue& v) {
    return v.type >= CV_TEXT_NARROW && v.type <= CV_TEXT;
}

void put_narrow(WideWriter& out, const char* text) {
    for (; *text != 0; ++text) out.put(code_page_to_wide(static_cast<unsigned char>(*text)));
}

void put_bytes(WideWriter& out, const ConvValue& v) {
    static constexpr CompiledFormat format(L"%02X ");
    constexpr int most = 256;
    for (int i = 0; v.value.raw != nullptr && i < most && v.value.raw[i] != 0 && out.room() > 1; ++i)
        format(out, v.value.raw[i]);
}

double number_of(const ConvValue& v) {
    switch (v.type) {
        case CV_FLOAT:
        case CV_FLOAT_PLAIN: return v.value.f32;
        case CV_DOUBLE: return static_cast<float>(v.value.f64);
        case CV_U8: return v.value.u8;
        case CV_I8: return v.value.i8;
        case CV_U16: return v.value.u16;
        case CV_I16: return v.value.i16;
        case CV_U32:
        case CV_TIME_OF_DAY: return v.value.u32;
        case CV_I32: return v.value.i32;
        case CV_U64: return static_cast<double>(v.value.u64);
        default: return static_cast<double>(v.value.i64);
    }
}

std::int32_t truncated(double number) {
    return std::isnan(number) ? 0
                              : static_cast<std::int32_t>(std::clamp(number, -2147483648.0, 2147483647.0));
}

void put_pgn(WideWriter& out, const ConvValue& v) {
    static constexpr CompiledFormat format(L"% 6u (%ls)");
    format(out, v.value.u32, pgn_def_name(find_pgn_def(v.value.u32)));
}

void put_database_version(WideWriter& out, const ConvValue& v) {
    static constexpr CompiledFormat format(L"%0.3f");
    format(out, v.value.u16 * static_cast<double>(0.001f));
}

void put_flags(WideWriter& out, const DDstrings& set, std::uint32_t value) {
    const int start = out.count();
    for (std::uint32_t i = 0; i < set.count && i < 32; ++i) {
        if ((value >> i & 1) == 0) continue;
        put_narrow(out, set.pairs[i].text);
        out.put(L", ", 2);
    }
    if (out.count() - start >= 2 && out.at()[-2] == L',') out.remove_last(2);
}

// What follows returns whether it printed.

bool put_enumeration(WideWriter& out, const DDstrings& set, std::uint32_t value) {
    if (set.kind == ENUM_FLAGS) {
        put_flags(out, set, value);  // no flag set is a text, too: an empty one
        return true;
    }
    const char* const text = enumeration_text(set, value);
    if (text != nullptr) put_narrow(out, text);
    return text != nullptr;
}

bool put_clock(WideWriter& out, UnitId unit, const ConvValue& v) {
    if (unit != unit::clock_12 && unit != unit::clock_24) return false;
    const auto seconds = truncated(number_of(v));
    const int hour = seconds / 3600 & 0xFF;
    const int minute = seconds / 60 % 60;
    const int second = seconds % 60;
    if (unit == unit::clock_12) {
        static constexpr CompiledFormat format(L"%#2ld:%02d:%02d %s");
        format(out, hour == 0 ? 12 : (hour - 1) % 12 + 1, minute, second, hour < 12 ? L"AM" : L"PM");
    } else {
        static constexpr CompiledFormat format(L"%#2ld:%02d:%02d");
        format(out, hour, minute, second);
    }
    return true;
}

bool put_duration(WideWriter& out, UnitId unit, const ConvValue& v) {
    const double value = number_of(v);
    if (unit == unit::hours || unit == unit::seconds) {
        static constexpr CompiledFormat format(L"%f");
        format(out, value);
        return true;
    }
    if (unit != unit::minutes) return false;
    // The whole part is divided once more although the value is in minutes, and the remainder is taken from
    // an unsigned product, so negative durations look odd: hosts know these texts so.
    static constexpr CompiledFormat format(L"%d:%f");
    const std::int32_t quotient = truncated(value) / 60;
    format(out, quotient, value - static_cast<double>(static_cast<std::uint32_t>(quotient) * 60u));
    return true;
}

bool put_date(WideWriter& out, UnitId unit, const ConvValue& v) {
    ConvValue date{CV_NOT_AVAILABLE, {}};
    convert_date(&date, &v.value.u16, unit, nullptr);
    if (!is_text(date)) return false;
    out.put_text(date.value.wide);
    return true;
}

void put_hexadecimal(WideWriter& out, const ConvValue& v) {
    static constexpr CompiledFormat two(L"0x%02X"), four(L"0x%04X"), eight(L"0x%08X"), sixteen(L"0x%016X"),
        sixteen_blank(L"0x%16X");
    switch (v.type) {
        case CV_FLOAT:
        case CV_U32:
        case CV_I32: eight(out, v.value.u32); break;
        // Of 64 bits the low 32 are shown, padded to 16 digits; signed ones with blanks. Both stay so.
        case CV_DOUBLE:
        case CV_U64: sixteen(out, v.value.u32); break;
        case CV_I64: sixteen_blank(out, v.value.u32); break;
        case CV_U8: two(out, v.value.u8); break;
        case CV_I8: two(out, v.value.i8); break;
        case CV_U16: four(out, v.value.u16); break;
        case CV_I16: four(out, v.value.i16); break;
        case CV_TEXT_NARROW: put_narrow(out, v.value.narrow); break;
        case CV_TEXT_WIDE:
        case CV_TEXT: out.put_text(v.value.wide); break;
        case 18:
        case CV_RAW_FIELD: put_bytes(out, v); break;
        default: break;
    }
}

bool put_by_quantity(WideWriter& out, const FieldContext& context, const ConvValue& v) {
    if (context.quantity == quantity::message_id) {
        put_hexadecimal(out, v);
        return true;
    }
    if (is_text(v) || !is_available(v)) return false;
    switch (context.quantity) {
        case quantity::time_of_day: return put_clock(out, context.unit, v);
        case quantity::duration: return put_duration(out, context.unit, v);
        case quantity::date: return put_date(out, context.unit, v);
        default: return false;
    }
}

void put_unit(WideWriter& out, const FieldContext& context) {
    if (!context.with_unit) return;
    out.put(L' ');
    out.put_text(unit_name(context.unit));
}

}  // namespace

namespace {

constexpr std::size_t first_word = 6;  // "First " with its blank

template <class Char, class Put>
void put_label(WideWriter& out, int dd, const Char* label, int repeat_index, const Char* first, Put put) {
    static constexpr Char none[] = {0};
    const std::basic_string_view<Char> text(label != nullptr ? label : none);
    if (dd == 144 || dd == 145) {
        out.put_text(L"Group Function Code");
    } else if (repeat_index >= 1 && text.find(first) != text.npos) {
        // The word goes, wherever it stands: six characters from the start.
        put(text.substr(std::min(first_word, text.size())));
        static constexpr CompiledFormat number(L" #%d");
        number(out, repeat_index);
    } else {
        put(text);
    }
    out.put(L": ", 2);
}

}  // namespace

void put_field_name(WideWriter& out, int dd, const wchar_t* label, int repeat_index) {
    put_label(out, dd, label, repeat_index, L"First",
              [&out](std::wstring_view text) { out.put(text.data(), text.size()); });
}

void put_field_name(WideWriter& out, int dd, const char* label, int repeat_index) {
    put_label(out, dd, label, repeat_index, "First",
              [&out](std::string_view text) { out.put_bytes(text.data(), text.size()); });
}

void put_field_data(WideWriter& out, const FieldContext& context, const ConvValue* value) {
    if (value != nullptr) {
        if (context.dd == 9) return put_pgn(out, *value);
        if (context.pgn == 126996 && context.dd == 7 && context.field == 1)
            return put_database_version(out, *value);
        const DDstrings* const set = find_enumeration(static_cast<std::uint32_t>(context.dd));
        if (set != nullptr && put_enumeration(out, *set, enumeration_value(*value))) return;
        if (!put_by_quantity(out, context, *value)) {
            const bool has_format = !is_available(*value) || print_format_default(value->type) != nullptr;
            if (has_format)
                print_in_own_format(
                    out, (context.flags & plain_numbers) != 0 ? NumberForm::plain : NumberForm::with_hex,
                    *value);
            else
                out.put_text(L"<Unknown data format>");
        }
    }
    put_unit(out, context);
}

PayloadPosition put_field(WideWriter& out, QV_N2K_PGN_DB_c& db, const N2KMsg& msg, const FieldPlace& place,
                          PayloadPosition at, ConvValue* value) {
    // A conversion that sets nothing but the type then leaves a value that is not available.
    ConvValue own{CV_NOT_AVAILABLE, {}};
    own.value.u64 = 0x7FFFFFFF;
    if (value == nullptr) value = &own;
    const FieldReading reading =
        read_field(db, msg, *place.dd, place.bytes, place.bits, at, place.unit, value);
    const FieldContext context{static_cast<int>(place.dd->dd),
                               reading.quantity,
                               reading.unit,
                               place.with_unit,
                               place.flags,
                               msg.pgn,
                               place.field};
    if (reading.cut_off) {
        out.put(L'-');
        put_unit(out, context);
    } else {
        put_field_data(out, context, value);
    }
    return reading.next;
}

int put_undecoded(WideWriter& out, const std::uint8_t* data, int length, bool with_label) {
    const int start = out.count();
    if (with_label) out.put_text(L"Data:");
    const int label_length = out.count() - start;
    constexpr wchar_t digits[] = L"0123456789ABCDEF";
    for (int i = 0; data != nullptr && i < length && out.room() > 1; ++i) {
        const wchar_t text[] = {L' ', digits[data[i] >> 4], digits[data[i] & 15]};
        out.put(text, std::size(text));
    }
    return label_length;
}

}  // namespace pgn_vistel
