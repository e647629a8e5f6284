#pragma once

#include <string_view>

#include "readers/line_format.h"

namespace vistel {

/// Tables that the Python library for CAN writes:
///   timestamp,arbitration_id,extended,remote,error,dlc,data
///   1777887000.012000,0x9f11223,1,0,0,8,ADkwAAD/f/0=
class PythonCanFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    static LineResult read(std::string_view line, Record& record, Problem& problem);
};

}  // namespace vistel
