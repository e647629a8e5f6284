#include "pgn_vistel/core/catalogue.h"

#include "core/plan.h"
#include "core/tables.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

TEST(Pgns, Rows) {
    // PGN, whether it is a fast packet: also of those that no row has
    for (const auto& [pgn, fast] : {std::pair{126208u, true},
                                    {127250u, false},
                                    {25u, false},
                                    {131000u, true},
                                    {131071u, true},
                                    {131072u, false},
                                    {0xFFFFFFFFu, false}}) {
        EXPECT_EQ(is_fast_packet(pgn), fast) << pgn;
        EXPECT_EQ(is_fast_packet(pgn, Definitions::corrected), fast) << pgn;
    }
    // Of several variants the search of the whole table meets one.
    for (std::uint32_t pgn = 0; pgn <= 0x3FFFF; ++pgn) {
        const int met = binary_search(all_pgns(), pgn);
        ASSERT_EQ(find_pgn_def(pgn), met >= 0 ? &all_pgns()[static_cast<std::size_t>(met)] : nullptr) << pgn;
    }
    for (const std::uint32_t pgn : {0x40000u, 0u - 0x0E800u, 0x1F112u + 0x80000000u})
        EXPECT_EQ(find_pgn_def(pgn), nullptr) << pgn;
}

// ---- fields ----

TEST(Fields, Rows) {
    EXPECT_STREQ(first_field_row(126208)->name, "Request Group Function Code");
    EXPECT_STREQ(first_field_row_keyed(126208, 1)->name, "Command Group Function Code");
    EXPECT_EQ(first_field_row_keyed(126208, 7)->field, 0u);
    for (const std::uint32_t pgn : {0u, 131071u, 9999998u, 0xFFFFFFFFu})
        EXPECT_EQ(first_field_row(pgn)->field, 0u);
    const FieldDef* const first = first_field_row(60928);
    EXPECT_EQ(next_field_row(first, -1), nullptr);
    EXPECT_EQ(next_field_row(next_field_row(first, 9), -9), first);
    EXPECT_EQ(next_field_row(first, 10)->field, 0u);
    // Among variants a step lands on the first one of the next field number.
    EXPECT_STREQ(next_field_row(first_field_row_keyed(126208, 2), 1)->name, "Requested PGN");
}

TEST(Fields, NumberByPosition) {
    const std::tuple<std::uint32_t, int, int, int> cases[] = {
        // clang-format off
        {60928, 0, 0, 1}, {60928, 2, 5, 2}, {60928, 4, 0, 3}, {60928, 4, 3, -1}, {60928, 1, 0, -1},
        {60928, 2, 4, -1}, {60928, 5, 0, 5}, {127250, 7, 0, -1}, {127250, 0, 1, -1}, {0, 0, 0, -1},
        // rounds of a repeating group
        {126464, 0, 0, 1}, {126464, 6, 0, 2}, {126464, 60, 0, 2}, {127503, 20, 0, 6},
        // clang-format on
    };
    for (const auto& [pgn, byte, bit, field] : cases)
        EXPECT_EQ(field_at(pgn, byte, bit), field) << pgn << ' ' << byte;
    for (const PgnDef& row : all_pgns())  // no position may search for ever
        for (const int byte : {1, 223, 65535}) EXPECT_GE(field_at(row.pgn, byte, 0), -1);
}

// ---- enumerations ----

