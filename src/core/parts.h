#pragma once

#include <algorithm>

#include "core/read.h"
#include "core/value_text.h"
#include "core/walk.h"
#include "pgn_vistel/core/render.h"

namespace pgn_vistel::core {

/// One field for outputs that want its parts instead of a line.
struct FieldParts {
    FieldValue reading;
    bool available;
    /// What the value is shown as.
    enum class Look : std::uint8_t { number, text, date, time } look;
    int unit;            ///< negative for none, as beside a text of the catalogue
    int bytes;           ///< of `bits`; negative where only the payload has the field's bits
    std::uint64_t bits;  ///< as sent
    Decimal decimal;     ///< the value, where it is known so

    /// What the value means, as a text beside it.
    enum class Meaning : std::uint8_t { none, entry, word, pgn_name, flags } meaning;
    union {
        const EntryTexts* entry;
        const char* word;  ///< of `word` and `pgn_name`
    };
    int word_size;

    std::string_view word_text() const { return {word, static_cast<std::size_t>(word_size)}; }
    void set_entry(const EntryTexts& texts) {
        meaning = Meaning::entry;
        entry = &texts;
        unit = -1;
    }
    void set_word(Meaning what, std::string_view text) {
        meaning = what;
        word = text.data();
        word_size = static_cast<int>(text.size());
    }
};

/// What an available value means. `high` is added to the number that an enumeration is asked for.
inline void find_meaning(const FieldPlan& plan, std::uint32_t high, TextScratch& scratch, FieldParts& parts) {
    using Meaning = FieldParts::Meaning;
    const FieldValue& reading = parts.reading;
    switch (plan.form) {
        case Form::pgn_name:
        case Form::pgn_title:
            parts.unit = -1;
            if (const PgnDef* const row = find_named(plan.form, reading.value.number.u32())) {
                if (const std::string_view name = pgn_name(row); !name.empty())
                    parts.set_word(Meaning::pgn_name, name);
            }
            break;
        case Form::mmsi: {
            parts.unit = -1;
            char* const text = scratch.made.data();
            const auto size = write_mmsi(text, reading.value.number.u32()) - text;
            parts.set_word(Meaning::word, {text, static_cast<std::size_t>(size)});
            break;
        }
        case Form::flags:
            parts.unit = -1;
            parts.meaning = Meaning::flags;
            break;
        case Form::enumeration: {
            const DDstrings& set = enum_sets[plan.enumeration];
            const std::uint16_t entry = find_entry(plan.enumeration, enumeration_value(reading.value) + high);
            if (entry != no_entry) {
                parts.set_entry(texts_of_entry(plan.enumeration, entry));
            } else if (const std::string_view word = word_of(set); !word.empty()) {
                parts.set_word(Meaning::word, word);
            } else {
                break;
            }
            parts.unit = -1;
            break;
        }
        default: break;
    }
}

/// A text up to its end, without the characters that fill it up behind.
inline Text without_fill(Text text) {
    if (text.encoding == Encoding::digits) return text;
    const bool is_wide = text.encoding == Encoding::utf16;
    const std::uint32_t unused = is_wide ? 0xFFFF : 0xFF;
    int count = 0;
    while (count < text.count && unit_of(text, count) != 0 && unit_of(text, count) != unused) ++count;
    const auto is_fill = [&text](int i) { return unit_of(text, i) == '@' || unit_of(text, i) == ' '; };
    while (count > 0 && is_fill(count - 1)) --count;
    text.count = count;
    return text;
}

/// What is not shown as the number that was read.
inline void look_again(const FieldPlan& plan, FieldParts& parts) {
    using Look = FieldParts::Look;
    Value& value = parts.reading.value;
    if (value.type == ValueType::text) {
        parts.look = Look::text;
        value.text = without_fill(value.text);
        parts.available = value.text.count > 0;
    } else if (value.type == ValueType::seconds) {
        parts.unit = unit::seconds;
    } else if (parts.reading.quantity == quantity::date) {
        parts.look = Look::date;
        parts.unit = -1;
    } else if (parts.reading.quantity == quantity::time_of_day) {
        parts.look = Look::time;
        parts.unit = -1;
        if (integer_of(value) >= format_plans[plan.format].first_reserved) parts.available = false;
    } else if ((plan.flags & all_bits_none) != 0 && parts.available) {
        parts.available = value.number.u64() != ~std::uint64_t{0} >> (64 - plan.bits);
    }
}

/// A date or a time of day; null where it is neither.
inline char* write_moment(char* at, const FieldPlan& plan, const FieldParts& parts) {
    const std::int64_t count = integer_of(parts.reading.value);
    if (parts.look == FieldParts::Look::date) return write_iso_date(at, count);
    // The scale is a power of ten: what it makes of 1 are the decimals.
    int decimals = 0;
    for (float part = format_plans[plan.format].scale; part < 0.5f; part *= 10) ++decimals;
    return write_iso_time(at, static_cast<std::uint64_t>(count), decimals);
}

/// A number of the corrected definitions is a value unless its own codes say that it is none.
inline bool is_value(const FieldPlan& plan, const Value& value) {
    return (is_integer(value.type) && is_of_corrected(format_plans[plan.format])) || is_available(value);
}

/// Reads the field that the walk has come to; the walk goes behind it.
[[gnu::always_inline]] inline void read_parts(Stepping::State& walk, const Payload& payload,
                                              const UnitSelection& units, TextScratch& scratch,
                                              FieldParts& parts) {
    const FieldPlan& plan = Stepping::plan(walk);
    constexpr unsigned looked_at_again = apart | all_bits_none;
    if ((plan.flags & apart) != 0) {
        // No text of a field or a message before: programs could not tell.
        scratch.short_text.count = 0;
        scratch.medium_text.count = 0;
    }
    std::uint16_t coded = no_entry;
    if (QuickNumber quick; Stepping::read_quickly(walk, plan, payload, units, quick, parts.reading)) {
        parts.bytes = (plan.bits + 7) / 8;
        parts.bits = quick.bits;
        parts.decimal = quick.decimal;
        if (plan.form == Form::coded)
            coded = find_entry(plan.enumeration, static_cast<std::uint32_t>(quick.bits));
        parts.available = quick.kind == QuickNumber::Kind::integer ? is_value(plan, parts.reading.value)
                                                                   : quick.kind != QuickNumber::Kind::none;
    } else {
        parts.bytes = -1;
        parts.decimal.decimals = -1;
        coded = find_coded_entry(plan, payload, walk.position);
        Stepping::read_field(walk, payload, units, scratch, parts.reading);
        parts.available = is_value(plan, parts.reading.value);
    }
    parts.look = FieldParts::Look::number;
    parts.unit = parts.reading.unit;
    parts.meaning = FieldParts::Meaning::none;
    if ((plan.flags & looked_at_again) != 0) look_again(plan, parts);
    if (coded != no_entry)
        parts.set_entry(texts_of_entry(plan.enumeration, coded));
    else if (plan.form != Form::plain && parts.available)
        find_meaning(plan, walk.is_resolved ? walk.high : 0, scratch, parts);
}

/// Characters of a text beside its value: those of a line.
constexpr int part_limit = line_size - 1;

/// The text of a value that is one.
inline Text text_of(const FieldParts& parts) {
    Text text = parts.reading.value.text;
    if (text.encoding == Encoding::digits) return text;
    const bool as_sent = parts.reading.quantity == quantity::message_id;
    if (as_sent && text.encoding == Encoding::latin1) text.encoding = Encoding::code_page;
    text.count = std::min(text.count, as_sent ? part_limit : text_limit);
    return text;
}

/// The number of a value that is one; null for texts, for infinities and for values that are not available.
inline char* write_number(char* at, const FieldParts& parts) {
    if (!parts.available) return nullptr;
    if (parts.decimal.decimals >= 0) {
        if (char* const end = write_shortest(at, parts.decimal); end != nullptr) return end;
    }
    const Value::Number& number = parts.reading.value.number;
    switch (parts.reading.value.type) {
        case ValueType::none:
        case ValueType::text: return nullptr;
        case ValueType::single:
            return std::isfinite(number.f32()) ? write_shortest(at, number.f32()) : nullptr;
        case ValueType::real: return std::isfinite(number.f64()) ? write_shortest(at, number.f64()) : nullptr;
        case ValueType::u64: return write_unsigned(at, number.u64());
        default: return write_signed(at, integer_of(parts.reading.value));
    }
}

/// The field's bits as hexadecimal bytes, the low ones first. Positions are counted in bits. Writes beyond
/// its end.
inline char* write_raw(char* at, const FieldParts& parts, const Payload& payload, int from) {
    if (parts.bytes >= 0) return write_hex_word(at, parts.bits, parts.bytes);
    const int bits = std::min(parts.reading.next, payload.length * 8) - from;
    if (((from | bits) & 7) == 0) return write_hex_bytes(at, payload.data + from / 8, std::max(0, bits / 8));
    for (int i = 0; i < bits; i += 8)
        at = write_hex_byte(
            at, static_cast<std::uint8_t>(gather_bits(payload.data, from + i, std::min(bits - i, 8))));
    return at;
}

/// Seconds with six decimals.
inline char* write_seconds(char* at, std::int64_t nanoseconds) {
    constexpr std::uint64_t second = 1'000'000'000;
    if (nanoseconds < 0) *at++ = '-';
    const auto magnitude = nanoseconds < 0 ? 0 - static_cast<std::uint64_t>(nanoseconds)
                                           : static_cast<std::uint64_t>(nanoseconds);
    at = write_unsigned(at, magnitude / second);
    *at = '.';
    write_eight(at + 1, static_cast<std::uint32_t>(magnitude % second / 1000 * 100));
    return at + 7;
}

/// A text of the program's own, whose size the compiler knows.
template <std::size_t size>
char* write_text(char* at, const char (&text)[size]) {
    std::memcpy(at, text, size - 1);
    return at + size - 1;
}

}  // namespace pgn_vistel::core
