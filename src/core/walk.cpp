#include "core/walk.h"

#include <algorithm>

namespace pgn_vistel::core {

namespace {

constexpr std::uint8_t others = 1, own = 2;  // whose proprietary message it is

}  // namespace

int payload_length(const N2KMsg& msg) {
    return std::min<int>(msg.length, N2K_MAX_PAYLOAD);
}

MessageWalk::MessageWalk(const PgnDef* pgn, const N2KMsg& msg)
    : data_(msg.data), length_(payload_length(msg)), next_row_(end_row) {
    if (pgn == nullptr) {
        rest_ = true;
        return;
    }
    const PgnPlan& plan = plan_of(*pgn);
    switch (plan.walk) {
        case PgnWalk::plain: next_row_ = plan.first_row; break;
        case PgnWalk::group_function: {
            // Requests and commands have a fixed head; what follows depends on the PGN that they are about and
            // stays undecoded. The functions above acknowledge are not shown by field.
            constexpr int request = 0, command = 1, acknowledge = 2, first_pair = 6;
            const int code = length_ > 0 ? data_[0] : -1;
            if (code >= request && code <= acknowledge)
                next_row_ = first_row_keyed(pgn->pgn, static_cast<std::uint16_t>(code));
            if (code == request || code == command) limit_ = first_pair;
            rest_ = next_row_ == end_row;
            break;
        }
        case PgnWalk::proprietary:
            // The header of anybody's message is shown, and the fields that identify our own. The variants of what
            // follows cannot be told apart by their first rows, so it stays undecoded; that is deliberate.
            if (length_ < 2) {
                rest_ = true;  // not even the header
                break;
            }
            filter_ = (data_[0] | data_[1] << 8) == own_header ? own : others;
            next_row_ = plan.first_row;
            break;
    }
}

bool MessageWalk::next() {
    return Stepping::next(*this);
}

const FieldDef& MessageWalk::field() const {
    return field_row(next_row_);
}

int MessageWalk::repeat() const {
    return Stepping::repeat(*this);
}

}  // namespace pgn_vistel::core
