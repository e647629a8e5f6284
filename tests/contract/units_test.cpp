#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

using Db = QV_N2K_PGN_DB_c;

TEST(Units, NamesAndAvailability) {
    EXPECT_EQ(printed([](wchar_t* b, int n) { return Db::print_unit(b, n, 103, 0); }), L"k\x2126");
    EXPECT_EQ(printed([](wchar_t* b, int n) { return Db::print_unit(b, n, 139, 0); }, 4), L"ton");
    wchar_t buf[4] = L"???";
    for (const UnitId u : {-1, 140, 1 << 30}) EXPECT_EQ(Db::print_unit(buf, 4, u, 0), 0);
    EXPECT_EQ(Db::print_unit(buf, 0, 1, 0), 0);
    EXPECT_EQ(std::wstring(buf), L"???") << "not touched";
    EXPECT_EQ(Db::print_unit(static_cast<wchar_t*>(nullptr), 4, 1, 0), 0);
    char text[8];
    EXPECT_EQ(Db::print_unit(text, 8, 22, 0), 1);
    EXPECT_STREQ(text, "\xB0");
    EXPECT_EQ(GetUnitDataType_Num(), 140);
    EXPECT_EQ(GetDispDataType_Num(), 65);

    std::vector<UnitId> units(8, -5);
    EXPECT_EQ(Db::GetAvailableUnit(15, units.data(), 3), 7);
    EXPECT_EQ(units, (std::vector{41, 134, 135, -5, -5, -5, -5, -5}));
    for (const int most : {0, -1, INT32_MIN}) EXPECT_EQ(Db::GetAvailableUnit(0, units.data(), most), 3);
    EXPECT_EQ(units[0], 41);
    EXPECT_EQ(Db::GetAvailableUnit(33, units.data(), 8), 0);
    EXPECT_EQ(Db::GetAvailableUnit(15, nullptr, 8), -1);
    for (const int q : {-1, 65, 1 << 30}) EXPECT_EQ(Db::GetAvailableUnit(q, units.data(), 8), -1);
}

TEST(Units, CopiesShareASelection) {
    Db db, other;
    EXPECT_EQ(db.SelectUnit(0, 45), 0) << "any unit for any quantity";
    for (const auto& [q, u] : {std::pair{65, 68}, {-1, 0}, {0, 140}, {0, -1}})
        EXPECT_EQ(db.SelectUnit(q, u), -1);
    EXPECT_EQ(db.GetSelectUnit(0), 45);
    for (const int q : {-1, 65, 66}) EXPECT_EQ(db.GetSelectUnit(q), -1);
    EXPECT_EQ(other.GetSelectUnit(0), unit::ft) << "each starts from the defaults";
    other = db;
    db.SelectUnit(0, unit::ftm);
    EXPECT_EQ(other.GetSelectUnit(0), unit::ftm);
    EXPECT_EQ(Db(other).GetSelectUnit(0), unit::ftm);
}

TEST(Units, PrintedUnitAndValue) {
    Db db;
    const std::uint8_t raw[16] = {0x10, 0x27};  // 10000
    const std::uint8_t none[16] = {0xFF, 0x7F};
    db.SelectUnit(quantity::depth, unit::m);
    // Value, blank and unit take 513 characters at most.
    const auto print = [](auto act) { return printed([&](wchar_t* b, int) { return act(b); }, 513); };
    // clang-format off
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_unit_dt(b, quantity::depth, -1); }), L"m");
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_unit(b, DF{2}, unit::rad); }), L"Rad") << "needs no class";
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_val(b, 42, raw, -1); }), L"100.00");
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_val_unit(b, 42, raw, unit::mV); }), L"100000 mV");
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_val_dt(b, quantity::voltage, raw, -1); }), L"100.00");
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_val_unit_dt(b, quantity::voltage, raw, -1); }), L"100.00 V");
    EXPECT_EQ(print([&](wchar_t* b) { return db.print_val_unit(b, 59, raw, -1); }), L"10000") << "no name, no blank";
    // clang-format on
    wchar_t b[513];
    for (const int result :
         {db.print_unit(b, DF{2}, -1), db.print_unit_dt(b, 33, -1), db.print_unit_dt(b, 65, -1),
          db.print_unit_dt(nullptr, 0, 0), db.print_val(b, 2, raw, -1), db.print_val(b, 118, raw, 0),
          db.print_val(b, 42, raw, 140), db.print_val(b, 42, raw, unit::A), db.print_val(b, 42, none, -1),
          db.print_val_unit(b, 42, none, -1), db.print_val_dt(b, quantity::depth, raw, 0),
          db.print_val(nullptr, 42, raw, 20), db.print_val(b, 42, nullptr, 20)})
        EXPECT_EQ(result, -1);
}

}  // namespace
}  // namespace pgn_vistel::test
