#pragma once

#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Whole messages of Actisense gateways as text: `A173321.107 23FF7 1F513 012F...`, that is `A` and the time
/// of day without colons; source, destination and priority (2, 2 and 1 digits); PGN; payload. All but the
/// time hexadecimal. The decimals of the time may be missing, and more may follow the payload. Lines that
/// begin with another letter are other reports, which are passed over.
class ActisenseAsciiFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    TimestampParser timestamps_;
};

}  // namespace vistel