/// The generator's index agrees with a search of the whole set.
TEST(Enumerations, Entries) {
    std::mt19937 random(1);
    for (const DDstrings& set : all_enumerations()) {
        if (set.kind == ENUM_FLAGS) continue;
        SCOPED_TRACE(set.dd);
        EXPECT_EQ(find_enumeration(set.dd), &set);
        std::vector<std::uint32_t> values = {0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF};
        for (std::uint32_t i = 0; i < 1000; ++i)
            values.insert(values.end(), {i, static_cast<std::uint32_t>(random())});
        for (std::uint32_t i = 0; i < set.count; ++i)
            for (const std::uint32_t off : {0u - 1, 0u, 1u}) values.push_back(set.pairs[i].value + off);
        for (const std::uint32_t value : values) {
            std::uint16_t expected = no_entry;
            for (std::uint16_t i = 0; set.kind == ENUM_ENTRY_BELOW && i < set.count; ++i)
                if (set.pairs[i].value < value) expected = i;
            for (auto i = static_cast<std::uint16_t>(set.count); i-- > 0;)
                if (set.pairs[i].value == value) expected = i;
            ASSERT_EQ(find_entry(find_set(set.dd), value), expected) << value;
        }
    }
    EXPECT_EQ(find_entry(find_set(dd::format_number), 2), no_entry) << "no format that a value may name";
}

// ---- the dictionary ----

TEST(Dictionary, Quantities) {
    for (const int unknown : {411, 2435, 2550, 10076, -1, INT32_MAX})
        EXPECT_EQ(quantity_of_dd(unknown), -1) << unknown;
    const std::uint8_t raw[] = {105, 0, 36, 0};  // temperature, velocity
    EXPECT_EQ(quantity_of_dd(dd::value_behind_format, raw + 2), quantity::temperature);
    EXPECT_EQ(quantity_of_dd(dd::format_then_value, raw + 2), quantity::velocity);
    EXPECT_EQ(quantity_of_dd(22, raw + 2), quantity::latitude);
    const std::uint8_t unknown[] = {2, 0, 0xFF, 0xFF};
    EXPECT_EQ(quantity_of_dd(dd::value_behind_format, unknown + 2), quantity_of_dd(dd::value_behind_format));
    EXPECT_EQ(quantity_of_format(65535), -1);
    for (DispDataType q = -1; q <= quantity::count; ++q)
        if (const DF df = format_of_quantity(q); df != 65535) {
            EXPECT_EQ(quantity_of_format(df), q);
        }
}

// ---- stream keys ----

Bytes label(int length, int encoding, int maker = 0x89) {
    Bytes payload(200, 0x77);
    payload[0] = static_cast<std::uint8_t>(maker), payload[1] = 0x98;
    payload[5] = static_cast<std::uint8_t>(length), payload[6] = static_cast<std::uint8_t>(encoding);
    if (length >= 2 && length < 190) payload[static_cast<std::size_t>(5 + length)] = 42;
    return payload;
}

TEST(StreamKeys, OfPayloads) {
    const StreamKeys none = {255, 255, 255, 255}, label_key = {42, 255, 255, 255};
    const std::tuple<std::uint32_t, Bytes, StreamKeys> cases[] = {
        // clang-format off
        {127505, {0x21}, {1, 2, 255, 255}}, {126208, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {129038, {0xFF, 0xFE}, {255, 0x3F, 0x0E, 255}}, {65286, {0, 0, 0, 7, 0xAB}, {7, 0xB, 255, 7}},
        // the manufacturer's own header tells where the message's number stands
        {61184, {0x89, 0x98, 7, 1, 2, 3, 9}, {7, 255, 255, 255}},
        {126720, {0x89, 0x98, 7, 1, 2, 3, 9}, {9, 255, 255, 255}},
        {61184, {0x88, 0x98, 7}, none}, {126720, {0x89, 0x99, 7}, none},
        // the channel that a label names stands behind the text
        {130818, label(2, 1), label_key}, {130818, label(128, 0), label_key}, {130818, label(1, 1), none},
        {130818, label(129, 1), none}, {130818, label(255, 1), none}, {130818, label(10, 2), none},
        {130818, label(10, 1, 0x88), none},
        // clang-format on
    };
    for (const auto& [pgn, payload, keys] : cases) EXPECT_EQ(stream_keys(message(pgn, payload)), keys) << pgn;
    for (const std::uint32_t pgn : {0u, 127250u, 131000u, 0xFFFFFFFFu, 0x80000000u + 61184})
        EXPECT_EQ(stream_keys(message(pgn, {0x89, 0x98, 3, 4})), none);
}

}  // namespace
}  // namespace pgn_vistel::test
