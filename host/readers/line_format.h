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
/// may leave anything. `read_usual` does the same for a line that it can read without its end being looked
/// for: `text` begins with it and may go on behind it. It returns the line's end, or null for a line of any
/// other shape or one that is not there as a whole, which leaves the payload and its length as they were
/// unless `read` would tell a problem. `comment` gets the lines that begin with `#`, which are comments in
/// every format.
template <class Format>
concept LineFormat = requires(Format format, std::string_view line, Record& record, Problem& problem) {
    { Format::resembles(line) } -> std::same_as<bool>;
    { format.read(line, record, problem) } -> std::same_as<LineResult>;
    { format.read_usual(line, record) } -> std::same_as<const char*>;
    { format.comment(line) } -> std::same_as<void>;
};

/// A format whose lines may be understood in several ways, of which the lines behind them tell. As long as it
/// is not settled, the reader asks of the next line whether that `depends_on_later` ones; if so, it shows
/// the format this line and those behind it by `foresee` until the format is settled, and has it `settle`
/// for the likeliest way when there are no more, or too many, or when a live source is silent. Until then its
/// `read_usual` takes none. Lines that are comments are not asked about, but foreseen. But for such a
/// silence, what comes of it depends on the bytes alone, and not on how they came.
template <class Format>
concept ForesightedFormat = LineFormat<Format> && requires(Format format, std::string_view line) {
    { format.is_settled() } -> std::same_as<bool>;
    { format.depends_on_later(line) } -> std::same_as<bool>;
    { format.foresee(line) } -> std::same_as<void>;
    { format.settle() } -> std::same_as<void>;
};

/// What formats have in common whose lines stand for themselves.
struct IndependentLines {
    static const char* read_usual(std::string_view, Record&) { return nullptr; }
    static void comment(std::string_view) {}
};

}  // namespace vistel
