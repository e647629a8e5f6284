#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/clock_text.h"
#include "core/convert.h"
#include "core/out.h"
#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

// Values as the lines of the monitor show them. `Out` is `Utf8Out` or `WideOut`.

/// What printing needs beside the value.
struct Shown {
    Form form;
    std::uint16_t set;   ///< the enumeration, or `no_set`
    std::uint32_t high;  ///< added to the number that it is asked for
    DispDataType quantity;
    UnitId unit;
    bool plain_numbers;       ///< without their hexadecimal form
    bool every_code = false;  ///< no code of an integer is reserved
};

/// Characters of a text that one value shows at the most.
constexpr int text_limit = 255;

/// A unit of a text, by index.
inline std::uint32_t unit_of(const Text& text, int i) {
    const auto* const bytes = static_cast<const std::uint8_t*>(text.data);
    switch (text.encoding) {
        case Encoding::code_page: return character_of(bytes[i]);
        case Encoding::utf16: return bytes[2 * i] | static_cast<std::uint32_t>(bytes[2 * i + 1]) << 8;
        case Encoding::wide: return static_cast<std::uint32_t>(static_cast<const wchar_t*>(text.data)[i]);
        case Encoding::digits:
            return static_cast<unsigned char>(i % 3 == 2 ? ' ' : hex_digit(bytes[i / 3], i % 3));
        default: return bytes[i];
    }
}

constexpr std::uint32_t replacement = 0xFFFD;

/// Calls `act` with every character of a text: pairs of surrogates are one, what is no character is U+FFFD.
template <class Act>
void for_each_character(const Text& text, int most, Act act) {
    const int count = std::min(text.count, most);
    for (int i = 0; i < count; ++i) {
        std::uint32_t c = unit_of(text, i);
        if (c >= 0xD800 && c < 0xE000) {
            const std::uint32_t next = i + 1 < count ? unit_of(text, i + 1) : 0;
            const bool is_pair = c < 0xDC00 && next >= 0xDC00 && next < 0xE000;
            c = is_pair ? 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00) : replacement;
            if (is_pair) ++i;
        } else if (c > 0x10FFFF) {
            c = replacement;
        }
        act(c);
    }
}

