#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Size = std::pair<int, int>;  // bytes, bits

Size completed(std::uint32_t pgn, std::uint32_t dd, Size own) {
    QV_N2K_PGN_DB_c::get_bytes_bits(pgn, const_cast<DDDef*>(&dictionary_entry(dd)), &own.first, &own.second);
    return own;
}

Size normalised(int bytes, int bits, std::uint32_t dd, std::uint32_t pgn = 127250) {
    FieldDef row{};
    row.bytes = static_cast<std::uint16_t>(bytes);
    row.bits = static_cast<std::uint16_t>(bits);
    row.dd = &dictionary_entry(dd);
    Size size;
    normalise_field_size(&row, pgn, &size.first, &size.second);
    return size;
}

TEST(Fields, Sizes) {
    EXPECT_EQ(completed(126996, 192, {0, 0}), Size(32, 0));
    EXPECT_EQ(completed(126996, 7, {0, 0}), Size(32, 0)) << "the codes of this message, too";
    EXPECT_EQ(completed(126996, 7, {2, 0}), Size(2, 0));
    EXPECT_EQ(completed(126996, 7, {0, 4}), Size(0, 4));
    EXPECT_EQ(completed(127250, 192, {0, 0}), Size(0, 0));
    EXPECT_EQ(completed(127250, 9, {0, 0}), Size(0, 24));
    EXPECT_EQ(completed(127250, 17, {3, 0}), Size(3, 0));
    QV_N2K_PGN_DB_c::get_bytes_bits(126996, nullptr, nullptr, nullptr);
    EXPECT_EQ(normalised(0, 16, 1), Size(2, 0));
    EXPECT_EQ(normalised(0, 12, 1), Size(0, 12));
    EXPECT_EQ(normalised(1, 4, 1), Size(0, 12));
    EXPECT_EQ(normalised(0, 0, 10068), Size(0, 4));
    EXPECT_EQ(normalised(0, 0, 192, 126996), Size(32, 0));
}

TEST(Fields, FirstRow) {
    EXPECT_STREQ(first_field_row(127250)->name, "Sequence ID");
    EXPECT_STREQ(first_field_row(126208)->name, "Request Group Function Code");
    EXPECT_STREQ(first_field_row_keyed(126208, 1)->name, "Command Group Function Code");
    EXPECT_STREQ(first_field_row_keyed(126208, 2)->name, "Acknowledgment Group Function Code");
    for (const std::uint32_t pgn : {0u, 25u, 131071u, 9999998u, 0xFFFFFFFFu})
        EXPECT_EQ(first_field_row(pgn)->field, 0u);
    EXPECT_EQ(first_field_row_keyed(126208, 7)->field, 0u);
}

TEST(Fields, Stepping) {
    const FieldDef* const first = first_field_row(60928);
    EXPECT_EQ(next_field_row(first, -1), nullptr);
    const FieldDef* const last = next_field_row(first, 9);
    EXPECT_EQ(last->field, 10u);
    EXPECT_EQ(next_field_row(last, 1)->field, 0u);
    EXPECT_EQ(next_field_row(last, -9), first);
    EXPECT_EQ(next_field_row(last, 0), last);
    EXPECT_EQ(next_field_row(first, 100000)->field, 0u);
    EXPECT_EQ(next_field_row(first_field_row(59392), 2)->pgn, 59392u);
    EXPECT_EQ(next_field_row(first_field_row(59392), 60)->field, 0u);
    // Among variants a step lands on the first one of the next field number.
    const FieldDef* const acknowledgment = first_field_row_keyed(126208, 2);
    EXPECT_STREQ(next_field_row(acknowledgment, 1)->name, "Requested PGN");
    EXPECT_STREQ(next_field_row(next_field_row(acknowledgment, 1), 1)->name, "Transmission interval");
}

TEST(Fields, RepeatSets) {
    const struct {
        std::uint32_t pgn;
        int first, last;
    } sets[] = {{126208, 6, 6},   {126464, 2, 2}, {127503, 3, 12},
                {129029, 16, 18}, {130074, 6, 9}, {130831, 8, 9}};
    for (const auto& [pgn, first, last] : sets) {
        const RepeatSetDef* const set = find_repeat_set(pgn);
        ASSERT_NE(set, nullptr) << pgn;
        EXPECT_EQ(set->first, first);
        EXPECT_EQ(set->last, last);
    }
    for (const std::uint32_t pgn : {0u, 127250u, 126207u, 130832u, 0xFFFFFFFFu})
        EXPECT_EQ(find_repeat_set(pgn), nullptr);
}

TEST(Fields, NumberByPosition) {
    QV_N2K_PGN_DB_c db;
    const struct {
        unsigned long pgn;
        unsigned short byte;
        unsigned char bit;
        int field;
        // clang-format off
    } cases[] = {
        {60928, 0, 0, 1}, {60928, 2, 5, 2}, {60928, 4, 0, 3}, {60928, 4, 3, -1}, {60928, 1, 0, -1},
        {60928, 2, 4, -1}, {60928, 5, 0, 5}, {60928, 6, 0, 6}, {127250, 0, 0, 1}, {127250, 7, 0, -1},
        {127250, 0, 1, -1}, {0, 0, 0, -1}, {25, 0, 0, -1}, {131071, 0, 0, -1}, {126464, 0, 0, 1},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(db.get_field_id(c.pgn, c.byte, c.bit), c.field)
            << c.pgn << ' ' << c.byte << '.' << int{c.bit};
    for (const PgnDef& row : all_pgns())  // no position may search for ever
        for (const unsigned short byte : {1, 223, 65535}) EXPECT_GE(db.get_field_id(row.pgn, byte, 0), -1);
}

}  // namespace
}  // namespace pgn_vistel::test
