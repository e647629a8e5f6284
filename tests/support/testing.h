#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/core/render.h"
#include "pgn_vistel/pgn_db.h"

namespace pgn_vistel::test {

using namespace core;

/// Of a number of random trials those that an instrumented build has the time for.
constexpr int trials(int count) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return count / 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return count / 20;
#else
    return count;
#endif
#else
    return count;
#endif
}

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

using Bytes = std::vector<std::uint8_t>;

inline Bytes random_bytes(std::mt19937& random, std::size_t count) {
    Bytes bytes(count);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
}

inline N2KMsg message(std::uint32_t pgn, const Bytes& payload, std::uint8_t destination = 255) {
    N2KMsg msg{pgn, 3, 0x23, destination, 0, static_cast<std::uint16_t>(payload.size()), {}, 0};
    std::copy(payload.begin(), payload.end(), msg.data);
    return msg;
}

inline std::set<std::uint32_t> catalogued_pgns() {
    std::set<std::uint32_t> pgns = {0, 25, 131071, 0xFFFFFFFF};
    for (const PgnDef& row : all_pgns()) pgns.insert(row.pgn);
    return pgns;
}

constexpr bool plain = true;                ///< of numbers: without their hexadecimal form
constexpr unsigned long plain_display = 2;  ///< the display flag for the same

/// All lines below a message's stream line. A walk that does not end fails.
inline std::vector<std::wstring> lines_of(const N2KMsg& msg, bool plain_numbers = false,
                                          const UnitSelection& units = {}, int size = line_size) {
    constexpr std::size_t most = 30000;
    TextScratch scratch;
    StreamLines source(find_pgn_def(msg.pgn), msg, units, scratch, plain_numbers);
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
inline std::vector<std::wstring> field_lines(const N2KMsg& msg, bool plain_numbers = false) {
    auto lines = lines_of(msg, plain_numbers);
    return {lines.begin() + 2, lines.end()};
}

/// Exported entries show the previous short or medium text for one that is refused: both start from an empty
/// one.
inline void clear_text_areas() {
    ConvValue out{};
    const std::uint8_t short_text[] = {2, 1}, medium_text[] = {3, 0, 1};
    QV_N2K_PGN_DB_c::conv_DF(format::text_short, &out, short_text, unit::m);
    QV_N2K_PGN_DB_c::conv_DF(format::text_medium, &out, medium_text, unit::m);
}

}  // namespace pgn_vistel::test
