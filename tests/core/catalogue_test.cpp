#include "pgn_vistel/core/catalogue.h"

#include "pgn_vistel/core/units.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// ---- PGNs ----

TEST(Pgns, RowsAndNames) {
    const std::pair<std::uint32_t, const char*> names[] = {
        {126464, "PGN List"},       {61184, "Single-Frame Proprietary"},
        {59904, "ISO Request"},     {126208, "NMEA Group Function"},
        {127250, "Vessel Heading"}, {126720, "Fast-Package Proprietary"}};
    for (const auto& [pgn, name] : names) EXPECT_EQ(pgn_name(find_pgn_def(pgn)), name);
    EXPECT_EQ(pgn_name(nullptr), "Unknown");
    for (const std::uint32_t pgn : {0u, 24u, 25u, 59391u, 130922u, 131071u, 0xFFFFFFFFu})
        EXPECT_EQ(find_pgn_def(pgn), nullptr) << pgn;
    for (const auto& [pgn, addressed] :
         {std::pair{59904u, 1u}, {61184u, 1u}, {65280u, 0u}, {126720u, 1u}, {127250u, 0u}, {130816u, 1u}})
        EXPECT_EQ(find_pgn_def(pgn)->flag_pdu1, addressed) << pgn;
}

TEST(Pgns, FastPackets) {
    for (const std::uint32_t pgn : {126208u, 126720u, 126996u, 129029u, 130816u, 131000u, 131071u})
        EXPECT_TRUE(is_fast_packet(pgn)) << pgn;
    for (const std::uint32_t pgn :
         {0u, 59904u, 65280u, 126207u, 126993u, 127250u, 129025u, 131072u, 0xFFFFFFFFu})
        EXPECT_FALSE(is_fast_packet(pgn)) << pgn;
}

// ---- fields ----

TEST(Fields, Sizes) {
    using Size = std::pair<int, int>;  // bytes, bits
    const auto normalised = [](int bytes, int bits, std::uint32_t dd, std::uint32_t pgn = 127250) {
        FieldDef row{};
        row.bytes = static_cast<std::uint16_t>(bytes);
        row.bits = static_cast<std::uint16_t>(bits);
        row.dd = find_dictionary_entry(dd);
        Size size;
        normalise_field_size(&row, pgn, &size.first, &size.second);
        return size;
    };
    EXPECT_EQ(normalised(0, 16, 1), Size(2, 0));
    EXPECT_EQ(normalised(0, 12, 1), Size(0, 12));
    EXPECT_EQ(normalised(1, 4, 1), Size(0, 12));
    EXPECT_EQ(normalised(0, 0, 10068), Size(0, 4)) << "the dictionary's";
    EXPECT_EQ(normalised(0, 0, 192, 126996), Size(32, 0)) << "the PGN's";
    EXPECT_EQ(normalised(0, 0, 7, 126996), Size(32, 0)) << "which goes for its codes, too";
    EXPECT_EQ(normalised(2, 0, 7, 126996), Size(2, 0));
}

TEST(Fields, Rows) {
    EXPECT_STREQ(first_field_row(126208)->name, "Request Group Function Code");
    EXPECT_STREQ(first_field_row_keyed(126208, 1)->name, "Command Group Function Code");
    EXPECT_EQ(first_field_row_keyed(126208, 7)->field, 0u);
    for (const std::uint32_t pgn : {0u, 25u, 131071u, 9999998u, 0xFFFFFFFFu})
        EXPECT_EQ(first_field_row(pgn)->field, 0u);
    const FieldDef* const first = first_field_row(60928);
    EXPECT_EQ(next_field_row(first, -1), nullptr);
    EXPECT_EQ(next_field_row(next_field_row(first, 9), -9), first);
    EXPECT_EQ(next_field_row(first, 10)->field, 0u);
    // Among variants a step lands on the first one of the next field number.
    EXPECT_STREQ(next_field_row(first_field_row_keyed(126208, 2), 1)->name, "Requested PGN");
}

