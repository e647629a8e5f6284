#pragma once

#include <string_view>

#include "can/record.h"
#include "readers/problem.h"

namespace vistel {

enum class LineResult {
    record,
    nothing,  ///< belongs to the format but holds no record
    foreign,  ///< not NMEA 2000: another kind of frame, or a message of the gateway itself
    problem,
};

/// One text format. Lines come without their line end and without blanks around them, and are never empty.
class LineFormat {
  public:
    virtual ~LineFormat() = default;

    /// Fills `record`, or the text of `problem`. After anything but `record` its contents are unspecified.
    virtual LineResult read(std::string_view line, Record& record, Problem& problem) = 0;

    /// A line beginning with `#`, which is a comment in every format.
    virtual void comment(std::string_view) {}

    /// True as long as lines to come may change how the first ones are understood. Where the recording allows
    /// it, its beginning is then shown to the format once before it is read.
    virtual bool wants_look_ahead() const { return false; }
};

}  // namespace vistel
