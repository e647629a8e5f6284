#include "encode/definitions.h"

#include <algorithm>

using namespace pgn_vistel::core;

namespace vistel {

ListedMessage listed(const PgnDef& definition) {
    for (std::size_t i = 0; i < listed_message_count(); ++i)
        if (const ListedMessage message = listed_message(i); message.row == &definition) return message;
    return {};
}

void apply(std::span<const MessageCondition> conditions, N2KMsg& msg) {
    for (const MessageCondition& each : conditions) put_bits(msg, each.bit, each.width, each.value);
}

bool hold(std::span<const MessageCondition> conditions, const N2KMsg& msg) {
    N2KMsg applied = msg;
    apply(conditions, applied);
    return std::ranges::equal(applied.data, msg.data);
}

bool counts_rounds(const PgnDef& definition, const FieldDef& field) {
    return std::ranges::any_of(fields_of(definition), [&](const FieldDef& row) {
        return links_of(definition, row).count == &field;
    });
}

bool is_fixed(const PgnDef& definition, const FieldCell& cell) {
    N2KMsg none{}, all{};
    std::ranges::fill(all.data, std::uint8_t{0xFF});
    const std::span<const MessageCondition> conditions = listed(definition).conditions;
    apply(conditions, none);
    apply(conditions, all);
    const int first = cell.start().byte * 8 + cell.start().bit;
    const int last = std::min(first + cell.bits(), 8 * N2K_MAX_PAYLOAD);
    for (int bit = first; bit < last; ++bit)
        if (((none.data[bit / 8] ^ all.data[bit / 8]) >> bit % 8 & 1) != 0) return false;
    return true;
}

std::string_view variant_of(const PgnDef& definition) {
    return listed(definition).variant;
}

std::vector<const PgnDef*> definitions_of(std::uint32_t pgn) {
    std::vector<const PgnDef*> result;
    for (const PgnDef& row : all_corrected_pgns())
        if (row.pgn == pgn && pgn != 0) result.push_back(&row);
    constexpr int header_size = 2;
    N2KMsg msg{};
    msg.pgn = pgn;
    std::ranges::fill(msg.data, std::uint8_t{0xFF});
    msg.length = header_size;
    const PgnDef* const of_maker = find_definition(Definitions::corrected, msg);
    if (of_maker != nullptr && of_maker->pgn == 0) result.push_back(of_maker);
    return result;
}

}  // namespace vistel
