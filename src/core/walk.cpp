#include "core/walk.h"

#include <algorithm>
#include <cassert>

namespace pgn_vistel::core {

namespace {

constexpr std::uint8_t others = 1, own = 2;  // whose proprietary message it is

}  // namespace

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
    }
}

bool MessageWalk::next() {
    state_.position = position.byte * 8 + position.bit;
    return Stepping::next(state_);
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
