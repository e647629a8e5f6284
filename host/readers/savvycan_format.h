#pragma once

#include <string_view>

#include "readers/bus_names.h"
#include "readers/line_format.h"

namespace vistel {

/// Tables of SavvyCAN, whose header says which columns there are:
///   Time Stamp,ID,Extended,Dir,Bus,LEN,D1,D2,D3,D4,D5,D6,D7,D8      microseconds; older ones have no Dir
///   ID,Data Bytes                                                   hexadecimal, bytes with blanks
class SavvycanFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    enum class Columns { full, without_direction, bytes_alone };

    LineResult read_row(std::string_view line, Record& record, Problem& problem);

    Columns columns_ = Columns::full;
    BusNames buses_;
};

}  // namespace vistel
