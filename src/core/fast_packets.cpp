#include <array>
#include <iterator>

#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

namespace {

struct Range {
    std::uint32_t first, last;
};

constexpr Range ranges[] = {
#include "fast_packet_ranges.inc"
};

constexpr std::uint32_t first = std::begin(ranges)->first, last = (std::end(ranges) - 1)->last;

constexpr std::uint32_t word_bits = 64;

constexpr auto fast = [] {
    std::array<std::uint64_t, (last - first) / word_bits + 1> words{};
    for (const Range& range : ranges)
        for (std::uint32_t i = range.first - first; i <= range.last - first; ++i)
            words[i / word_bits] |= std::uint64_t{1} << i % word_bits;
    return words;
}();

}  // namespace

bool is_fast_packet(std::uint32_t pgn) {
    const std::uint32_t i = pgn - first;
    return i <= last - first && (fast[i / word_bits] >> i % word_bits & 1) != 0;
}

}  // namespace pgn_vistel::core
