#pragma once

#include <vector>

#include "fuzz.h"
#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/units.h"

/// Messages and selections of units out of the bytes of an input.
namespace fuzz {

using namespace pgn_vistel::core;

/// How an input of one message begins; its payload stands behind it.
struct [[gnu::packed]] MessageHead {
    std::uint16_t number;  // of a row of the catalogue, or a PGN's low bits; a format's number, too
    std::uint16_t length;  // in the message's record
    /// Bit 0: `number` is a PGN, bits 1 and 2 above it. Bit 3: lengths just as sent. Bit 4: of the corrected
    /// definitions. The upper four are a value's type, too.
    std::uint8_t mode;
    std::uint8_t unit;  // chosen for all quantities, from 140 on: one after the other

    Definitions definitions() const { return (mode & 16) != 0 ? Definitions::corrected : Definitions::fixed; }
};

inline N2KMsg message_of(const MessageHead& in, std::span<const std::uint8_t> payload) {
    const auto rows = in.definitions() == Definitions::fixed ? all_pgns() : all_corrected_pgns();
    N2KMsg msg{};
    msg.pgn = (in.mode & 1) != 0 ? in.number | (in.mode & 6u) << 15 : rows[in.number % rows.size()].pgn;
    msg.destination = in.unit;
    msg.source = in.mode;
    msg.time_stamp = in.length * 65537u;
    const std::size_t size = std::min(payload.size(), sizeof msg.data);
    if (size > 0) std::memcpy(msg.data, payload.data(), size);
    msg.length = (in.mode & 8) != 0 ? in.length : static_cast<std::uint16_t>(size);
    return msg;
}

/// Made once each: a selection is a call for every quantity.
inline const UnitSelection& units_of(std::uint8_t choice) {
    static const std::vector<UnitSelection> all = [] {
        constexpr int count = unit::kelvin;  // the last one, which the text interface does not have
        std::vector<UnitSelection> made(256);
        for (std::size_t c = 0; c < made.size(); ++c)
            for (int q = 0; q < quantity::count; ++q) {
                const int one = static_cast<int>(c);
                require(made[c].select(q, one < count ? one : (one + q) % count), "a unit can be selected");
            }
        return made;
    }();
    return all[choice];
}

}  // namespace fuzz
