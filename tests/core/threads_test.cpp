#include <thread>

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

/// Everything that decoding gives for messages of all PGNs, with a selection of units of its own.
std::string everything(unsigned seed) {
    std::mt19937 random(seed);
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q)
        for (const UnitId* u = available_units(q); *u < unit::count; ++u)
            if (random() % 2 == 0) units.select(q, *u);
    std::string all;
    for (const std::uint32_t pgn : catalogued_pgns()) {
        Bytes payload = random_bytes(random, 60);
        if (random() % 2 == 0)
            for (auto& byte : payload) byte %= 8;  // texts, flags and small numbers
        const N2KMsg msg = message(pgn, payload);
        for (const Definitions set : {Definitions::fixed, Definitions::corrected}) {
            for (const std::string& form : forms_of(msg, seed % 2 == 0, units, 8 * piece_room, set))
                all += form;
            for (const std::wstring& line : lines_of(msg, plain, units, line_size, set))
                all.append(line.begin(), line.end());
        }
    }
    return all;
}

TEST(Threads, DecodeSideBySide) {
    constexpr unsigned count = 4;
    std::string alone[count], together[count];
    for (unsigned i = 0; i < count; ++i) alone[i] = everything(i);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i)
        threads.emplace_back([&result = together[i], i] {
            for (int again = 0; again < 3; ++again) result = everything(i);
        });
    for (std::thread& thread : threads) thread.join();
    for (unsigned i = 0; i < count; ++i) EXPECT_EQ(together[i] == alone[i], true) << i;
    EXPECT_NE(alone[0], alone[1]);
}

}  // namespace
}  // namespace pgn_vistel::test
