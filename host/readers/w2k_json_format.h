#pragma once

#include <array>
#include <cstdint>

#include "readers/bst_record.h"
#include "readers/line_format.h"

namespace vistel {

/// Messages that an Actisense W2K-1 captures as JSON: `{"pgn":60928,"payload":[147,19,6,0,238,...]}`. The
/// payload is the record of a received message, of which the second byte means nothing.
class W2kJsonFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    BstReader records_;
    std::array<std::uint8_t, BstReader::most_bytes> bytes_;
};

}  // namespace vistel
