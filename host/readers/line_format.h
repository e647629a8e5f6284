#pragma once

#include <concepts>
#include <string_view>

#include "can/record.h"
#include "readers/problem.h"

namespace vistel {

enum class [[nodiscard]] LineResult{
    record,
    nothing,  ///< belongs to the format but holds no record
    foreign,  ///< not NMEA 2000: another kind of frame, or a message of the gateway itself
    problem,
};

/// One text format. Lines come without their line end and without blanks around them, and are never empty.
///
/// `resembles` tells whether a line speaks for the format. `read` fills the record or the text of the
/// problem; of the record, `nothing` and `foreign` leave the payload and its length as they were, `problem`
/// may leave anything. `comment` gets the lines that begin with `#`, which are comments in every format. As
/// long as `wants_look_ahead`, lines to come may change how the first ones are understood: where the
/// recording allows it, its beginning is shown to the format once before it is read.
template <class Format>
concept LineFormat = requires(Format format, std::string_view line, Record& record, Problem& problem) {
    { Format::resembles(line) } -> std::same_as<bool>;
    { format.read(line, record, problem) } -> std::same_as<LineResult>;
    { format.comment(line) } -> std::same_as<void>;
    { format.wants_look_ahead() } -> std::same_as<bool>;
};

/// What formats have in common whose lines stand for themselves.
struct IndependentLines {
    static void comment(std::string_view) {}
    static constexpr bool wants_look_ahead() { return false; }
};

}  // namespace vistel
