#include <algorithm>
#include <iterator>

#include "pgn_vistel/core/catalogue.h"

namespace pgn_vistel::core {

namespace {

constexpr std::int32_t header_rule = -3;
constexpr std::int32_t label_rule = -2;

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
                   : no_stream_key;
    }
    if (row.position[0] != label_rule) return no_stream_key;
    // The label is a short text: length (which counts itself and the encoding), encoding, characters. The
    // channel that it names stands right behind it.
    const int length = payload[5];
    if (length < 2 || length > 128 || payload[6] > 1 || !is_own(payload)) return no_stream_key;
    return payload[5 + length];
}

std::uint8_t key_at(const StreamKeyDef& row, std::size_t key, const std::uint8_t* payload) {
    const std::int32_t position = row.position[key];
    if (position < 0) return no_stream_key;
    const auto [shift, width] = row.bits[key];
    const int mask = width == 0 ? 0xFF : (1 << width) - 1;
    return static_cast<std::uint8_t>(payload[position] >> shift & mask);
}

}  // namespace

StreamKeys stream_keys(const N2KMsg& msg) {
    StreamKeys keys;
    keys.fill(no_stream_key);
    const StreamKeyDef* const row = find_stream_keys(msg.pgn);
    if (row == nullptr) return keys;
    if (row->position[0] < -1)  // a special rule, which replaces the other keys
        keys[0] = first_key(*row, msg.data);
    else
        for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = key_at(*row, i, msg.data);
    return keys;
}

std::span<const StreamKeyDef> all_stream_keys() {
    return stream_key_table;
}

}  // namespace pgn_vistel::core
