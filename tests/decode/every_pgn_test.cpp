#include <algorithm>
#include <set>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// What holds for every message, whatever it carries.

std::set<std::uint32_t> catalogued_pgns() {
    std::set<std::uint32_t> pgns = {0, 25, 131071, 0xFFFFFFFF};
    for (const PgnDef& row : all_pgns()) pgns.insert(row.pgn);
    return pgns;
}

enum class Fill { zeros, ones, twos, random, makers, texts };
constexpr Fill fills[] = {Fill::zeros, Fill::ones, Fill::twos, Fill::random, Fill::makers, Fill::texts};
constexpr int lengths[] = {0, 1, 2, 3, 5, 8, 9, 43, 223, 1785, 65535};

N2KMsg filled(std::uint32_t pgn, Fill fill, int length, std::mt19937& random) {
    N2KMsg msg = message(pgn, random_bytes(random, sizeof(N2KMsg::data)));
    if (fill == Fill::zeros || fill == Fill::ones || fill == Fill::twos)
        std::memset(msg.data, fill == Fill::zeros ? 0 : fill == Fill::ones ? 255 : 2, sizeof msg.data);
    if (fill == Fill::makers) msg.data[0] = 0x89, msg.data[1] = 0x98;
    if (fill == Fill::texts)  // short texts, now and then in UTF-16
        for (std::size_t i = 0; i < sizeof msg.data; ++i)
            msg.data[i] = static_cast<std::uint8_t>(random() % 8);
    msg.length = static_cast<std::uint16_t>(length);
    return msg;
}

template <class Check>
void for_all_messages(Check check) {
    std::mt19937 random(42);
    for (const std::uint32_t pgn : catalogued_pgns())
        for (const Fill fill : fills)
            for (const int length : lengths) {
                SCOPED_TRACE("PGN " + std::to_string(pgn) + " fill " +
                             std::to_string(static_cast<int>(fill)) + " length " + std::to_string(length));
                check(filled(pgn, fill, length, random), random);
                if (testing::Test::HasFailure()) return;
            }
}

TEST(EveryPgn, ShowsNothingFromBeyondTheLength) {
    for_all_messages([](const N2KMsg& msg, std::mt19937& random) {
        N2KMsg other = msg;
        const int length = payload_length(msg);
        const auto rest = random_bytes(random, sizeof msg.data - static_cast<std::size_t>(length));
        std::copy(rest.begin(), rest.end(), other.data + length);
        clear_text_areas();
        const auto lines = lines_of(msg);
        clear_text_areas();
        ASSERT_EQ(lines, lines_of(other));
        for (const auto& line : lines) ASSERT_LT(line.size(), static_cast<std::size_t>(line_size));
    });
}

TEST(EveryPgn, PositionsOnlyGrow) {
    for_all_messages([](const N2KMsg& msg, std::mt19937&) {
        MessageWalk walk(find_pgn_def(msg.pgn), msg);
        while (walk.next()) {
            const auto [row, bytes, bits, repeat] = walk.field();
            const PayloadPosition before = walk.position;
            ASSERT_LT(before.byte, payload_length(msg));
            wchar_t buf[64];
            qv_n2k_pgn_db.get_field_str(buf, 64, const_cast<N2KMsg*>(&msg), static_cast<int>(row->field),
                                        const_cast<DDDef*>(row->dd), L"", bytes, bits, &walk.position.byte,
                                        &walk.position.bit, nullptr, repeat, 1, 0, nullptr, nullptr, -1);
            ASSERT_GE(walk.position.byte * 8 + walk.position.bit, before.byte * 8 + before.bit)
                << "field " << row->field;
            ASSERT_TRUE(walk.position.bit >= 0 && walk.position.bit <= 7);
        }
        ASSERT_FALSE(walk.next()) << "an ended walk stays ended";
    });
}

TEST(EveryPgn, TinyBuffersHoldTheBeginning) {
    std::mt19937 random(3);
    for (const std::uint32_t pgn : catalogued_pgns()) {
        const N2KMsg msg = filled(pgn, Fill::random, 60, random);
        clear_text_areas();
        const auto lines = lines_of(msg);
        for (const std::size_t size : {0, 1, 2, 7, 20, 40}) {
            clear_text_areas();
            const auto cut = lines_of(msg, 0, static_cast<int>(size));
            ASSERT_EQ(cut.size(), lines.size()) << pgn;
            for (std::size_t i = 0; i < cut.size(); ++i) {
                EXPECT_EQ(cut[i], lines[i].substr(0, cut[i].size())) << pgn;
                // A list of flags may lose the comma and the blank at its end.
                EXPECT_GT(cut[i].size() + 3, std::min(size, lines[i].size())) << pgn;
            }
        }
    }
}

TEST(EveryPgn, UnitsDoNotMatterForThePositions) {
    std::mt19937 random(4);
    for (const std::uint32_t pgn : catalogued_pgns()) {
        const N2KMsg msg = filled(pgn, Fill::random, 100, random);
        const std::size_t count = lines_of(msg).size();
        for (const UnitId unit : {unit::m, unit::raw_count, unit::raw_bits, unit::clock_24}) {
            static QV_N2K_PGN_DB_c db;
            for (int q = 0; q < quantity::count; ++q) db.SelectUnit(q, unit);
            EXPECT_EQ(lines_of(msg, 0, line_size, db).size(), count) << pgn << " unit " << unit;
        }
    }
}

}  // namespace
}  // namespace pgn_vistel::test
