#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

TEST(Enumerations, Lookup) {
    for (const DDstrings& set : all_enumerations()) EXPECT_EQ(QV_N2K_PGN_DB_c::find_DDstrings(set.dd), &set);
    EXPECT_EQ(all_enumerations().size(), 149u);
    for (const unsigned dd : {0u, 1u, 10057u, 10059u, 411u, 5000u, 0xFFFFFFFFu})
        EXPECT_EQ(QV_N2K_PGN_DB_c::find_DDstrings(dd), nullptr);
}

TEST(Enumerations, DataFormatsAreListedByEveryDatabase) {
    QV_N2K_PGN_DB_c db;
    const auto* const set = static_cast<const DDstrings*>(db.find_DDstrings(10058));
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->kind, ENUM_UNKNOWN);
    EXPECT_EQ(set->count, 0u);
    std::size_t count = 0;
    for (; set->pairs[count].text != nullptr; ++count)
        EXPECT_NE(find_self_described(static_cast<DF>(set->pairs[count].value)), nullptr)
            << "a value may name each";
    EXPECT_EQ(count, 20u);
    EXPECT_EQ(set->pairs[count].value, 0xFFFFFFFFu);
    EXPECT_STREQ(set->pairs[0].text, "DF60005 (4-20 mA)");
    EXPECT_STREQ(set->pairs[19].text, "DF104 (Mass)");
}

}  // namespace
}  // namespace pgn_vistel::test
