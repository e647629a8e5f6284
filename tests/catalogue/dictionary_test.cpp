#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

TEST(Dictionary, Quantities) {
    const std::pair<int, int> quantities[] = {
        {9, 28},     {128, 28},   {22, 41},    {202, 41},  {23, 42},        {43, 10},
        {136, 5},    {140, 6},    {0, 65},     {1, 65},    {410, 65},       {411, -1},
        {2435, -1},  {2436, 16},  {2549, 65},  {2550, -1}, {9999, -1},      {10000, 50},
        {10058, 27}, {10075, 50}, {10076, -1}, {-1, -1},   {INT32_MIN, -1}, {INT32_MAX, -1}};
    for (const auto& [dd, quantity] : quantities)
        EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataType(dd), quantity) << dd;
}

TEST(Dictionary, QuantityNamedInThePayload) {
    const std::uint8_t raw[] = {105, 0, 36, 0};  // temperature, velocity
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(10059, raw + 2), 10);
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(10057, raw + 2), 60);
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(22, raw + 2), 41);
    const std::uint8_t unknown[] = {2, 0, 0xFF, 0xFF};
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(10059, unknown + 2), 50) << "back to the entry's own";
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(10057, unknown + 2), 50);
    EXPECT_EQ(QV_N2K_PGN_DB_c::get_DispDataTypeX(411, unknown + 2), -1);
}

}  // namespace
}  // namespace pgn_vistel::test
