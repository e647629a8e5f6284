#include <array>
#include <iterator>
#include <span>

#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

namespace {

struct Range {
    std::uint32_t first, last;
};

constexpr Range fixed_ranges[] = {
#include "fast_packet_ranges.inc"
};

constexpr Range corrected_ranges[] = {
#include "corrected_fast_packet_ranges.inc"
};

constexpr std::uint32_t first = std::begin(fixed_ranges)->first, last = (std::end(fixed_ranges) - 1)->last;
static_assert(std::begin(corrected_ranges)->first == first && (std::end(corrected_ranges) - 1)->last == last);

constexpr std::uint32_t word_bits = 64;

consteval auto bits_of(std::span<const Range> ranges) {
    std::array<std::uint64_t, (last - first) / word_bits + 1> words{};
    for (const Range& range : ranges)
        for (std::uint32_t i = range.first - first; i <= range.last - first; ++i)
            words[i / word_bits] |= std::uint64_t{1} << i % word_bits;
    return words;
}

constexpr auto fixed = bits_of(fixed_ranges), corrected = bits_of(corrected_ranges);

}  // namespace

bool is_fast_packet(std::uint32_t pgn, Definitions set) {
    const std::uint32_t i = pgn - first;
    const auto& fast = set == Definitions::corrected ? corrected : fixed;
    return i <= last - first && (fast[i / word_bits] >> i % word_bits & 1) != 0;
}

}  // namespace pgn_vistel::core
