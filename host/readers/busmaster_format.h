#pragma once

#include <cstdint>
#include <string_view>

#include "readers/bus_names.h"
#include "readers/day_clock.h"
#include "readers/line_format.h"

namespace vistel {

/// Recordings of BusMaster, whose headings, between `***`, say how times and numbers are written:
///   09:30:00:0120 Rx 1 0x09F11223 x 8 00 39 30 00 00 FF 7F FD       tenths of milliseconds
///   09:30:00:0120 1 0x09F11223 127250 DATA 23 FF 2 Rx 8 00 39 ...   as the protocol J1939
/// Times are those of the day, or count from the start, or from the line before.
class BusmasterFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    enum class Mode { system, absolute, relative };

    void read_heading(std::string_view line);
    void read_start(std::string_view text);
    RecordTime time_of(std::int64_t clock);

    unsigned base_ = 16;
    Mode mode_ = Mode::system;
    RecordTime start_;              ///< of the session
    RecordTime midnight_;           ///< before it
    std::int64_t since_start_ = 0;  ///< of the last line
    DayClock day_clock_;
    BusNames buses_;
};

}  // namespace vistel
