#include <algorithm>
#include <iterator>

#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

namespace {

constexpr std::int32_t header_rule = -3;
constexpr std::int32_t label_rule = -2;
constexpr std::uint8_t no_key = 255;

constexpr StreamKeyDef stream_key_table[] = {
#include "stream_key_table.inc"
};
static_assert(std::ranges::is_sorted(stream_key_table, {}, &StreamKeyDef::pgn));

const StreamKeyDef* find_stream_keys(std::uint32_t pgn) {
    const auto row = std::ranges::lower_bound(stream_key_table, static_cast<std::int64_t>(pgn), {},
                                              [](const StreamKeyDef& r) { return std::int64_t{r.pgn}; });
    return row != std::end(stream_key_table) && static_cast<std::uint32_t>(row->pgn) == pgn ? row : nullptr;
}

bool is_own(const std::uint8_t* payload) {
    return (payload[0] | payload[1] << 8) == own_header;
}

std::uint8_t first_key(const StreamKeyDef& row, const std::uint8_t* payload) {
    if (row.position[0] == header_rule) {
        // Only these messages have a known layout: the message number, or the command.
        return is_own(payload)
                   ? payload[static_cast<std::uint32_t>(row.pgn) == pgn::proprietary_single ? 2 : 6]
                   : no_key;
    }
    if (row.position[0] != label_rule) return no_key;
    // The label is a short text: length (which counts itself and the encoding), encoding, characters. The
    // channel that it names stands right behind it.
    const int length = payload[5];
    if (length < 2 || length > 128 || payload[6] > 1 || !is_own(payload)) return no_key;
    return payload[5 + length];
}

std::uint8_t key_at(const StreamKeyDef& row, int key, const std::uint8_t* payload) {
    const std::int32_t position = row.position[key];
    if (position < 0) return no_key;
    const auto [shift, width] = row.bits[key];
    const int mask = width == 0 ? 0xFF : (1 << width) - 1;
    return static_cast<std::uint8_t>(payload[position] >> shift & mask);
}

}  // namespace

int extract_stream_keys(std::uint32_t pgn, const std::uint8_t* payload, std::uint8_t* key1,
                        std::uint8_t* key2, std::uint8_t* key3, std::uint8_t* key4) {
    const StreamKeyDef* const row = find_stream_keys(pgn);
    if (row == nullptr || payload == nullptr) return 0;
    const bool special = row->position[0] < -1;
    std::uint8_t* const keys[] = {key1, key2, key3, key4};
    for (int i = 0; i < 4; ++i) {
        if (*keys[i] == 0) continue;
        if (special)
            *keys[i] = i == 0 ? first_key(*row, payload) : no_key;
        else
            *keys[i] = key_at(*row, i, payload);
    }
    return 1;
}

std::span<const StreamKeyDef> all_stream_keys() {
    return stream_key_table;
}

}  // namespace pgn_vistel::core
