#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "pgn_vistel/stream_lines.h"

namespace pgn_vistel::test {

// ---- conversions ----

constexpr int untouched = -77;  // a count that no conversion reports

/// The record is preset not available, so that what a conversion leaves alone shows.
struct Converted {
    ConvValue value{CV_NOT_AVAILABLE, {}};
    int count = untouched;
};

inline Converted convert(DF df, const void* raw, UnitId unit, int count = untouched) {
    Converted result;
    result.value.value.u64 = 0x7FFFFFFF;
    result.count = count;
    find_conversion(df)(&result.value, raw, unit, &result.count);
    return result;
}

inline Converted convert_bits(DF df, std::uint64_t bits, UnitId unit, int count = untouched) {
    std::uint8_t raw[16] = {};  // a value's format may stand in the two bytes before it
    std::memcpy(raw + 2, &bits, sizeof bits);
    return convert(df, raw + 2, unit, count);
}

/// What a format's parser makes of a text.
inline ConvValue parse(DF df, const char* text, UnitId unit) {
    ConvValue out{-1, {}};
    out.value.u64 = 0xA5A5A5A5A5A5A5A5;
    for (const DFDef& format : all_formats())
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

// ---- texts ----

/// What `print(buffer, size)` writes into a buffer of `size`. Nothing outside it may change, and the text
/// must be terminated where the result says, if there is room for a terminator.
template <class Print>
std::wstring printed(Print print, int size = 1024) {
    constexpr std::size_t margin = 8;
    const std::wstring guard(margin, L'\xE000');
    const auto room = static_cast<std::size_t>(size);
    std::wstring area = guard + std::wstring(room, guard[0]) + guard;
    const auto count = static_cast<std::size_t>(print(area.data() + margin, size));
    EXPECT_EQ(area.substr(0, margin), guard);
    EXPECT_EQ(area.substr(margin + room), guard);
    if (size == 0) return L"";
    EXPECT_EQ(area.find(L'\0', margin), margin + count);
    return area.substr(margin, std::min(count, room));
}

// ---- messages ----

inline N2KMsg message(std::uint32_t pgn, const std::vector<std::uint8_t>& payload,
                      std::uint8_t destination = 255) {
    N2KMsg msg{pgn, 3, 0x23, destination, 0, static_cast<std::uint16_t>(payload.size()), {}, 0};
    std::copy(payload.begin(), payload.end(), msg.data);
    return msg;
}

constexpr unsigned long plain = 2;  // display flag: no hexadecimal forms

/// All lines below a message's stream line. A walk that does not end fails.
inline std::vector<std::wstring> lines_of(const N2KMsg& msg, unsigned long flags = 0, int size = line_size,
                                          QV_N2K_PGN_DB_c& db = qv_n2k_pgn_db) {
    constexpr std::size_t most = 30000;
    StreamLines source(db, find_pgn_def(msg.pgn), msg, flags);
    std::vector<std::wstring> lines;
    for (bool over = false; !over && lines.size() < most;) {
        const std::wstring line = printed(
            [&](wchar_t* buf, int room) {
                const int count = source.next(buf, room);
                over = count < 0;
                if (over) std::fill_n(buf, room, L'\0');
                return std::max(count, 0);
            },
            size);
        if (!over) lines.push_back(line);
    }
    EXPECT_LT(lines.size(), most) << "PGN " << msg.pgn;
    return lines;
}

/// The lines behind source and destination.
inline std::vector<std::wstring> field_lines(const N2KMsg& msg, unsigned long flags = 0) {
    auto lines = lines_of(msg, flags);
    return {lines.begin() + 2, lines.end()};
}

/// A refused short or medium text shows the previous one of its kind: start both from an empty one.
inline void clear_text_areas() {
    convert_bits(50, 0x0102, 0);
    convert_bits(51, 0x010003, 0);
}

inline std::vector<std::uint8_t> random_bytes(std::mt19937& random, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
}

inline const DDDef& dictionary_entry(std::uint32_t dd) {
    for (const DDDef& entry : all_dictionary_entries())
        if (entry.dd == dd) return entry;
    static constexpr DDDef none{};
    ADD_FAILURE() << "no dictionary entry " << dd;
    return none;
}

}  // namespace pgn_vistel::test
