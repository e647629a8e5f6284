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
        if (w.row == end_row) return false;
        if (!w.fresh && !leave(w)) return false;
        w.fresh = false;
        const FieldPlan* p;
        for (;; w.row = p->next) {
            if (w.row == end_row || w.position >= w.end) return finish(w, false);
            p = &plan(w);
            if (p->number >= w.limit) return finish(w, true);
            if (w.filter == 0) break;
            const std::uint8_t verdict = p->verdicts[w.filter - 1];
            if (verdict == walk_ends) return finish(w, true);
            if (verdict == shown) break;
        }
        if ((p->flags & first_of_group) != 0) w.group_started = w.position;
        w.started = w.position;
        return true;
    }

  private:
    static bool finish(State& w, bool rest) {
        w.row = end_row;
        w.rest = rest;
        return false;
    }

    /// Steps behind the field that was handed out last.
    static bool leave(State& w) {
        const FieldPlan& p = plan(w);
        if ((p.flags & (string | last_of_group)) == 0) [[likely]] {
            w.row = p.next;
            return true;
        }
        // A text that takes no byte: nothing behind it can be placed.
        if ((p.flags & string) != 0 && w.position == w.started) return finish(w, true);
        if ((p.flags & last_of_group) == 0) {
            w.row = p.next;
            return true;
        }
        // A round that takes no byte would come again for ever.
        if (w.position == w.group_started) return finish(w, true);
        ++w.round;
        w.row = p.again;
        return true;
    }
};

}  // namespace pgn_vistel::core
