#pragma once

#include <memory>
#include <string_view>

#include "readers/line_format.h"

namespace vistel {

class AnalyzedMessages;

/// What canboat's analyzer prints as JSON: fields by name, with values in the units that its first line
/// tells, and no bytes. A message is built of them, so that its room is `packing`, above this one: what is
/// not in the line (reserved bits, bits behind the shown digits) is lost. A message of which a value has no
/// place is a problem.
class CanboatJsonFormat : public IndependentLines {
  public:
    CanboatJsonFormat();
    ~CanboatJsonFormat();

    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    std::unique_ptr<AnalyzedMessages> messages_;
};

}  // namespace vistel
