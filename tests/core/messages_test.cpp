#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// What holds for every message, whatever it carries and however it is shown.

enum Fill { zeros, ones, twos, any_bytes, makers, texts, fill_count };
constexpr int lengths[] = {0, 1, 2, 3, 5, 8, 9, 43, 223, 1785, 65535};

N2KMsg filled(std::uint32_t pgn, int fill, int length, std::mt19937& random) {
    N2KMsg msg = message(pgn, random_bytes(random, sizeof(N2KMsg::data)));
    if (fill == zeros || fill == ones || fill == twos)
        std::memset(msg.data, fill == zeros ? 0 : fill == ones ? 255 : 2, sizeof msg.data);
    if (fill == makers) {  // of anybody, with low numbers behind the header
        constexpr unsigned codes[] = {135, 137, 140, 144, 176,  229,  273, 275,
                                      295, 358, 381, 419, 1851, 1855, 1857};
        const unsigned header = codes[random() % std::size(codes)] | 3u << 11 | 4u << 13;
        msg.data[0] = static_cast<std::uint8_t>(header);
        msg.data[1] = static_cast<std::uint8_t>(header >> 8);
        for (int i = 2; i < 9; ++i) msg.data[i] %= 40;
    }
    if (fill == texts)  // short texts, now and then in UTF-16
        for (std::uint8_t& byte : msg.data) byte %= 8;
    msg.length = static_cast<std::uint16_t>(length);
    msg.time_stamp = static_cast<std::uint32_t>(random()) >> random() % 32;
    return msg;
}

template <class Check>
void for_all_messages(Check check) {
    std::mt19937 random(42);
    for (const std::uint32_t pgn : catalogued_pgns())
        for (int fill = 0; fill < fill_count; ++fill)
            for (const int length : lengths) {
                SCOPED_TRACE(testing::Message() << "PGN " << pgn << " fill " << fill << " length " << length);
                check(filled(pgn, fill, length, random), random);
                if (testing::Test::HasFailure()) return;
            }
}

/// The last unit that each quantity offers, or one for all.
UnitSelection other_units(UnitId everywhere = -1) {
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q) {
        for (const UnitId* u = available_units(q); *u < unit::count; ++u) units.select(q, *u);
        units.select(q, everywhere);
    }
    return units;
}

TEST(EveryMessage, IsShownAlikeInEveryForm) {
    const UnitSelection selections[] = {{}, other_units(), other_units(unit::raw_bits)};
    for_all_messages([&](const N2KMsg& msg, std::mt19937& random) {
        if (msg.length < 223 && random() % 4 != 0) return;
        const unsigned choice = random() % 4;
        EXPECT_NO_THROW(check_shown(msg, random() % 2 == 0, selections[choice % 3]));
        EXPECT_NO_THROW(check_shown(msg, random() % 2 == 0, selections[choice % 3], Definitions::corrected));
    });
}

TEST(EveryMessage, NoBitIsHiddenFromPrograms) {
    // Of the corrected definitions: what no field covers is shown as bytes.
    for_all_messages([](const N2KMsg& msg, std::mt19937& random) {
        if (msg.length > 223) return;
        const auto records = [](const N2KMsg& shown) {
            const Forms forms =
                forms_of(shown, plain, UnitSelection::si(), piece_room, Definitions::corrected);
            return std::array{forms[1], forms[2]};
        };
        const auto before = records(msg);
        const int every = trials(20) > 1 ? 1 : 7;
        for (int bit = static_cast<int>(random() % 3); bit < msg.length * 8; bit += 3 * every) {
            N2KMsg other = msg;
            other.data[bit / 8] = static_cast<std::uint8_t>(other.data[bit / 8] ^ 1u << bit % 8);
            const auto after = records(other);
            ASSERT_NE(before[0], after[0]) << "bit " << bit;
            ASSERT_NE(before[1], after[1]) << "bit " << bit;
        }
    });
}

TEST(EveryMessage, PositionsOnlyGrow) {
    const UnitSelection units;
    TextScratch scratch;
    for_all_messages([&](const N2KMsg& msg, std::mt19937&) {
        const auto set = msg.length % 2 == 0 ? Definitions::corrected : Definitions::fixed;
        MessageWalk walk(find_definition(set, msg), msg);
        while (walk.next()) {
            const PayloadPosition before = walk.position;
            ASSERT_LT(before.byte, payload_length(msg));
            walk.position = walk.read(units, unit::selected, scratch).next;
            ASSERT_GE(walk.position.byte * 8 + walk.position.bit, before.byte * 8 + before.bit);
            ASSERT_TRUE(walk.position.bit >= 0 && walk.position.bit <= 7);
            const PayloadPosition behind = std::exchange(walk.position, before);
            ASSERT_EQ(walk.read(units, unit::raw_bits, scratch).next, behind) << "units do not matter";
            walk.position = behind;
        }
        ASSERT_FALSE(walk.next()) << "an ended walk stays ended";
    });
}

TEST(EveryMessage, TinyBuffersHoldTheBeginning) {
    std::mt19937 random(3);
    for (const std::uint32_t pgn : catalogued_pgns()) {
        const N2KMsg msg = filled(pgn, any_bytes, 60, random);
        const auto lines = lines_of(msg);
        for (const std::size_t size : {0u, 1u, 2u, 7u, 20u, 40u}) {
            const auto cut = lines_of(msg, false, {}, static_cast<int>(size));
            ASSERT_EQ(cut.size(), lines.size()) << pgn;
            for (std::size_t i = 0; i < cut.size(); ++i) {
                EXPECT_EQ(cut[i], lines[i].substr(0, cut[i].size())) << pgn;
                // A list of flags may lose the comma and the blank at its end.
                EXPECT_GT(cut[i].size() + 3, std::min(size, lines[i].size())) << pgn;
            }
        }
    }
}

TEST(Renderers, InfiniteNumbersAreNoneInJson) {
    int shown = 0;
    for (std::size_t first = 0; first < 4; ++first) {
        Bytes payload(48);
        for (std::size_t i = first; i + 4 <= payload.size(); i += 4)
            payload[i + 2] = 0x80, payload[i + 3] = 0x7F;
        // This PGN has floating numbers behind each other.
        const Forms forms = forms_of(message(129045, payload), plain, {}, piece_room);
        shown += forms[0].find(":   inf ") != std::string::npos;
        EXPECT_EQ((forms[1] + forms[2]).find("inf"), std::string::npos);
    }
    EXPECT_GT(shown, 0);
}

TEST(Renderers, AbsoluteTimes) {
    const N2KMsg msg = message(127250, {});
    JsonRenderer json{UnitSelection{}};
    for (const auto& [nanoseconds, expected] :
         {std::pair{std::int64_t{0}, "1970-01-01T00:00:00.000000Z"},
          {std::int64_t{-1}, "1969-12-31T23:59:59.999999Z"},
          {std::int64_t{1'709'210'096'250'999'999}, "2024-02-29T12:34:56.250999Z"}}) {
        json.start(msg, nullptr, {nanoseconds, true, nanoseconds});
        EXPECT_NE(rendered(json).find(expected), std::string::npos) << expected;
    }
}

}  // namespace
}  // namespace pgn_vistel::test
