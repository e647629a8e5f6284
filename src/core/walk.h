#pragma once

#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// The steps of a walk, in line for those who print.
struct Stepping {
    using State = MessageWalk::State;

    static State& state(MessageWalk& walk) { return walk.state_; }
    static const State& state(const MessageWalk& walk) { return walk.state_; }
    static const FieldPlan& plan(const State& w) { return field_plans[w.row]; }
    static int round(const State& w) { return (plan(w).flags & in_group) != 0 ? w.round : 0; }

    static bool next(State& w) {
        if (w.ends_round && !begin_round(w)) return finish(w, true);
        if (w.is_picky && !pick(w)) return false;
        if (w.upcoming == end_row) return false;
        if (w.position >= w.end) return finish(w, false);
        w.row = w.upcoming;
        const FieldPlan& p = field_plans[w.row];
        w.upcoming = p.next;
        if ((p.flags & (first_of_group | last_of_group)) != 0) remember(w, p.flags);
        return true;
    }

  private:
    static bool finish(State& w, bool rest) {
        w.upcoming = end_row;
        w.rest = rest;
        w.ends_round = w.is_picky = false;
        return false;
    }

    static void remember(State& w, unsigned flags) {
        if ((flags & first_of_group) != 0) w.group_started = w.position;
        w.ends_round = (flags & last_of_group) != 0;
    }

    /// Behind the last field of a round. False where that took no byte: it would come again for ever.
    static bool begin_round(State& w) {
        w.ends_round = false;
        if (w.position == w.group_started) return false;
        ++w.round;
        w.upcoming = plan(w).again;
        return true;
    }

    /// Passes over what is not shown of a proprietary message or a group function. False at the walk's end.
    static bool pick(State& w) {
        while (w.upcoming != end_row && w.position < w.end) {
            const FieldPlan& p = field_plans[w.upcoming];
            if (p.number >= w.limit) return finish(w, true);
            const std::uint8_t verdict = w.filter == 0 ? std::uint8_t{shown} : p.verdicts[w.filter - 1];
            if (verdict == shown) return true;
            if (verdict == walk_ends) return finish(w, true);
            w.upcoming = p.next;
        }
        return finish(w, false);
    }
};

}  // namespace pgn_vistel::core
