#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "monitor/traffic.h"

namespace vistel {

/// What was lost of what a player plays, in short, as a line tells it: "2 incomplete", "14 errors". Empty as
/// long as nothing was.
std::vector<std::string> losses_in_short(const Player& player, const Traffic& traffic);

/// A number of what --stats tells, and what it is the number of.
struct LossCount {
    const char* what;
    std::uint64_t count;
};
/// All of them, also those that are 0.
std::vector<LossCount> loss_counts(const Player& player, const Traffic& traffic);

/// What was lost of a PGN of a source.
struct LossRow {
    std::uint32_t pgn;  ///< 0 for those that there was no room to tell apart
    std::string name;   ///< of the PGN
    std::uint8_t source;
    std::uint64_t missing, orphans, repeated;  ///< frames
};
/// The most lost first.
std::vector<LossRow> loss_rows(const Player& player);

}  // namespace vistel
