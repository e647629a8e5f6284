#pragma once

#include <cstdint>
#include <string_view>

#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Whole messages as plotters of Garmin export them, in two shapes:
///   Sequence #,Timestamp,PGN,Name,Manufacturer,Remote Address,Local Address,Priority,Single
///   Frame,Size,Packet Sequence #,Month_Day_Year_Hours_Minutes_Seconds_msTicks,PGN,Processed PGN,Name,...
/// The first has milliseconds since the plotter was started, the second a date and time in a zone that is not
/// told and taken for UTC. A name may have commas in it, and one line end.
class GarminFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    struct Beginning {
        RecordTime time;
        std::uint32_t pgn = 0;
        bool is_open = false;  ///< the line ended before its packet
    };

    [[nodiscard]] static bool read_beginning(std::string_view line, Beginning& beginning, Problem& problem);
    static LineResult read_end(const Beginning& beginning, std::string_view line, Record& record,
                               Problem& problem);

    Beginning open_;
};

}  // namespace vistel
