#include "core/walk.h"

#include <algorithm>
#include <cassert>

namespace pgn_vistel::core {

namespace {

constexpr std::uint8_t others = 1, own = 2;  // whose proprietary message it is

constexpr std::uint64_t all_ones(int bits) {
    return ~std::uint64_t{0} >> (64 - bits);
}

/// The number in another field; all ones where the message does not have it.
std::uint64_t number_at(const Stepping::State& w, Link link) {
    const int at = link.is_absolute != 0 ? link.offset : w.position + link.offset;
    return at >= 0 && at + link.bits <= w.end ? gather_bits(w.data, at, link.bits) : all_ones(link.bits);
}

Direction direction_of(const Stepping::State& w, const FieldExtra& extra) {
    if (extra.direction != Direction::by_reference) return extra.direction;
    const std::uint64_t reference = number_at(w, extra.reference);
    constexpr std::uint64_t to_true_north = 0, to_magnetic_north = 1;
    if (reference >= extra.relative_first && reference <= extra.relative_last) return Direction::relative;
    return reference == to_true_north       ? Direction::true_north
           : reference == to_magnetic_north ? Direction::magnetic
                                            : Direction::relative;
}

struct FieldAbout {
    std::uint16_t row = end_row;
    int start = -1;  ///< in bits; negative where its message tells
};

FieldAbout find_field(const PgnPlan* plan, std::uint32_t number) {
    FieldAbout found;
    if (plan == nullptr) return found;
    int start = 0;
    for (int i = 0; i < plan->rows; ++i) {
        const FieldPlan& row = field_plans[plan->first_row + i];
        if (row.number == number) return {static_cast<std::uint16_t>(plan->first_row + i), start};
        start = start < 0 || row.bits == 0 ? -1 : start + row.bits;
    }
    return found;
}

/// Bits of the message that a group function is about become known, in place of what was known of them.
void learn(Stepping::State& w, int start, int bits, std::uint64_t value) {
    const std::uint64_t mask = all_ones(bits) << start;
    w.known_mask |= mask;
    w.known = (w.known & ~mask) | (value << start);
}

/// The row of the field that a group function is about, or `end_row`. What the pairs so far say of the other
/// message tells which of its variants is meant: of a proprietary one the first pairs say whose it is.
std::uint16_t row_about(Stepping::State& w, const FieldExtra& extra) {
    const auto pgn = static_cast<std::uint32_t>(number_at(w, extra.about));
    const auto number = static_cast<std::uint32_t>(number_at(w, extra.index));
    if (extra.maker.bits != 0) learn(w, 0, extra.maker.bits, number_at(w, extra.maker));
    const FieldAbout found = find_field(find_plan_about(pgn, w.known_mask, w.known), number);
    if (found.row == end_row) return end_row;
    const int bits = field_plans[found.row].bits;
    if (found.start < 0 || bits == 0 || found.start + bits > 64) return found.row;
    learn(w, found.start, bits, number_at(w, {0, static_cast<std::uint8_t>(bits), 0}));
    const FieldAbout narrowed = find_field(find_plan_about(pgn, w.known_mask, w.known), number);
    return narrowed.row != end_row ? narrowed.row : found.row;  // no variant with this value is known
}

}  // namespace

bool Stepping::resolve(State& w) {
    const FieldExtra& extra = field_extras[field_plans[w.row].extra];
    if (extra.count.bits != 0 && w.round == 1) {
        const std::uint64_t count = number_at(w, extra.count);
        // A count that is not available stands for none, too.
        if (count == 0 || count == all_ones(extra.count.bits)) {
            w.upcoming = extra.behind;
            return false;
        }
        w.rounds = static_cast<int>(std::min<std::uint64_t>(count, INT32_MAX));
    }
    w.is_resolved = true;
    w.is_padded = false;
    w.high = extra.high.bits != 0 ? static_cast<std::uint32_t>(number_at(w, extra.high)) << 8 : 0;
    w.direction = direction_of(w, extra);
    w.size = -1;
    if (extra.size.bits != 0) {
        constexpr std::uint64_t most = N2K_MAX_PAYLOAD * 8;
        const std::uint64_t bits = number_at(w, extra.size) * extra.size_unit;
        w.size = static_cast<int>(std::min(bits - std::min<std::uint64_t>(bits, extra.less * 8u), most));
        if (w.size == 0) {
            w.is_resolved = false;
            remember(w, field_plans[w.row].flags);
            return false;
        }
    }
    if (extra.key.bits != 0) {
        const std::uint16_t entry =
            find_entry(extra.key_set, static_cast<std::uint32_t>(number_at(w, extra.key)));
        if (entry != no_entry) {
            const auto row = static_cast<std::uint16_t>(extra.key_rows + entry);
            // A length that is not available leaves it to the key. A value of another size than its key has
            // is another value: its bytes are all that is known of it.
            if (extra.size.bits != 0 && number_at(w, extra.size) == all_ones(extra.size.bits)) w.size = -1;
            if (w.size < 0 || w.size == field_plans[row].bits) w.row = row;
        }
    }
    if (extra.index.bits != 0) {
        const std::uint16_t about = row_about(w, extra);
        // Nothing tells how long the value of an unknown field is, but for the last one: it takes the rest.
        const bool is_last = w.round >= w.rounds && w.upcoming == end_row;
        if (about == end_row) return is_last || finish(w, true);
        w.row = about;
        // What that field depends on stands in its own message, not in this one.
        const FieldExtra& own = field_extras[field_plans[w.row].extra];
        w.is_padded = true;
        w.direction = own.direction == Direction::by_reference ? Direction::relative : own.direction;
        if (own.high.bits != 0) w.high = 0xFFFF'FF00;
    }
    return true;
}

int payload_length(const N2KMsg& msg) {
    return std::min<int>(msg.length, N2K_MAX_PAYLOAD);
}

MessageWalk::MessageWalk(const PgnDef* pgn, const N2KMsg& msg) {
    State& w = state_;
    const int length = payload_length(msg);
    w.data = msg.data;
    w.end = length * 8;
    if (pgn == nullptr) {
        w.rest = true;
        return;
    }
    const PgnPlan& plan = plan_of(*pgn);
    switch (plan.walk) {
        case PgnWalk::plain: w.upcoming = plan.first_row; break;
        case PgnWalk::group_function: {
            // Requests and commands have a fixed head; what follows depends on the PGN that they are about
            // and stays undecoded. The functions above acknowledge are not shown by field.
            constexpr int request = 0, command = 1, acknowledge = 2, first_pair = 6;
            // Of an empty message the record's first byte counts: where that is a function, nothing follows
            // the header, as there are no bytes to show.
            const std::uint8_t code = w.data[0];
            if (code <= acknowledge) w.upcoming = first_row_keyed(pgn->pgn, code);
            if (code == request || code == command) w.limit = first_pair;
            w.rest = w.upcoming == end_row;
            w.is_picky = !w.rest;
            break;
        }
        case PgnWalk::proprietary:
            // The header of anybody's message is shown, and the fields that identify our own. The variants of
            // what follows cannot be told apart by their first rows, so it stays undecoded; that is
            // deliberate.
            if (length < 2) {
                w.rest = true;  // not even the header
                break;
            }
            w.filter = (w.data[0] | w.data[1] << 8) == own_header ? own : others;
            w.upcoming = plan.first_row;
            w.is_picky = true;
            break;
        case PgnWalk::covering:
            w.upcoming = plan.first_row;
            w.is_covering = true;
            break;
    }
}

bool MessageWalk::next() {
    state_.position = Stepping::behind(state_, position.byte * 8 + position.bit);
    return Stepping::next(state_);
}

FieldReading MessageWalk::read(const UnitSelection& units, UnitId unit, TextScratch& scratch) const {
    State w = state_;
    w.position = position.byte * 8 + position.bit;
    FieldValue v;
    Stepping::read_field(w, {w.data, w.end / 8}, units, scratch, v, unit);
    return {v.quantity, v.unit, {v.next >> 3, v.next & 7}, v.cut_off, v.value};
}

const FieldDef& MessageWalk::field() const {
    assert(state_.row != end_row);
    return field_row(state_.row);
}

int MessageWalk::repeat() const {
    assert(state_.row != end_row);
    return Stepping::round(state_);
}

}  // namespace pgn_vistel::core
