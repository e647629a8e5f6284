#pragma once

#include "core/plan.h"
#include "core/read.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// The steps of a walk, in line for those who print.
struct Stepping {
    using State = MessageWalk::State;

    static State& state(MessageWalk& walk) { return walk.state_; }
    static const State& state(const MessageWalk& walk) { return walk.state_; }
    static const FieldPlan& plan(const State& w) { return field_plans[w.row]; }
    static int round(const State& w) { return (field_plans[w.planned].flags & in_group) != 0 ? w.round : 0; }

    [[gnu::always_inline]] static bool next(State& w) {
        w.is_resolved = false;
        if (!w.ends_round && !w.is_picky && w.upcoming != end_row && w.position < w.end) [[likely]] {
            const FieldPlan& p = field_plans[w.upcoming];
            if ((p.flags & (first_of_group | last_of_group | linked)) == 0) [[likely]] {
                w.row = w.planned = w.upcoming;
                w.upcoming = p.next;
                return true;
            }
        }
        return next_with_care(w);
    }

    /// Whatever is more than the next row: groups, what a field depends on, rows that are judged, the end.
    [[gnu::noinline]] static bool next_with_care(State& w) {
        for (;;) {
            if (w.ends_round && !begin_round(w)) return finish(w, true);
            if (w.is_picky && !pick(w)) return false;
            if (w.upcoming == end_row) return w.is_covering && w.position < w.end && finish(w, true);
            if (w.position >= w.end) return finish(w, false);
            w.row = w.planned = w.upcoming;
            const FieldPlan& p = field_plans[w.row];
            w.upcoming = p.next;
            if ((p.flags & linked) != 0 && !resolve(w)) continue;
            remember(w, p.flags);
            return true;
        }
    }

    /// Whether the field is what its row says, but for what a direction refers to.
    static bool is_plain(const State& w) {
        return !w.is_resolved || (w.size < 0 && w.high == 0 && !w.is_padded);
    }

    /// Position behind a field: the values of other messages' fields fill whole bytes.
    static int behind(const State& w, int next) {
        return w.is_resolved && w.is_padded ? (next + 7) & ~7 : next;
    }

    /// Reads the field that the walk has come to where that goes quickly; the walk goes behind it. Else
    /// false, and the walk stays.
    [[gnu::always_inline]] static bool read_quickly(State& w, const FieldPlan& plan, const Payload& payload,
                                                    const UnitSelection& units, QuickNumber& quick,
                                                    FieldValue& out) {
        if (!is_plain(w)) return false;
        read_quick(plan, payload, w.position, units, quick);
        if (quick.kind == QuickNumber::Kind::slow) return false;
        quick.store(out.value);
        out.quantity = plan.quantity;
        out.unit = directed(w, quick.unit);
        out.next = w.position = quick.next;
        out.cut_off = false;
        return true;
    }

    /// Reads the field that the walk has come to; the walk goes behind it.
    static void read_field(State& w, const Payload& payload, const UnitSelection& units, TextScratch& scratch,
                           FieldValue& out, UnitId unit = unit::selected) {
        FieldShape shape = FieldShape::of(plan(w));
        if (w.is_resolved && w.size > 0) shape.resize(w.size);
        read(shape, field_row(w.row).dd->dd, payload, w.position, units, unit, scratch, out);
        w.position = out.next = behind(w, out.next);
        out.unit = directed(w, out.unit);
    }

    /// The unit of a direction says what it refers to.
    static UnitId directed(const State& w, UnitId u) {
        if (!w.is_resolved || w.direction == Direction::none || (u != unit::deg_mag && u != unit::deg_true))
            return u;
        switch (w.direction) {
            case Direction::magnetic: return unit::deg_mag;
            case Direction::relative: return unit::deg;
            default: return unit::deg_true;
        }
    }

  private:
    [[nodiscard]] static bool finish(State& w, bool rest) {
        w.upcoming = end_row;
        w.rest = rest;
        w.rest_from = w.is_covering ? w.position : 0;
        w.ends_round = w.is_picky = w.is_covering = false;
        return false;
    }

    /// What the field depends on. False where it is none of the message: a group that does not come, a field
    /// without a size, or a value that nothing tells how to read, which ends the walk.
    [[nodiscard]] static bool resolve(State& w);

    static void remember(State& w, unsigned flags) {
        if ((flags & first_of_group) != 0) w.group_started = w.position;
        w.ends_round = (flags & last_of_group) != 0;
    }

    /// Behind the last field of a round. False where that took no byte: it would come again for ever.
    [[nodiscard]] static bool begin_round(State& w) {
        w.ends_round = false;
        if (w.position == w.group_started) return false;
        if (w.round >= w.rounds) {
            w.round = 1;
            w.rounds = INT32_MAX;
            return true;
        }
        ++w.round;
        w.upcoming = field_plans[w.planned].again;
        return true;
    }

    /// Passes over what is not shown of a proprietary message or a group function. False at the walk's end.
    [[nodiscard]] static bool pick(State& w) {
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
