#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Db = QV_N2K_PGN_DB_c;

TEST(Pgns, LookupMeetsTheSameVariantAsEver) {
    const std::pair<std::uint32_t, const char*> variants[] = {
        {60416, "ISO Transport Protocol, Connection Management - RTS group function"},
        {61184, "Water Maker Control"},
        {65280, "Proprietary B"},
        {65282, "Watermaker Flow"},
        {65300, "Carling Flash Table Configuration Response"},
        {126720, "Carling Breaker Configuration Command"},
        {130921, "Carling System Alert Message"},
        {127250, "Vessel Heading"}};
    for (const auto& [pgn, name] : variants) {
        const PgnDef* const row = find_pgn_def(pgn);
        ASSERT_NE(row, nullptr) << pgn;
        EXPECT_STREQ(row->name, name);
    }
    EXPECT_EQ(low_half(find_pgn_def(126208)->key1), 3) << "the Read Fields row";
    EXPECT_EQ(low_half(find_pgn_def(126464)->key1), 1) << "the Received row";
    for (const PgnDef& row : all_pgns().first(308)) {
        const PgnDef* const found = find_pgn_def(row.pgn);
        ASSERT_NE(found, nullptr) << row.pgn;
        EXPECT_EQ(found->pgn, row.pgn);
    }
    for (const std::uint32_t pgn : {0u, 25u, 24u, 59391u, 127251u + 1000, 130922u, 131071u, 0xFFFFFFFFu})
        EXPECT_EQ(find_pgn_def(pgn), nullptr) << pgn;
}

TEST(Pgns, FastPackets) {
    for (const std::uint32_t pgn :
         {126208u, 126464u, 126720u, 126996u, 129029u, 130060u, 130816u, 130999u, 131071u})
        EXPECT_TRUE(is_fast_packet(pgn)) << pgn;
    // Below 126208 none is; some fill one frame; unknown ones between are taken as single frames.
    for (const std::uint32_t pgn : {0u, 59904u, 65240u, 65535u, 126207u, 126993u, 127250u, 127252u, 127744u,
                                    127751u, 128000u, 130815u, 131072u, 262143u, 0xFFFFFFFFu})
        EXPECT_FALSE(is_fast_packet(pgn)) << pgn;
}

TEST(Pgns, ClosingRowAndFormatFlag) {
    const PgnDef& closing = all_pgns().back();
    EXPECT_EQ(all_pgns().size(), 309u);
    EXPECT_EQ(closing.pgn, 25u);
    EXPECT_EQ(closing.key1, 0u);
    EXPECT_STREQ(closing.name, "");
    for (const auto& [pgn, addressed] :
         {std::pair{59904, 1}, {61184, 1}, {65280, 0}, {126720, 1}, {127250, 0}, {130816, 1}, {130838, 1}})
        EXPECT_EQ(find_pgn_def(static_cast<std::uint32_t>(pgn))->flag_pdu1,
                  static_cast<std::uint32_t>(addressed))
            << pgn;
}

TEST(Pgns, DisplayNames) {
    // clang-format off
    const std::pair<std::uint32_t, const wchar_t*> names[] = {
        {126464, L"PGN List"}, {61184, L"Single-Frame Proprietary"}, {126208, L"NMEA Group Function"},
        {126720, L"Fast-Package Proprietary"}, {65300, L"Carling Flash Table Configuration Response"},
        {59904, L"ISO Request"},
    };
    // clang-format on
    for (const auto& [pgn, name] : names) {
        EXPECT_STREQ(pgn_def_name(find_pgn_def(pgn)), name);
        EXPECT_EQ(printed([number = pgn](wchar_t* b, int n) { return Db::print_pgn_name(b, n, number); }),
                  name);
    }
    EXPECT_STREQ(pgn_def_name(nullptr), L"Unknown");
    for (int size = 1; size <= 14; ++size) {
        const auto expected = static_cast<std::size_t>(std::min(size - 1, 11));
        EXPECT_EQ(printed([](wchar_t* b, int n) { return Db::print_pgn_name(b, n, 59904); }, size),
                  std::wstring(L"ISO Request").substr(0, expected));
        char narrow[16] = "???????????????";
        EXPECT_EQ(Db::print_pgn_name(narrow, size, 59904), static_cast<int>(expected));
        EXPECT_EQ(narrow, std::string("ISO Request").substr(0, expected));
        EXPECT_EQ(narrow[expected + 1], '?');
    }
    wchar_t buf[16];
    EXPECT_EQ(Db::print_pgn_name(buf, 0, 59904), -1);
    EXPECT_EQ(Db::print_pgn_name(buf, 16, 25), -1);
    EXPECT_EQ(Db::print_pgn_name(static_cast<wchar_t*>(nullptr), 16, 59904), -1);
    EXPECT_EQ(Db::print_pgn_name(static_cast<char*>(nullptr), 16, 59904), -1);
}

}  // namespace
}  // namespace pgn_vistel::test
