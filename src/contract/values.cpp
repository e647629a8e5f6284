#include "contract/values.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "contract/store.h"
#include "core/value_text.h"

namespace pgn_vistel {

using core::Encoding;
using core::Reading;
using core::Value;
using core::ValueType;

static_assert(static_cast<int>(ValueType::single) == CV_FLOAT &&
              static_cast<int>(ValueType::real) == CV_DOUBLE && static_cast<int>(ValueType::u8) == CV_U8 &&
              static_cast<int>(ValueType::i64) == CV_I64 &&
              static_cast<int>(ValueType::seconds) == CV_TIME_OF_DAY &&
              static_cast<int>(ValueType::text) == CV_TEXT &&
              static_cast<int>(ValueType::none) == CV_NOT_AVAILABLE);

core::TextScratch& shared_scratch() {
    static core::TextScratch scratch;
    return scratch;
}

namespace {

template <std::size_t size>
void store_wide(ConvValue* out, wchar_t (&area)[size], const core::Text& text) {
    const int count = std::min(text.count, static_cast<int>(size) - 1);
    for (int i = 0; i < count; ++i) area[i] = static_cast<wchar_t>(core::unit_of(text, i));
    area[count] = 0;
    out->type = CV_TEXT;
    out->value.wide = area;
}

template <std::size_t size>
void store_narrow(ConvValue* out, char (&area)[size], const core::Text& text) {
    const auto count = static_cast<std::size_t>(std::min(text.count, static_cast<int>(size) - 1));
    std::memcpy(area, text.data, count);
    area[count] = 0;
    out->type = CV_TEXT_NARROW;
    out->value.narrow = area;
}

void store_text(ConvValue* out, const core::Text& text, Reading reading) {
    static wchar_t short_text[126], medium_text[892], date[256], clock[64];
    static char fixed_text[N2K_MAX_PAYLOAD + 1], hex_dump[256];
    switch (reading) {
        case Reading::text_short: store_wide(out, short_text, text); break;
        case Reading::text_medium: store_wide(out, medium_text, text); break;
        case Reading::text_fixed: store_narrow(out, fixed_text, text); break;
        case Reading::hex_dump: store_narrow(out, hex_dump, text); break;
        case Reading::date: store_wide(out, date, text); break;
        default: store_wide(out, clock, text); break;
    }
}

/// Characters of a terminated text; a null text is empty.
template <class Char>
int length_of(const Char* text) {
    return text != nullptr ? static_cast<int>(std::char_traits<Char>::length(text)) : 0;
}

}  // namespace

void store_value(ConvValue* out, const Value& value, Reading reading) {
    if (value.type == ValueType::text) {
        store_text(out, value.text, reading);
        return;
    }
    out->type = static_cast<std::int32_t>(value.type);
    out->value.u64 = value.number.bits;
}

bool is_hosts_own(const ConvValue& record) {
    return record.type < 0 || record.type == CV_FLOAT_PLAIN ||
           (record.type >= CV_CHAR && record.type <= CV_WCHAR_PLAIN) || record.type == CV_RAW_FIELD_TOO ||
           record.type == CV_RAW_FIELD;
}

Value value_of(const ConvValue& record) {
    Value value;
    value.number.bits = bits_of(record);
    switch (record.type) {
        case CV_TEXT_NARROW:
            value.text = {record.value.narrow, length_of(record.value.narrow), Encoding::latin1};
            value.type = ValueType::text;
            break;
        case CV_TEXT_WIDE:
        case CV_TEXT:
            value.text = {record.value.wide, length_of(record.value.wide), Encoding::wide};
            value.type = ValueType::text;
            break;
        case CV_FLOAT_PLAIN: value.type = ValueType::single; break;
        case CV_CHAR: value.type = ValueType::u8; break;
        default:
            if (is_hosts_own(record))
                value.type = ValueType::i64;
            else
                value.type = static_cast<ValueType>(std::min<std::int32_t>(record.type, CV_NOT_AVAILABLE));
            break;
    }
    return value;
}

}  // namespace pgn_vistel
