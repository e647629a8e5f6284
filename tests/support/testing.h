#pragma once

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/pgn_db.h"
#include "support/shown.h"

namespace pgn_vistel::test {

/// Of a number of random trials those that an instrumented build has the time for.
constexpr int trials(int count) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return count / 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return count / 20;
#endif
#endif
    return count;
}

using Bytes = std::vector<std::uint8_t>;

inline Bytes random_bytes(std::mt19937& random, std::size_t count) {
    Bytes bytes(count);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
}

inline std::string hex(const Bytes& bytes, const char* between = "") {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += (text.empty() ? "" : between) + std::string(digits);
    }
    return text;
}

inline N2KMsg message(std::uint32_t pgn, const Bytes& payload, std::uint8_t destination = 255) {
    N2KMsg msg{pgn, 3, 0x23, destination, 0, static_cast<std::uint16_t>(payload.size()), {}, 0};
    std::copy(payload.begin(), payload.end(), msg.data);
    return msg;
}

inline std::set<std::uint32_t> catalogued_pgns() {
    std::set<std::uint32_t> pgns = {0, 25, 131071, 0xFFFFFFFF};
    for (const PgnDef& row : all_pgns()) pgns.insert(row.pgn);
    for (const PgnDef& row : all_corrected_pgns()) pgns.insert(row.pgn);
    return pgns;
}

constexpr bool plain = true;                ///< of numbers: without their hexadecimal form
constexpr unsigned long plain_display = 2;  ///< the display flag for the same

/// The lines behind source and destination.
inline std::vector<std::wstring> field_lines(const N2KMsg& msg, bool plain_numbers = false) {
    const auto lines = lines_of(msg, plain_numbers);
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