/// Texts come off the wire: left as they are, control characters could steer the terminal or forge lines.
constexpr bool is_control(std::uint32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

inline void put_text(Utf8Out& out, const Text& text, int most) {
    for_each_character(text, most,
                       [&out](std::uint32_t c) { out.put_character(is_control(c) ? replacement : c); });
}

/// Windows get the units as they are.
inline void put_text(WideOut& out, const Text& text, int most) {
    for (int i = 0; i < std::min(text.count, most) && out.room() > 0; ++i)
        out.put_character(unit_of(text, i));
}

/// A double is taken with the precision of a single: the wide range of a double would not fit a line.
inline double number_of(const Value& v) {
    return visit_number(v, static_cast<double>(v.number.i64()), [](auto number) {
        if constexpr (std::is_floating_point_v<decltype(number)>)
            return static_cast<double>(static_cast<float>(number));
        else
            return static_cast<double>(number);
    });
}

inline std::int32_t truncated(double number) {
    return std::isnan(number) ? 0
                              : static_cast<std::int32_t>(std::clamp(number, -2147483648.0, 2147483647.0));
}

/// The row whose name a number stands for that is a PGN.
inline const PgnDef* find_named(Form form, std::uint32_t number) {
    return form == Form::pgn_title ? find_title(number) : find_pgn_def(number);
}

/// A PGN's number in six places, and its name: "127250 (Vessel Heading)".
template <class Out>
void put_pgn(Out& out, Form form, std::uint32_t number) {
    out.put_number([number](char* at) {
        for (std::uint32_t limit = 100'000; limit > 1 && number < limit; limit /= 10) *at++ = ' ';
        return write_unsigned(at, number);
    });
    out.put(" (");
    out.put(pgn_name(find_named(form, number)));
    out.put(')');
}

template <class Out>
void put_entry(Out& out, std::uint16_t set, std::uint16_t entry) {
    const EntryTexts& texts = texts_of_entry(set, entry);
    out.put_pooled(text_pool + texts.plain, texts.plain_size);
}

template <class Out>
void put_flags(Out& out, std::uint16_t index, std::uint32_t value) {
    const DDstrings& set = enum_sets[index];
    const auto start = out.mark();
    for (std::uint32_t i = 0; i < set.count && i < 32; ++i) {
        if ((value >> i & 1) == 0) continue;
        put_entry(out, index, static_cast<std::uint16_t>(i));
        out.put(", ");
    }
    out.remove_comma(start);
}

/// False where the number itself is to be shown. `high` is added to what the enumeration is asked for.
template <class Out>
[[nodiscard]] bool put_enumeration(Out& out, std::uint16_t index, std::uint32_t value, std::uint32_t high) {
    const DDstrings& set = enum_sets[index];
    const std::uint16_t entry = find_entry(index, value + high);
    if (entry != no_entry) {
        put_entry(out, index, entry);
        return true;
    }
    const std::string_view word = word_of(set);
    if (word.empty()) return false;
    out.put(word);
    if (set.kind == ENUM_RESERVED_TOO || set.kind == ENUM_UNKNOWN_TOO) {
        out.put(" (");
        out.put_number([value](char* at) { return write_unsigned(at, value); });
        out.put(')');
    }
    return true;
}

template <class Out>
[[nodiscard]] bool put_clock(Out& out, UnitId unit, const Value& v) {
    if (unit != unit::clock_12 && unit != unit::clock_24) return false;
    const std::int32_t seconds = truncated(number_of(v));
    const int hour = seconds / 3600 & 0xFF;
    out.put_number([&](char* at) {
        const auto put_two = [&at](int number, char fill) {
            if (number >= 0 && number < 10) *at++ = fill;
            at = write_signed(at, number);
        };
        const auto put_sixtieth = [&](int number) {
            *at++ = ':';
            if (number < 0 && number > -10)
                at = write_signed(at, number);  // two characters already
            else
                put_two(number, '0');
        };
        put_two(unit == unit::clock_24 ? hour : hour == 0 ? 12 : (hour - 1) % 12 + 1, ' ');
        put_sixtieth(seconds / 60 % 60);
        put_sixtieth(seconds % 60);
        return at;
    });
    if (unit == unit::clock_12) out.put(hour < 12 ? " AM" : " PM");
    return true;
}

template <class Out>
[[nodiscard]] bool put_duration(Out& out, UnitId unit, const Value& v, bool of_corrected) {
    constexpr int decimals = 6;
    double value = number_of(v);
    if (unit == unit::hours || unit == unit::seconds) {
        out.put_number([value](char* at) { return write_fixed(at, value, decimals); });
        return true;
    }
    if (unit != unit::minutes) return false;
    // The whole part is divided by 60 although the value is in minutes, and the remainder is taken from an
    // unsigned product, so negative durations look odd. That is the text interface's form of a duration in
    // minutes; by the corrected definitions the sign stands in front of all of it.
    if (of_corrected && value < 0) {
        out.put('-');
        value = -value;
    }
    const std::int32_t quotient = truncated(value) / 60;
    out.put_number([quotient](char* at) { return write_signed(at, quotient); });
    out.put(':');
    out.put_number([&](char* at) {
        return write_fixed(at, value - static_cast<double>(static_cast<std::uint32_t>(quotient) * 60u),
                           decimals);
    });
    return true;
}

/// The value's low 16 bits as days, in a date layout.
template <class Out>
[[nodiscard]] bool put_date_again(Out& out, UnitId unit, const Value& v) {
    constexpr std::uint16_t first_reserved = 0xFFFD;
    char area[clock_text_size];
    const int count = v.number.u16() < first_reserved ? put_date(area, v.number.u16(), unit) : 0;
    out.put(std::string_view(area, static_cast<std::size_t>(count)));
    return count > 0;
}

template <class Out>
void put_hexadecimal(Out& out, const Value& v) {
    const auto put_digits = [&out](std::uint32_t number, int least) {
        out.put("0x");
        out.put_number([=](char* at) { return write_hex(at, number, least); });
    };
    switch (v.type) {
        case ValueType::single:
        case ValueType::u32:
        case ValueType::i32: put_digits(v.number.u32(), 8); break;
        // Of 64 bits the low 32 are shown, padded to 16 digits; signed ones with blanks.
        case ValueType::real:
        case ValueType::u64: put_digits(v.number.u32(), 16); break;
        case ValueType::i64:
            out.put("0x");
            out.put_number([&v](char* at) {
                char digits[most_number_size];
                const auto count = write_hex(digits, v.number.u32(), 1) - digits;
                std::fill_n(at, 16 - count, ' ');
                return std::copy_n(digits, count, at + 16 - count);
            });
            break;
        case ValueType::u8: put_digits(v.number.u8(), 2); break;
        case ValueType::i8: put_digits(static_cast<std::uint32_t>(v.number.i8()), 2); break;
        case ValueType::u16: put_digits(v.number.u16(), 4); break;
        case ValueType::i16: put_digits(static_cast<std::uint32_t>(v.number.i16()), 4); break;
        case ValueType::text: {
            Text text = v.text;
            if (text.encoding == Encoding::latin1) text.encoding = Encoding::code_page;
            put_text(out, text, INT32_MAX);
            break;
        }
        default: break;
    }
}

/// "002345678": a Maritime Mobile Service Identity has nine digits.
inline char* write_mmsi(char* at, std::uint32_t number) {
    for (std::uint32_t limit = 100'000'000; limit > 1 && number < limit; limit /= 10) *at++ = '0';
    return write_unsigned(at, number);
}

/// An integer in its type's own form: "12 (0x0C)". The hexadecimal part has 32 bits and as many digits at the
/// least as the form of the type says.
inline char* write_integer(char* at, const Value& v, bool plain) {
    const std::int64_t number = integer_of(v);
    at = v.type == ValueType::u8    ? write_byte(at, v.number.u8())
         : v.type == ValueType::u64 ? write_unsigned(at, v.number.u64())
                                    : write_signed(at, number);
    if (plain || v.type == ValueType::i64) return at;
    std::memcpy(at, " (0x", 4);
    at += 4;
    const auto low = static_cast<std::uint32_t>(number);
    switch (v.type) {
        case ValueType::u8: at = write_hex_byte(at, static_cast<std::uint8_t>(low)); break;
        case ValueType::u16: at = write_hex_number(at, low, 2); break;
        case ValueType::u32:
        case ValueType::i32: at = write_hex_number(at, low, 4); break;
        default:
            at = low < 0x100 ? write_hex_byte(at, static_cast<std::uint8_t>(low)) : write_hex(at, low, 2);
            break;
    }
    *at = ')';
    return at + 1;
}

inline char* write_hours(char* at, std::uint32_t seconds) {
    if (seconds < 36'000) *at++ = ' ';
    at = write_unsigned(at, seconds / 3600);
    *at++ = ':';
    at = write_pair(at, seconds % 3600 / 60);
    *at++ = ':';
    return write_pair(at, seconds % 60);
}

/// A value that no other form serves.
template <class Out>
void put_plainly(Out& out, const Value& v, bool plain_numbers, bool every_code) {
    if (!is_available(v) && !(every_code && is_integer(v.type))) {
        out.put('-');
        return;
    }
    switch (v.type) {
        case ValueType::single:
            out.put_number([&v](char* at) { return write_significant<5>(at, v.number.f32()); });
            break;
        case ValueType::real: {
            // With the precision of a single: the wide range of a double would not fit.
            const auto value = static_cast<float>(v.number.f64());
            out.put_number([value](char* at) { return write_significant<8>(at, value); });
            break;
        }
        case ValueType::seconds:
            out.put_number([&v](char* at) { return write_hours(at, v.number.u32()); });
            break;
        case ValueType::text:
            put_text(out, v.text, v.text.encoding == Encoding::digits ? INT32_MAX : text_limit);
            break;
        default: out.put_number([&](char* at) { return write_integer(at, v, plain_numbers); }); break;
    }
}

/// What the catalogue has a text for. False where the value itself is to be shown.
template <class Out>
[[nodiscard]] bool put_by_form(Out& out, const Shown& shown, const Value& v) {
    switch (shown.form) {
        case Form::pgn_name:
        case Form::pgn_title: put_pgn(out, shown.form, v.number.u32()); return true;
        case Form::database_version:
            out.put_number(
                [&v](char* at) { return write_fixed(at, v.number.u16() * static_cast<double>(0.001f), 3); });
            return true;
        case Form::flags:
            put_flags(out, shown.set, enumeration_value(v));  // no flag set is a text, too: an empty one
            return true;
        case Form::enumeration: return put_enumeration(out, shown.set, enumeration_value(v), shown.high);
        case Form::mmsi:
            if (!is_available(v)) return false;
            out.put_number([&v](char* at) { return write_mmsi(at, v.number.u32()); });
            return true;
        case Form::coded:
        case Form::plain: break;
    }
    return false;
}

/// The forms that quantities have of their own in some units. The value is an available number.
template <class Out>
[[nodiscard]] bool put_by_quantity(Out& out, const Shown& shown, const Value& v) {
    switch (shown.quantity) {
        case quantity::time_of_day: return put_clock(out, shown.unit, v);
        case quantity::duration: return put_duration(out, shown.unit, v, shown.every_code);
        case quantity::date: return put_date_again(out, shown.unit, v);
        default: return false;
    }
}

/// The value without its unit. Returns whether a unit follows: behind a text of the catalogue none does.
template <class Out>
[[nodiscard]] bool put_value(Out& out, const Shown& shown, const Value& v) {
    if (put_by_form(out, shown, v)) return false;
    if (shown.quantity == quantity::message_id)
        put_hexadecimal(out, v);
    else if (v.type == ValueType::text || !is_available(v) || !put_by_quantity(out, shown, v))
        put_plainly(out, v, shown.plain_numbers, shown.every_code);
    return true;
}

}  // namespace pgn_vistel::core