TEST(Fields, NumberByPosition) {
    const struct {
        std::uint32_t pgn;
        int byte, bit, field;
        // clang-format off
    } cases[] = {
        {60928, 0, 0, 1}, {60928, 2, 5, 2}, {60928, 4, 0, 3}, {60928, 4, 3, -1}, {60928, 1, 0, -1},
        {60928, 2, 4, -1}, {60928, 5, 0, 5}, {127250, 7, 0, -1}, {127250, 0, 1, -1}, {0, 0, 0, -1},
        {25, 0, 0, -1}, {126464, 0, 0, 1}, {126464, 60, 0, 2},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(field_at(c.pgn, c.byte, c.bit), c.field) << c.pgn << ' ' << c.byte;
    for (const PgnDef& row : all_pgns())  // no position may search for ever
        for (const int byte : {1, 223, 65535}) EXPECT_GE(field_at(row.pgn, byte, 0), -1);
}

// ---- the dictionary ----

TEST(Dictionary, Quantities) {
    for (const auto& [dd, expected] : {std::pair{22, 41},
                                       {1, 65},
                                       {410, 65},
                                       {411, -1},
                                       {2435, -1},
                                       {2436, 16},
                                       {2550, -1},
                                       {10000, 50},
                                       {10076, -1},
                                       {-1, -1},
                                       {INT32_MAX, -1}})
        EXPECT_EQ(quantity_of_dd(dd), expected) << dd;
    const std::uint8_t raw[] = {105, 0, 36, 0};  // temperature, velocity
    EXPECT_EQ(quantity_of_dd(dd::value_behind_format, raw + 2), quantity::temperature);
    EXPECT_EQ(quantity_of_dd(dd::format_then_value, raw + 2), quantity::velocity);
    EXPECT_EQ(quantity_of_dd(22, raw + 2), quantity::latitude);
    const std::uint8_t unknown[] = {2, 0, 0xFF, 0xFF};
    EXPECT_EQ(quantity_of_dd(dd::value_behind_format, unknown + 2), quantity_of_dd(dd::value_behind_format));
    EXPECT_EQ(quantity_of_format(105), quantity::temperature);
    EXPECT_EQ(quantity_of_format(65535), -1);
    for (DispDataType q = -1; q <= quantity::count; ++q)
        if (const DF df = format_of_quantity(q); df != 65535) {
            EXPECT_EQ(quantity_of_format(df), q);
        }
}

TEST(Dictionary, Selections) {
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q) {
        EXPECT_EQ(units[q], available_units(q)[0]);
        EXPECT_EQ(units[q], default_unit(q));
    }
    EXPECT_TRUE(units.select(quantity::depth, unit::tonf_uk)) << "any unit for any quantity";
    EXPECT_FALSE(units.select(quantity::no_quantity, unit::m));
    EXPECT_FALSE(units.select(-1, unit::m));
    EXPECT_FALSE(units.select(quantity::depth, unit::count));
    EXPECT_FALSE(units.select(quantity::depth, unit::selected));
    EXPECT_EQ(units[quantity::depth], unit::tonf_uk);
    EXPECT_EQ(units[quantity::no_quantity], unit::raw_count);
}

// ---- stream keys ----

using Keys = std::array<int, 4>;

Keys keys_of(std::uint32_t pgn, Bytes payload) {
    payload.resize(sizeof(N2KMsg::data));
    std::uint8_t k[4] = {255, 255, 255, 255};
    EXPECT_EQ(extract_stream_keys(pgn, payload.data(), &k[0], &k[1], &k[2], &k[3]), 1) << pgn;
    return {k[0], k[1], k[2], k[3]};
}

Bytes label(int length, int encoding, int maker = 0x89) {
    Bytes payload(200, 0x77);
    payload[0] = static_cast<std::uint8_t>(maker), payload[1] = 0x98;
    payload[5] = static_cast<std::uint8_t>(length), payload[6] = static_cast<std::uint8_t>(encoding);
    if (length >= 2 && length < 190) payload[static_cast<std::size_t>(5 + length)] = 42;
    return payload;
}

TEST(StreamKeys, OfPayloads) {
    const struct {
        std::uint32_t pgn;
        Bytes payload;
        Keys keys;
        // clang-format off
    } cases[] = {
        {127505, {0x21}, {1, 2, 255, 255}}, {126208, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {129038, {0xFF, 0xFE}, {255, 0x3F, 0x0E, 255}}, {65286, {0, 0, 0, 7, 0xAB}, {7, 0xB, 255, 7}},
        // the manufacturer's own header tells where the message's number stands
        {61184, {0x89, 0x98, 7, 1, 2, 3, 9}, {7, 255, 255, 255}},
        {126720, {0x89, 0x98, 7, 1, 2, 3, 9}, {9, 255, 255, 255}},
        {61184, {0x88, 0x98, 7}, {255, 255, 255, 255}}, {126720, {0x89, 0x99, 7}, {255, 255, 255, 255}},
        // the channel that a label names stands behind the text
        {130818, label(2, 1), {42, 255, 255, 255}}, {130818, label(128, 0), {42, 255, 255, 255}},
        {130818, label(1, 1), {255, 255, 255, 255}}, {130818, label(129, 1), {255, 255, 255, 255}},
        {130818, label(255, 1), {255, 255, 255, 255}}, {130818, label(10, 2), {255, 255, 255, 255}},
        {130818, label(10, 1, 0x88), {255, 255, 255, 255}},
        // clang-format on
    };
    for (const auto& c : cases) EXPECT_EQ(keys_of(c.pgn, c.payload), c.keys) << c.pgn;
}

TEST(StreamKeys, OnlyKeysThatAreAskedForAreWritten) {
    const std::uint8_t payload[sizeof(N2KMsg::data)] = {0x89, 0x98, 3, 4};
    std::uint8_t k[4] = {0, 255, 0, 1};
    EXPECT_EQ(extract_stream_keys(126208, payload, &k[0], &k[1], &k[2], &k[3]), 1);
    EXPECT_EQ((Keys{k[0], k[1], k[2], k[3]}), (Keys{0, 0x98, 0, 4}));
    for (const std::uint32_t pgn : {0u, 61183u, 127250u, 131000u, 0xFFFFFFFFu, 0x80000000u + 61184})
        EXPECT_EQ(extract_stream_keys(pgn, payload, &k[0], &k[1], &k[2], &k[3]), 0) << pgn;
    EXPECT_EQ(extract_stream_keys(61184, nullptr, &k[0], &k[1], &k[2], &k[3]), 0);
    EXPECT_EQ(k[3], 4);
}

}  // namespace
}  // namespace pgn_vistel::test
