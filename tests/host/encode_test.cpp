#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <set>

#include "assembly/fast_packet.h"
#include "encode/choices.h"
#include "encode/message_builder.h"
#include "encode/number_entry.h"
#include "encode/value_entry.h"
#include "output/unit_names.h"
#include "readers/can_identifier.h"

using namespace pgn_vistel;

namespace vistel {
namespace {

QV_N2K_PGN_DB_c& db() {
    return qv_n2k_pgn_db;
}

/// Every field of the message as decoding shows it, and the payload where it does so.
std::vector<TypedField> shown_fields(const N2KMsg& message) {
    N2KMsg msg = message;
    std::vector<TypedField> result;
    MessageWalk walk(find_pgn_def(msg.pgn), msg);
    while (walk.next()) {
        const FieldCell cell(db(), msg, walk.field(), walk.position);
        result.push_back({cell.label(), cell.shown(true)});
        walk.position = cell.next();
    }
    if (walk.has_undecoded_rest()) {
        result.push_back({"Data", ""});
        for (int i = 0; i < payload_length(msg); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, " %02X", msg.data[i]);
            result.back().value += digits;
        }
    }
    return result;
}

bool is_one_frame(std::uint32_t pgn) {
    static const FastPacketPgns fast;
    return !fast.contains(pgn);
}

/// A message with everything at random but the texts, three rounds of what repeats.
N2KMsg random_message(std::uint32_t pgn, const std::vector<std::uint8_t>& variant, std::mt19937& random) {
    N2KMsg msg{};
    msg.pgn = pgn;
    msg.length = N2K_MAX_PAYLOAD;
    for (std::uint8_t& byte : msg.data) byte = static_cast<std::uint8_t>(random());
    std::ranges::copy(variant, msg.data);
    static const std::vector<std::string> texts = {"", "Pump 1", "Caf\u00e9 \u20ac",
                                                   "Ostsee \u2192 \u6771\u4eac \U0001F6A2"};
    MessageWalk walk(find_pgn_def(pgn), msg);
    int length = 0;
    constexpr int rounds = 3;
    while (walk.next() && walk.field().repeat <= rounds) {
        FieldCell cell(db(), msg, walk.field(), walk.position);
        const std::uint32_t df = cell.dd().format->df;
        if (cell.holds_text() && df != hex_dump) {
            const bool fixed = df == fixed_text;
            EXPECT_EQ(enter_value(cell, fixed ? "T" : texts[random() % texts.size()]), "");
        }
        walk.position = cell.next();
        length = cell.end();
    }
    msg.length = static_cast<std::uint16_t>(length);
    if (is_one_frame(pgn) && length < 8) {
        std::memset(msg.data + length, 0xFF, static_cast<std::size_t>(8 - length));
        msg.length = 8;
    }
    return msg;
}

std::set<std::uint32_t> pgns() {
    std::set<std::uint32_t> numbers;
    for (const FieldDef& row : all_fields())
        if (row.field != 0) numbers.insert(row.pgn);
    return numbers;
}

TEST(Encode, WhatDecodingShowsCanBeTyped) {
    std::mt19937 random(7);
    for (const std::uint32_t pgn : pgns()) {
        const PgnDef* const row = find_pgn_def(pgn);
        if (row == nullptr) continue;
        for (const auto& variant : variants_of(*row))
            for (int i = 0; i < 20; ++i) {
                const N2KMsg msg = random_message(pgn, variant, random);
                const auto typed = shown_fields(msg);
                const BuiltMessage built = build_message(db(), pgn, row, typed);
                for (const std::string& error : built.errors) ADD_FAILURE() << pgn << ": " << error;
                if (!built.errors.empty()) continue;
                const auto shown = shown_fields(built.msg);
                for (std::size_t k = 0; k < std::min(shown.size(), typed.size()); ++k)
                    EXPECT_EQ(shown[k].label + "=" + shown[k].value, typed[k].label + "=" + typed[k].value)
                        << pgn;
                EXPECT_EQ(shown.size(), typed.size()) << pgn;
            }
    }
}

}  // namespace
}  // namespace vistel
