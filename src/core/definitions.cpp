#include <algorithm>
#include <iterator>

#include "core/read.h"
#include "core/tables.h"

namespace pgn_vistel::core {

namespace {

/// A variant of a PGN and the messages that it is for: of the length, and with the conditions.
struct Variant {
    std::uint64_t mask, value;  ///< conditions in the first eight bytes
    std::uint16_t least, most;  ///< bytes
    std::uint16_t first_part, parts;
    std::uint16_t row;
};

/// A condition behind the first eight bytes.
struct Part {
    std::uint16_t bit;
    std::uint8_t width;
    std::uint64_t value;
};

struct VariantList {
    std::uint32_t pgn;
    std::uint16_t first, count;
    std::uint16_t title;  ///< row that has the name of all of them
};

struct MakerRow {
    std::uint16_t maker, row;
};

struct Range {
    std::uint32_t first, last;
};

constexpr Variant variants[] = {
#include "variants.inc"
};

constexpr Part parts[] = {
#include "variant_parts.inc"
};

constexpr VariantList lists[] = {
#include "variant_lists.inc"
};
static_assert(std::ranges::is_sorted(lists, {}, &VariantList::pgn));

constexpr MakerRow maker_rows[] = {
#include "maker_rows.inc"
};
static_assert(std::ranges::is_sorted(maker_rows, {}, &MakerRow::maker));

constexpr Range proprietary_ranges[] = {
#include "proprietary_ranges.inc"
};

constexpr PgnIndex index{std::span<const VariantList>(lists)};

const VariantList* find_list(std::uint32_t pgn) {
    const std::uint16_t place = index[pgn];
    return place != end_row ? &lists[place] : nullptr;
}

std::span<const Variant> variants_of(std::uint32_t pgn) {
    const VariantList* const list = find_list(pgn);
    if (list == nullptr) return {};
    return std::span(variants).subspan(list->first, list->count);
}

constexpr std::uint64_t header_mask = 0x7FF;  // of the manufacturer code, which comes first

std::uint32_t maker_of(std::uint64_t word) {
    return static_cast<std::uint32_t>(word & header_mask);
}

bool is_of(const Variant& variant, std::uint64_t word, const N2KMsg& msg, int length) {
    if ((word & variant.mask) != variant.value || length < variant.least || length > variant.most)
        return false;
    return std::ranges::all_of(
        std::span(parts).subspan(variant.first_part, variant.parts),
        [&msg](const Part& part) { return gather_bits(msg.data, part.bit, part.width) == part.value; });
}

}  // namespace

bool is_proprietary(std::uint32_t pgn) {
    return std::ranges::any_of(proprietary_ranges,
                               [pgn](Range range) { return pgn >= range.first && pgn <= range.last; });
}

const PgnPlan* find_plan_about(std::uint32_t pgn, std::uint64_t known_mask, std::uint64_t known) {
    const bool of_maker = is_proprietary(pgn);
    if (!of_maker || (known_mask & header_mask) == header_mask)
        for (const Variant& variant : variants_of(pgn))
            if (((known ^ variant.value) & known_mask & variant.mask) == 0)
                return &plan_of(pgn_row(variant.row));
    return of_maker ? &plan_of(pgn_row(unknown_maker)) : nullptr;
}

const PgnDef* find_title(std::uint32_t pgn) {
    if (is_proprietary(pgn)) return &pgn_row(any_maker);
    const VariantList* const list = find_list(pgn);
    return list != nullptr ? &pgn_row(list->title) : nullptr;
}

const PgnDef* find_definition(Definitions set, const N2KMsg& msg) {
    if (set == Definitions::fixed) return find_pgn_def(msg.pgn);
    const int length = payload_length(msg);
    const std::uint64_t word = load_bytes(msg.data, 0, length);
    for (const Variant& variant : variants_of(msg.pgn))
        if (is_of(variant, word, msg, length)) return &pgn_row(variant.row);
    constexpr int header_size = 2;
    if (length < header_size || !is_proprietary(msg.pgn)) return nullptr;
    const auto found = std::ranges::lower_bound(maker_rows, maker_of(word), {}, &MakerRow::maker);
    const bool is_known = found != std::end(maker_rows) && found->maker == maker_of(word);
    return &pgn_row(is_known ? found->row : unknown_maker);
}

}  // namespace pgn_vistel::core
