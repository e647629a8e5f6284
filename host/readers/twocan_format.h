#pragma once

#include <string_view>

#include "readers/line_format.h"

namespace vistel {

/// Frames as TwoCan logs them, twelve bytes as `0xhh` with commas between them: the identifier, low byte
/// first, and eight of data. How long a shorter frame was cannot be told.
class TwocanFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    static LineResult read(std::string_view line, Record& record, Problem& problem);
};

}  // namespace vistel
