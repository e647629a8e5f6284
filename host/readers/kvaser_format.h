#pragma once

#include <string_view>

#include "readers/bus_names.h"
#include "readers/line_format.h"

namespace vistel {

/// Text recordings of Kvaser tools:
///   Chn Identifier Flg   DLC  D0...1...2...3...4...5...6..D7       Time     Dir
///    0    09F11223 X       8  00  39  30  00  00  FF  7F  FD       0.012000 R
/// Numbers may be decimal, which nothing says: an identifier of nine digits cannot be hexadecimal, and a
/// letter cannot be decimal. Until either is seen they are hexadecimal.
class KvaserFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    unsigned base_ = 16;
    BusNames buses_;
};

}  // namespace vistel
