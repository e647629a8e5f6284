#pragma once

#include <string_view>

#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Whole messages as programs of Airmar log them: `TIME - 127250 09F11223 00 39 30 00 00 FF 7F FD`, with
/// blanks or commas between the bytes. The identifier has all that the PGN before it says. A time that is no
/// time of day, nor a date and time, is any text.
class AirmarFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    TimestampParser timestamps_;
};

}  // namespace vistel
