#pragma once

#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// The steps of a walk, in line for those who print.
struct Stepping {
    static const FieldPlan& plan(const MessageWalk& walk) { return field_plans[walk.next_row_]; }
    static int repeat(const MessageWalk& walk) { return (plan(walk).flags & in_group) != 0 ? walk.round_ : 0; }

    static bool next(MessageWalk& w) {
        if (w.next_row_ == end_row) return false;
        if (!w.fresh_ && !leave(w)) return false;
        w.fresh_ = false;
        const FieldPlan* p;
        for (;; w.next_row_ = p->next) {
            if (w.next_row_ == end_row || w.position.byte >= w.length_) return end(w, false);
            p = &plan(w);
            if (p->number >= w.limit_) return end(w, true);
            if (w.filter_ == 0) break;
            const std::uint8_t verdict = p->verdicts[w.filter_ - 1];
            if (verdict == walk_ends) return end(w, true);
            if (verdict == shown) break;
        }
        if ((p->flags & first_of_group) != 0) w.group_started_ = w.position;
        w.started_ = w.position;
        return true;
    }

  private:
    static bool end(MessageWalk& w, bool rest) {
        w.next_row_ = end_row;
        w.rest_ = rest;
        return false;
    }

    /// Steps behind the field that was handed out last.
    static bool leave(MessageWalk& w) {
        const FieldPlan& p = plan(w);
        // A text that takes no byte: nothing behind it can be placed.
        if ((p.flags & string) != 0 && w.position == w.started_) return end(w, true);
        if ((p.flags & last_of_group) == 0) {
            w.next_row_ = p.next;
            return true;
        }
        // A round that takes no byte would come again for ever.
        if (w.position == w.group_started_) return end(w, true);
        ++w.round_;
        w.next_row_ = p.again;
        return true;
    }
};

}  // namespace pgn_vistel::core
