#include "pgn_vistel/decode.h"

namespace pgn_vistel {

namespace {

constexpr std::uint32_t group_function = 126208;
constexpr std::uint32_t proprietary_single = 61184;
constexpr std::uint32_t proprietary_fast = 126720;

bool is_string(const FieldDef& row) {
    const std::uint32_t df = row.dd->format->df;
    return df == 50 || df == 51 || df == 63;
}

bool same(PayloadPosition a, PayloadPosition b) {
    return a.byte == b.byte && a.bit == b.bit;
}

}  // namespace

MessageWalk::MessageWalk(const PgnDef* pgn, const N2KMsg& msg) : msg_(msg), length_(payload_length(msg)) {
    if (pgn == nullptr) {
        rest_ = true;
        return;
    }
    if (const RepeatSetDef* const repeat = find_repeat_set(pgn->pgn)) {
        first_ = repeat->first;
        last_ = repeat->last;
    }
    proprietary_ = pgn->pgn == proprietary_single || pgn->pgn == proprietary_fast;
    if (pgn->pgn == group_function) {
        // Requests and commands have a fixed head; what follows depends on the PGN that they are about and
        // stays undecoded. The functions above acknowledge are not shown by field.
        const int code = length_ > 0 ? msg.data[0] : -1;
        if (code >= 0 && code <= 2) row_ = first_field_row_keyed(pgn->pgn, static_cast<std::uint16_t>(code));
        if (code == 0 || code == 1) limit_ = 6;
        rest_ = row_ == nullptr;
    } else if (proprietary_ && length_ < 2) {
        rest_ = true;  // not even the header
    } else {
        row_ = first_field_row(pgn->pgn);
    }
}

bool MessageWalk::end(bool rest) {
    row_ = nullptr;
    rest_ = rest;
    return false;
}

// What is shown of a proprietary message: the header of anybody's, and the fields that identify a message of
// the maker's own. The variants of what follows cannot be told apart by their first rows, so it stays
// undecoded; that is deliberate.
MessageWalk::Verdict MessageWalk::judge_proprietary(const FieldDef& row) const {
    struct Shown {
        std::uint32_t pgn;  // 0: both
        std::uint32_t field;
        std::uint32_t dd;
    };
    constexpr Shown header[] = {{0, 1, 172}, {0, 2, 1}, {0, 3, 168}};
    constexpr Shown makers[] = {
        {proprietary_single, 4, 10001}, {proprietary_fast, 4, 7}, {proprietary_fast, 5, 7}};
    for (const Shown& s : header)
        if (s.field == row.field) return s.dd == row.dd->dd ? Verdict::accept : Verdict::skip;
    if ((msg_.data[0] | msg_.data[1] << 8) != maker_header) return Verdict::reject;
    for (const Shown& s : makers)
        if (s.pgn == row.pgn && s.field == row.field)
            return s.dd == row.dd->dd ? Verdict::accept : Verdict::skip;
    return Verdict::reject;
}

// Behind the field that was handed out last.
void MessageWalk::step() {
    if (is_string(*field_.row) && same(position, started_)) {
        end(true);  // a text that takes no byte: nothing behind it can be placed
    } else if (counter_ == last_) {
        if (same(position, group_started_)) {
            end(true);  // a round that takes no byte would come again for ever
            return;
        }
        ++round_;
        counter_ = first_;
        row_ = next_field_row(row_, first_ - last_);
    } else {
        ++counter_;
        row_ = next_field_row(row_, 1);
    }
}

bool MessageWalk::next() {
    if (row_ != nullptr && !fresh_) step();
    if (row_ == nullptr) return false;
    fresh_ = false;
    for (;;) {
        if (row_->field == 0 || position.byte >= length_) return end(false);
        if (static_cast<int>(row_->field) >= limit_) return end(true);
        if (!proprietary_) break;
        const Verdict verdict = judge_proprietary(*row_);
        if (verdict == Verdict::reject) return end(true);
        if (verdict == Verdict::accept) break;
        row_ = next_field_row(row_, 1);
    }
    if (counter_ == first_) group_started_ = position;
    started_ = position;
    const int number = static_cast<int>(row_->field);
    field_.row = row_;
    field_.repeat = number >= first_ && number <= last_ ? round_ : 0;
    normalise_field_size(row_, row_->pgn, &field_.bytes, &field_.bits);
    return true;
}

}  // namespace pgn_vistel
